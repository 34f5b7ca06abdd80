#include "core/plot/SpectrumPlot.h"
#include "core/plot/WavePlot.h"
#include "core/run/display/RunPlot.h"
#include "ui/Binder.h"
#include "ui/widgets/RunView.h"

namespace sonavex::ui {

void Binder::Bind(SpectrumView& widget, SpectrumPlot& control) {
    Add(widget, control, [&widget, &control] { widget.Show(control); });
    using View = SpectrumView;
    connect(&widget, &View::FrequencyZoomed, this, [this, &control](double x, double steps) {
        Handle([&] { control.UserZoomsFrequency(x, steps); });
    });
    connect(&widget, &View::LevelZoomed, this,
            [this, &control](double y, double steps) { Handle([&] { control.UserZoomsLevel(y, steps); }); });
    connect(&widget, &View::CursorZoomed, this,
            [this, &control](double steps) { Handle([&] { control.UserZoomsAtCursor(steps); }); });
    connect(&widget, &View::Dragged, this,
            [this, &control](double x, double y) { Handle([&] { control.UserDrags(x, y); }); });
    connect(&widget, &View::Clicked, this,
            [this, &control](double x, double reach) { Handle([&] { control.UserClicks(x, reach); }); });
    connect(&widget, &View::Stepped, this,
            [this, &control](int bins) { Handle([&] { control.UserSteps(bins); }); });
    connect(&widget, &View::SteppedByHarmonic, this,
            [this, &control](int direction) { Handle([&] { control.UserStepsByHarmonic(direction); }); });
    connect(&widget, &View::CursorRemoved, this,
            [this, &control] { Handle([&] { control.UserRemovesCursor(); }); });
}

void Binder::Bind(RunView& widget, RunPlot& control) {
    Add(widget, control, [&widget, &control] { widget.Show(control); });
    connect(&widget, &RunView::Clicked, this,
            [this, &control](double x) { Handle([&] { control.UserPlacesCursor(x); }); });
    connect(&widget, &RunView::Stepped, this,
            [this, &control](int points) { Handle([&] { control.UserStepsCursor(points); }); });
}

void Binder::Bind(WaveView& widget, WavePlot& control) {
    Add(widget, control, [&widget, &control] { widget.Show(control); });
}

}  // namespace sonavex::ui
