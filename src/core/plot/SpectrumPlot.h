#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/controls/Control.h"
#include "core/plot/PlotRange.h"
#include "core/plot/SpectrumTrace.h"

namespace sonavex {

// A harmonic at its measured level. A bound is drawn hollow.
struct SpectrumMarker {
    int order = 0;
    double hertz = 0;
    double levelDbfs = 0;
    bool bound = false;
};

struct PlotTone {
    double hertz = 0;
    double levelDbfs = 0;
};

enum class PlotUnit { kDbfs, kDbc };

// The plot of the spectrum: data, view (zoom) and cursor. Fractions are positions in the plot: x from 0 at
// the left, y from 0 at the bottom.
class SpectrumPlot : public Control {
public:
    // One reading. Empty values are not drawn.
    struct Data {
        std::shared_ptr<const SpectrumTrace> live;
        std::vector<SpectrumMarker> markers;  // in ascending order of the order
        std::optional<double> noisePerBinDbfs;
        std::optional<PlotTone> fundamental;  // without it levels cannot be in dBc
        double bandLowHz = 20;                // outside it the ground is shaded
        double bandHighHz = 20000;
        double rateHz = 48000;
        std::string conditions;  // line below the plot
    };

    SpectrumPlot();

    void Show(Data data);
    const Data& Shown() const noexcept { return data_; }
    // Traces to compare with; null removes them. A second one needs a first one.
    void Keep(std::shared_ptr<const SpectrumTrace> trace,
              std::shared_ptr<const SpectrumTrace> second = nullptr) {
        Assign(kept_, std::move(trace));
        Assign(keptSecond_, std::move(second));
    }
    const std::shared_ptr<const SpectrumTrace>& Kept() const noexcept { return kept_; }
    const std::shared_ptr<const SpectrumTrace>& KeptSecond() const noexcept { return keptSecond_; }

    // The unit of the level axis. dBc without a fundamental is shown as dBFS.
    void SetUnit(PlotUnit unit) { Assign(unit_, unit); }
    PlotUnit Unit() const noexcept;
    std::string UnitText() const { return Unit() == PlotUnit::kDbc ? "dBc" : "dBFS"; }
    // Level at the plot for a level in dBFS.
    double Plotted(double dbfs) const noexcept;

    const PlotView& View() const noexcept { return view_; }
    // Shows everything: 10 Hz to half the rate, 0 to -180 dB. After a change of the rate the view is fitted.
    void Fit();

    // Frequency of the cursor, always that of a bin of the trace on which it was placed.
    std::optional<double> CursorHz() const noexcept { return cursorHz_; }
    struct Readout {
        std::string hertz;                   // "150.15 Hz"
        std::string dbfs;                    // "-119.2 dBFS"; empty without a live trace
        std::string dbc;                     // "-118.2 dBc"; empty without a fundamental
        std::string kept;                    // "-111.9" in dBFS; empty without a kept trace
        std::optional<double> plotted = {};  // level of the live trace at the plot
        std::string keptSecond = {};         // the same of the second kept trace
    };
    // Empty without a cursor.
    std::optional<Readout> CursorReadout() const;
    // What the plot shows, as sentences for a screen reader.
    std::string Description() const;

    // The user turns the wheel at a position or presses + and - (at the cursor); steps above 0 magnify.
    void UserZoomsFrequency(double x, double steps);
    void UserZoomsLevel(double y, double steps);
    void UserZoomsAtCursor(double steps);
    // The user drags the plot by fractions of its size, to the right and upwards.
    void UserDrags(double x, double y);
    // Places the cursor on the strongest bin within `reach` of a position and climbs to its peak.
    void UserClicks(double x, double reach);
    // Moves the cursor by bins, or to the next multiple of the fundamental. Without a cursor it starts at the
    // fundamental.
    void UserSteps(int bins);
    void UserStepsByHarmonic(int direction);
    void UserRemovesCursor();

    // After every user action.
    UserEvent Change;

private:
    const SpectrumTrace* CursorTrace() const noexcept;
    PlotRange DecadeLimits() const;
    double LeastDecades(double hertz) const;
    void SetView(const PlotView& view);
    void PlaceCursor(std::optional<double> hertz);

    Data data_;
    std::shared_ptr<const SpectrumTrace> kept_;
    std::shared_ptr<const SpectrumTrace> keptSecond_;
    PlotUnit unit_ = PlotUnit::kDbfs;
    PlotView view_;
    std::optional<double> cursorHz_;
};

}  // namespace sonavex
