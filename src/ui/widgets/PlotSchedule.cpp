#include "ui/widgets/PlotSchedule.h"

#include <utility>

namespace sonavex::ui {
namespace {

constexpr qint64 kUserInterval = 16;  // milliseconds
constexpr qint64 kDataInterval = 67;

}  // namespace

PlotSchedule::PlotSchedule(std::function<void()> paint) : paint_(std::move(paint)) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.callOnTimeout([this] { Paint(); });
}

void PlotSchedule::Request(bool byUser) {
    const qint64 interval = byUser ? kUserInterval : kDataInterval;
    const qint64 wait = sinceLast_.isValid() ? interval - sinceLast_.elapsed() : 0;
    if (wait <= 0) {
        Paint();
    } else if (!timer_.isActive() || timer_.remainingTime() > wait) {
        timer_.start(static_cast<int>(wait));
    }
}

void PlotSchedule::Paint() {
    timer_.stop();
    sinceLast_.start();
    paint_();
}

}  // namespace sonavex::ui
