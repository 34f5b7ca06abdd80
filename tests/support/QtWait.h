#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <chrono>

#include "support/Wait.h"

namespace sonavex {

// Serves Qt's events while a test waits. QTest's waits sleep between events.
struct QtEvents {
    void Wait(std::chrono::nanoseconds) const {
        QEventLoop loop;
        QTimer::singleShot(std::chrono::milliseconds(5), &loop, &QEventLoop::quit);
        loop.exec();
    }
};

template <class Condition>
bool WaitInQt(std::chrono::milliseconds limit, Condition condition) {
    return WaitUntil(QtEvents{}, condition, limit);
}

// Delivers the pending events of Qt, and the events that their handlers post.
inline void Settle() {
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
}

// Serves Qt's events for this time.
inline void WaitInQt(std::chrono::milliseconds time) {
    WaitInQt(time, [] { return false; });
}

}  // namespace sonavex
