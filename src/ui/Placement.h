#pragma once

#include <QObject>
#include <QPoint>
#include <QSize>

class QWidget;

namespace sonavex {
class Window;
}

namespace sonavex::ui {

// Keeps the form and its widget at the same position. The form gets the size of the widget with its frame.
// Form positions are relative to the top left corner of the primary screen.
class Placement : public QObject {
    Q_OBJECT

public:
    // Both must outlive this object.
    Placement(QWidget& widget, Window& frame);

    // Passes the widget's size to the form.
    void ReportSize();

    // Call before the widget is shown. Moves it to the form's position, or to the middle of the primary
    // screen if no screen would show it. When the size of its frame is known, it is kept on the screens once
    // more. Only later moves, which are the user's, change the form's position.
    void Place();
    // Ends reporting moves.
    void Leave() noexcept { state_ = State::kLeft; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // kPlaced while the widget is where this object has placed it.
    enum class State { kLeft, kPlaced, kMovedByUser };

    void Follow();
    void AllowForFrame();
    bool Framed() const;
    QSize FrameSize() const;

    QWidget& widget_;
    Window& frame_;
    State state_ = State::kLeft;
    bool framed_ = false;
    // The form's position when the widget was placed.
    QPoint formPlace_;
    // Where this object has placed the widget: before and after its frame was known.
    QPoint placedAt_;
    QPoint framedAt_;
};

}  // namespace sonavex::ui
