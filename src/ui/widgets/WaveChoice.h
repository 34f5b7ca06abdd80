#pragma once

#include <QButtonGroup>
#include <QStringList>
#include <QWidget>

namespace sonavex::ui {

// A short list with one selected entry, shown as a row of buttons.
class WaveChoice : public QWidget {
    Q_OBJECT

public:
    explicit WaveChoice(QWidget* parent = nullptr);

    void SetNames(const QStringList& names);
    QStringList Names() const { return names_; }
    // -1 selects none.
    void SetIndex(int index);
    int Index() const { return group_.checkedId(); }

Q_SIGNALS:
    void Chosen(int index);

private:
    QStringList names_;
    QButtonGroup group_;
};

}  // namespace sonavex::ui
