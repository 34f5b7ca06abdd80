#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>

namespace sonavex::ui {

// Limits how often a plot is painted: at most 15 times per second, and 60 times while the user moves it.
class PlotSchedule {
public:
    explicit PlotSchedule(std::function<void()> paint);

    // Paints at once if the last painting was long enough ago, otherwise later.
    void Request(bool byUser);

private:
    void Paint();

    std::function<void()> paint_;
    QElapsedTimer sinceLast_;
    QTimer timer_;
};

}  // namespace sonavex::ui
