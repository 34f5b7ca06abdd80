#pragma once

#include <QColor>
#include <QWidget>

namespace sonavex::ui {

// A coloured lamp that also shows a tick or a cross, for users who cannot distinguish the colours.
class LockLamp : public QWidget {
    Q_OBJECT

public:
    explicit LockLamp(QWidget* parent = nullptr);

    void SetColour(const QColor& colour);
    QColor Colour() const { return colour_; }
    // Shows a tick (true) or a cross (false).
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
