#pragma once

#include <QButtonGroup>
#include <QStringList>
#include <QWidget>

class QAbstractButton;

namespace sonavex::ui {

// A short list with one selected entry, shown as a row of buttons. Arrow keys select the next one. The widget
// passes the focus on to the selected button, so that it can be the buddy of a label.
class WaveChoice : public QWidget {
    Q_OBJECT

public:
    explicit WaveChoice(QWidget* parent = nullptr);

    void SetNames(const QStringList& names);
    QStringList Names() const { return names_; }
    // -1 selects none.
    void SetIndex(int index);
    int Index() const { return group_.checkedId(); }
    // In the order of the names.
    QList<QAbstractButton*> Buttons() const;

Q_SIGNALS:
    void Chosen(int index);

protected:
    // A button with this name, as a child of the widget.
    virtual QAbstractButton* MakeButton(int index, const QString& name);
    // Adds the button to the layout.
    virtual void Place(int index, QAbstractButton& button);
    void focusInEvent(QFocusEvent* event) override;

private:
    QStringList names_;
    QButtonGroup group_;
};

}  // namespace sonavex::ui
