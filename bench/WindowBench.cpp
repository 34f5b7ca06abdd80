// Time that the user-interface thread needs for the window per captured block: captions, derived state,
// layout and painting. No display needed; at 200 % scale unless QT_SCALE_FACTOR is set. Measures processor
// time of the thread, so that other programs do not matter.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <array>
#include <functional>
#include <string>

#include "WindowTimes.h"
#include "support/FormRig.h"
#include "ui/MainWindow.h"
#include "ui/ProgramStyle.h"

namespace {

using namespace sonavex;

// The window of a locked instrument that plays a sine through a slightly distorting card.
class WindowOnDisplay {
public:
    WindowOnDisplay() {
        rig.form.Form_Load();
        DeviceUnderTestModel model;
        model.harmonicAmplitudes = {0.0004, 0.0002, 0.00008, 0.00005, 0.00003, 0.00002, 0.00002, 0.00001};
        model.noiseRms = 3.0;  // every block differs from the one before
        rig.card.Card().SetDeviceUnderTest(model);
        rig.form.GeneratorPanel.Controls.Command1.Press();
        window.ShowPlaced();
        DeliverEvents();
        rig.Step(60);
        DeliverEvents();
    }

    FormRig rig;
    ui::MainWindow window{rig.form, QStringLiteral("Simulated sound card")};
};

// Times only the window's response to `change`.
void MeasureWindow(benchmark::State& state, const std::function<void(WindowOnDisplay&)>& change) {
    WindowOnDisplay display;
    PaintCounter paints;
    for (auto _ : state) {
        change(display);
        const double begin = ThreadSeconds();
        DeliverEvents();
        state.SetIterationTime(ThreadSeconds() - begin);
    }
    state.counters["painted"] =
        benchmark::Counter(static_cast<double>(paints.Count), benchmark::Counter::kAvgIterations);
}

// The end of a cycle that changes every figure and bar of the meter tab.
Readings Figures(bool odd) {
    Readings readings;
    readings.reached = BlockStep::kOutputLevel;
    readings.inputPeak = odd ? 8000.0 : 8200.0;
    readings.locked = true;
    readings.harmonicsAveraged = Readings::kHarmonics;
    for (std::size_t i = 0; i < Readings::kHarmonics; ++i) {
        const double digit = static_cast<double>(i + 1);
        const double percent = (odd ? 0.83 : 0.84) + 0.001 * digit;
        readings.harmonics[i] = {percent, percent, (odd ? -41.0 : -62.5) - 0.01 * digit};
    }
    readings.outputPeak = odd ? 7500.0 : 8500.0;
    return readings;
}

void Show(WindowOnDisplay& display, const Readings& readings) {
    MeterDisplay::Percentages percentages{};
    display.rig.form.Instrument.Meter.Display.Show(readings, percentages);
}

void BM_MeterUpdate(benchmark::State& state) {
    bool odd = false;
    MeasureWindow(state, [&odd](WindowOnDisplay& display) {
        odd = !odd;
        Show(display, Figures(odd));
    });
}
BENCHMARK(BM_MeterUpdate)->UseManualTime()->Unit(benchmark::kMicrosecond);

// The same, and the lock and the frequency change too.
void BM_MeterUpdateWithLock(benchmark::State& state) {
    bool odd = false;
    MeasureWindow(state, [&odd](WindowOnDisplay& display) {
        odd = !odd;
        Readings readings = Figures(odd);
        readings.automatic = true;
        readings.measuredHz = odd ? 996.0 : 1007.0;
        Show(display, readings);
        display.rig.form.Instrument.Meter.Display.ShowStopped(!odd);
    });
}
BENCHMARK(BM_MeterUpdateWithLock)->UseManualTime()->Unit(benchmark::kMicrosecond);

// Consecutive blocks of the running instrument; every 19th ends a cycle.
void BM_MeterBlock(benchmark::State& state) {
    MeasureWindow(state, [](WindowOnDisplay& display) { display.rig.Step(1); });
}
BENCHMARK(BM_MeterBlock)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) qputenv("QT_SCALE_FACTOR", "2");
    qputenv("QT_LOGGING_RULES", "*.warning=false");
    // Paints with the next event; otherwise the updates of several blocks would be painted at once.
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
    benchmark::Initialize(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setStyle(new sonavex::ui::ProgramStyle);
    QApplication::setQuitOnLastWindowClosed(false);
    benchmark::AddCustomContext("window_scale", std::to_string(application.devicePixelRatio()));
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
