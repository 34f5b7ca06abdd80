#pragma once

#include <QLineEdit>
#include <QString>

namespace sonavex::ui {

// An entry field with the unit of its value at the right edge.
class UnitEdit : public QLineEdit {
    Q_OBJECT
    Q_PROPERTY(QString unit READ Unit WRITE SetUnit)

public:
    explicit UnitEdit(QWidget* parent = nullptr);

    QString Unit() const { return unit_; }
    void SetUnit(const QString& unit);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QFont UnitFont() const;
    void MakeRoom();

    QString unit_;
};

}  // namespace sonavex::ui
