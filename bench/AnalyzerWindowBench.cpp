// Time that the user-interface thread needs for the Analyzer at 1240 x 800: a reading of 65536 points at 48
// kHz with all that it changes, and a zoom of the spectrum.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QSize>
#include <QWheelEvent>
#include <chrono>
#include <thread>

#include "WindowTimes.h"
#include "ui/AnalyzerRig.h"

namespace {

using namespace sonavex;
using namespace std::chrono_literals;

constexpr QSize kDefaultSize(1240, 800);
// A plot waits this long after its last repaint before it shows new data.
constexpr auto kDataInterval = 70ms;
// The same after an action of the user.
constexpr auto kUserInterval = 17ms;
// A quarter of a record: the distance of readings.
constexpr auto kReadingInterval = 342ms;

// The window on a loop that a sine passes, after its first averages.
class AnalyzerOnDisplay {
public:
    AnalyzerOnDisplay() {
        rig.OpenOnCard(kDefaultSize);
        rig.form.Stimulus.cmdStart.Press();
        rig.Play(6s);
        rig.form.cmdKeep.Press();
        DeliverEvents();
    }

    AnalyzerRig rig;
};

void Check(benchmark::State& state, const AnalyzerOnDisplay& display) {
    if (display.rig.form.lblLegendKept.Caption().empty()) state.SkipWithError("there was no reading");
}

// A reading: the form takes it before, the window shows it in the timed part.
void BM_AnalyzerReading(benchmark::State& state) {
    AnalyzerOnDisplay display;
    PaintCounter paints;
    for (auto _ : state) {
        std::this_thread::sleep_for(kDataInterval);
        display.rig.Play(kReadingInterval);
        const double begin = ThreadSeconds();
        DeliverEvents();
        state.SetIterationTime(ThreadSeconds() - begin);
    }
    Check(state, display);
    state.counters["painted"] =
        benchmark::Counter(static_cast<double>(paints.Count), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_AnalyzerReading)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);

// The wheel zooms the spectrum with live and kept trace, axes included.
void BM_SpectrumZoom(benchmark::State& state) {
    AnalyzerOnDisplay display;
    auto& view = display.rig.Find<ui::SpectrumView>("Spectrum");
    const QPointF at = QRectF(view.rect()).center();
    int turn = 120;
    PaintCounter paints;
    for (auto _ : state) {
        std::this_thread::sleep_for(kUserInterval);
        const double begin = ThreadSeconds();
        QWheelEvent wheel(at, view.mapToGlobal(at), {}, {0, turn}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &wheel);
        DeliverEvents();
        state.SetIterationTime(ThreadSeconds() - begin);
        turn = -turn;
    }
    Check(state, display);
    state.counters["painted"] =
        benchmark::Counter(static_cast<double>(paints.Count), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_SpectrumZoom)->UseManualTime()->Iterations(50)->Unit(benchmark::kMillisecond);

}  // namespace
