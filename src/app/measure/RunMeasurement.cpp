#include <unistd.h>

#include <iostream>

#include "app/measure/Commands.h"
#include "app/measure/LiveMeasurement.h"
#include "app/measure/MeasureError.h"

namespace sonavex::measure {
namespace {

constexpr const char* kStartOfLine = "\r\033[K";

// Shows the progress in one line on a terminal; does nothing elsewhere.
class Progress {
public:
    void Show(const Meter& meter) const {
        if (visible_) std::cerr << kStartOfLine << ProgressLine(meter) << std::flush;
    }
    void Clear() const {
        if (visible_) std::cerr << kStartOfLine << std::flush;
    }
    ~Progress() { Clear(); }

private:
    bool visible_ = isatty(STDERR_FILENO) != 0;
};

}  // namespace

int RunMeasurement(const RunOptions& options) {
    LiveMeasurement measurement(options);
    measurement.Start();
    bool everLocked = false;
    std::string table;
    {
        const Progress progress;
        const Meter& meter = measurement.Readings();
        measurement.Run([&] {
            if (meter.Updated()) {
                everLocked = everLocked || meter.Analysis().FreqLocked;
                progress.Clear();
                const StreamDetails details = measurement.Details();
                if (options.json)
                    Print(JsonLine(meter, details) + '\n');
                else
                    table = Table(meter, details);
            }
            progress.Show(meter);
        });
    }
    Print(table);
    return everLocked ? kMeasured : kNeverLocked;
}

}  // namespace sonavex::measure
