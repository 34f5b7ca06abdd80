#pragma once

#include <QFrame>

class QLabel;

namespace sonavex::ui {

class UnitChoice;

// A row of the table of readings: name, value, unit and spread. The spread has a fixed width, so that the
// columns of all rows are aligned.
class ReadingRowView : public QFrame {
    Q_OBJECT

public:
    // stripe: with the ground of every second row.
    ReadingRowView(bool stripe, QWidget* parent);

    // A picture before the name.
    void SetSwatch(QWidget& swatch);
    // Takes the place of the label with the name.
    void SetNameWidget(QWidget& widget);
    QLabel& Name() const { return *name_; }
    QLabel& Value() const { return *value_; }
    QLabel& Spread() const { return *spread_; }
    UnitChoice& Unit() const { return *unit_; }

    // Sets the widths that depend on fonts. Call after ApplyTheme.
    void AlignColumns();

private:
    QLabel* name_;
    QLabel* value_;
    UnitChoice* unit_;
    QLabel* spread_;
};

}  // namespace sonavex::ui
