#include "ui/Placement.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include "core/settings/Windows.h"

namespace sonavex::ui {
namespace {

// Width and height that must be visible, in pixels.
constexpr int kHold = 40;
// The same margin that the form keeps from the bottom of the lowest screen.
constexpr int kBottomMargin = 50;

QPoint PrimaryOrigin() {
    return QGuiApplication::primaryScreen()->geometry().topLeft();
}

// Whether enough of the frame is on a screen for the user to take hold of it.
bool OnAnyScreen(const QRect& frame) {
    for (const QScreen* screen : QGuiApplication::screens())
        if (screen->availableGeometry().intersects(frame.adjusted(0, 0, -kHold, -kHold))) return true;
    return false;
}

QPoint Middle(const QSize& frame) {
    return QGuiApplication::primaryScreen()->availableGeometry().center() - QRect({}, frame).center();
}

// Screens can differ in height, but the form knows only the bottom of the lowest one.
QPoint AboveTheScreensBottom(const QRect& frame) {
    const QScreen* screen = QGuiApplication::screenAt(frame.center());
    if (screen == nullptr) return frame.topLeft();
    const QRect free = screen->availableGeometry();
    const int bottom = free.y() + free.height();
    if (frame.height() > free.height() || frame.y() <= bottom - (frame.height() + kBottomMargin))
        return frame.topLeft();
    return {frame.x(), bottom - frame.height()};
}

}  // namespace

Placement::Placement(QWidget& widget, Window& frame) : widget_(widget), frame_(frame) {
    widget_.installEventFilter(this);
}

void Placement::ReportSize() {
    frame_.SetSize(FrameSize().width(), FrameSize().height());
}

void Placement::Place() {
    QPoint place = PrimaryOrigin() + QPoint(frame_.Left(), frame_.Top());
    if (!OnAnyScreen({place, FrameSize()})) place = Middle(FrameSize());
    placedAt_ = framedAt_ = AboveTheScreensBottom({place, FrameSize()});
    formPlace_ = {frame_.Left(), frame_.Top()};
    framed_ = Framed();
    state_ = State::kPlaced;
    widget_.move(placedAt_);
    // A window that was open before can have lost its frame. Its position is then that of the inner area.
    if (!framed_ && widget_.windowHandle() != nullptr) widget_.windowHandle()->setFramePosition(placedAt_);
}

bool Placement::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) Follow();
    return QObject::eventFilter(watched, event);
}

// The first move, with which the frame appears, is never the user's: without a frame the user cannot move the
// widget. After AllowForFrame the window system may report the position without the frame once more.
void Placement::Follow() {
    ReportSize();
    if (state_ == State::kLeft) return;
    const QPoint place = widget_.pos();
    if (state_ == State::kPlaced && !framed_ && Framed()) {
        framed_ = true;
        placedAt_ = framedAt_ = place;
        // Showing the widget sets its position once more after this event.
        QMetaObject::invokeMethod(this, &Placement::AllowForFrame, Qt::QueuedConnection);
        return;
    }
    // A window that opens again can pass through other places while it gets its frame.
    const bool atOurPlace = place == placedAt_ || place == framedAt_;
    state_ = atOurPlace ? State::kPlaced : State::kMovedByUser;
    const QPoint ofForm = atOurPlace ? formPlace_ : place - PrimaryOrigin();
    frame_.Move(ofForm.x(), ofForm.y());
}

void Placement::AllowForFrame() {
    if (state_ != State::kPlaced) return;
    const QPoint place = placedAt_ - PrimaryOrigin();
    const Windows::Place kept = Windows::KeptOnScreens({place.x(), place.y()}, frame_);
    framedAt_ = AboveTheScreensBottom({PrimaryOrigin() + QPoint(kept.left, kept.top), FrameSize()});
    if (framedAt_ != placedAt_) widget_.windowHandle()->setFramePosition(framedAt_);
}

bool Placement::Framed() const {
    return widget_.frameGeometry() != widget_.geometry();
}

QSize Placement::FrameSize() const {
    return widget_.frameGeometry().size();
}

}  // namespace sonavex::ui
