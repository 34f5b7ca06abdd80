#include <unistd.h>

#include <iostream>

#include "app/measure/Commands.h"
#include "app/measure/LiveMeasurement.h"
#include "app/measure/MeasureError.h"

namespace sonavex::measure {
namespace {

constexpr const char* kStartOfLine = "\r\033[K";

// The line on a terminal that shows how far the measurement is; silent elsewhere.
class Progress {
public:
    void Show(const Meter& meter) const {
        if (visible_) std::cerr << kStartOfLine << ProgressLine(meter) << std::flush;
    }
    ~Progress() {
        if (visible_) std::cerr << kStartOfLine << std::flush;
    }

private:
    bool visible_ = isatty(STDERR_FILENO) != 0;
};

}  // namespace

int RunMeasurement(const RunOptions& options) {
    LiveMeasurement measurement(options);
    measurement.Start();
    const Path path = measurement.DevicePath();
    bool everLocked = false;
    std::string table;
    {
        const Progress progress;
        measurement.Run([&] {
            everLocked = everLocked || measurement.Readings().Analysis().FreqLocked;
            if (options.json)
                Print(JsonLine(measurement.Readings(), path) + '\n');
            else
                table = Table(measurement.Readings(), path);
            progress.Show(measurement.Readings());
        });
    }
    Print(table);
    return everLocked ? kMeasured : kNeverLocked;
}

}  // namespace sonavex::measure
