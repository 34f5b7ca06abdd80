#pragma once

#include <QPushButton>
#include <QString>

namespace sonavex::ui {

// A button that shows the key that presses it as a small key cap after its text.
class KeyButton : public QPushButton {
    Q_OBJECT
    Q_PROPERTY(QString keyCap READ KeyCap WRITE SetKeyCap)

public:
    explicit KeyButton(QWidget* parent = nullptr);

    QString KeyCap() const { return keyCap_; }
    void SetKeyCap(const QString& keyCap);
    void ShowKeyCap(bool shown);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool HasCap() const { return capShown_ && !keyCap_.isEmpty(); }
    int CapWidth() const;

    QString keyCap_;
    bool capShown_ = true;
};

}  // namespace sonavex::ui
