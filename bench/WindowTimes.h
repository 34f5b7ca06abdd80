#pragma once

#include <QApplication>
#include <QEvent>
#include <ctime>

namespace sonavex {

// Processor time of the calling thread.
inline double ThreadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// Counts painted widgets.
class PaintCounter : public QObject {
public:
    PaintCounter() { QApplication::instance()->installEventFilter(this); }
    int Count = 0;

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++Count;
        return false;
    }
};

// Handles what is pending: captions, derived state, layout and painting. Each may cause the next.
inline void DeliverEvents() {
    for (int i = 0; i < 3; ++i) QApplication::processEvents();
}

}  // namespace sonavex
