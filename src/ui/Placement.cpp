#include "ui/Placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <climits>

#include "core/controls/Window.h"

namespace sonavex::ui {
namespace {

// Width and height that must be visible, in pixels.
constexpr int kHold = 40;

QPoint PrimaryOrigin() {
    return QGuiApplication::primaryScreen()->geometry().topLeft();
}

// Whether enough of the frame is on a screen for the user to take hold of it.
bool OnAnyScreen(const QRect& frame) {
    for (const QScreen* screen : QGuiApplication::screens())
        if (screen->availableGeometry().intersects(frame.adjusted(0, 0, -kHold, -kHold))) return true;
    return false;
}

}  // namespace

void Placement::MoveToFrame() {
    widget_.move(PrimaryOrigin() + QPoint(frame_.Left(), frame_.Top()));
}

void Placement::MoveOntoScreen() {
    if (OnAnyScreen(QRect(widget_.pos(), widget_.size()))) return;
    widget_.move(QGuiApplication::primaryScreen()->availableGeometry().center() - widget_.rect().center());
}

void Placement::Report() {
    const QPoint place = widget_.pos() - PrimaryOrigin();
    frame_.Move(place.x(), place.y());
}

void Placement::StartReporting() {
    placedAt_ = widget_.pos();
}

void Placement::OnMove() {
    if (!placedAt_ || widget_.pos() == *placedAt_) return;
    placedAt_ = QPoint(INT_MIN, INT_MIN);
    Report();
}

}  // namespace sonavex::ui
