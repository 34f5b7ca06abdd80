#pragma once

#include <QPoint>
#include <optional>

class QWidget;

namespace sonavex {
class Window;
}

namespace sonavex::ui {

// Keeps the position of a form's window and of its widget the same. Form positions are relative to the top
// left corner of the primary screen.
class Placement {
public:
    // Both must outlive this object.
    Placement(QWidget& widget, Window& frame) noexcept : widget_(widget), frame_(frame) {}

    // Moves the widget to the form's position.
    void MoveToFrame();
    // Moves the widget to the middle of the primary screen unless a screen shows it.
    void MoveOntoScreen();
    // Passes the widget's position to the form.
    void Report();

    // Reports every later move, except to the position where the widget is now: that move is not the
    // user's.
    void StartReporting();
    void StopReporting() noexcept { placedAt_.reset(); }
    // Call from moveEvent.
    void OnMove();

private:
    QWidget& widget_;
    Window& frame_;
    // The widget's position at StartReporting, until the user moves it; then a position that no widget has.
    std::optional<QPoint> placedAt_;
};

}  // namespace sonavex::ui
