#pragma once

#include <QColor>
#include <QWidget>

namespace sonavex::ui {

// A lamp of a given colour that also shows a tick or a cross, for those who do not tell the colours
// apart.
class LockLamp : public QWidget {
    Q_OBJECT

public:
    explicit LockLamp(QWidget* parent = nullptr);

    void SetColour(const QColor& colour);
    QColor Colour() const { return colour_; }
    // Shown as a tick (true) or a cross (false).
    void SetGood(bool good);
    bool Good() const noexcept { return good_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor colour_{0, 0, 0};
    bool good_ = false;
};

}  // namespace sonavex::ui
