#include "core/plot/SpectrumPlot.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/plot/PlotCursor.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr double kLowestPlotHz = 10.0;
constexpr PlotRange kWholeLevels{-180.0, 0.0};
constexpr PlotRange kLevelLimits{-220.0, 40.0};
constexpr double kLeastPlotDb = 10.0;
constexpr double kLeastPlotBins = 32.0;
constexpr double kZoomPerStep = 1.25;

}  // namespace

SpectrumPlot::SpectrumPlot() {
    Fit();
}

void SpectrumPlot::Show(Data data) {
    const bool newRate = data.rateHz != data_.rateHz;
    data_ = std::move(data);
    if (newRate) Fit();
    MarkDirty();
}

PlotUnit SpectrumPlot::Unit() const noexcept {
    return data_.fundamental ? unit_ : PlotUnit::kDbfs;
}

double SpectrumPlot::Plotted(double dbfs) const noexcept {
    return Unit() == PlotUnit::kDbc ? dbfs - data_.fundamental->levelDbfs : dbfs;
}

PlotRange SpectrumPlot::DecadeLimits() const {
    return {std::log10(kLowestPlotHz), std::log10(0.5 * data_.rateHz)};
}

void SpectrumPlot::SetView(const PlotView& view) {
    Assign(view_, view);
}

void SpectrumPlot::Fit() {
    SetView({DecadeLimits(), kWholeLevels});
}

const SpectrumTrace* SpectrumPlot::CursorTrace() const noexcept {
    const auto usable = [](const auto& trace) { return trace && !trace->power.empty(); };
    if (usable(data_.live)) return data_.live.get();
    return usable(kept_) ? kept_.get() : nullptr;
}

double SpectrumPlot::LeastDecades(double hertz) const {
    const SpectrumTrace* const trace = CursorTrace();
    return std::log10(1.0 + kLeastPlotBins * (trace != nullptr ? trace->binHz : 1.0) / hertz);
}

void SpectrumPlot::UserZoomsFrequency(double x, double steps) {
    SetView({Zoomed(view_.decades, x, std::pow(kZoomPerStep, steps), DecadeLimits(),
                    LeastDecades(view_.HertzAt(x))),
             view_.decibels});
    Change.Raise();
}

void SpectrumPlot::UserZoomsLevel(double y, double steps) {
    SetView({view_.decades,
             Zoomed(view_.decibels, y, std::pow(kZoomPerStep, steps), kLevelLimits, kLeastPlotDb)});
    Change.Raise();
}

void SpectrumPlot::UserZoomsAtCursor(double steps) {
    const double x = cursorHz_ ? view_.FractionOfHertz(*cursorHz_) : 0.5;
    UserZoomsFrequency(x >= 0 && x <= 1 ? x : 0.5, steps);
}

void SpectrumPlot::UserDrags(double x, double y) {
    SetView({Moved(view_.decades, -x, DecadeLimits()), Moved(view_.decibels, -y, kLevelLimits)});
    Change.Raise();
}

void SpectrumPlot::PlaceCursor(std::optional<double> hertz) {
    Assign(cursorHz_, hertz);
    if (!hertz) return;
    const double x = view_.FractionOfHertz(*hertz);
    // A cursor that leaves the view takes it along.
    if (x < 0 || x > 1)
        SetView({Moved(view_.decades, x < 0 ? x - 0.1 : x - 0.9, DecadeLimits()), view_.decibels});
}

void SpectrumPlot::UserClicks(double x, double reach) {
    const SpectrumTrace* const trace = CursorTrace();
    if (trace == nullptr) return;
    const std::size_t bin = PeakBin(*trace, view_.HertzAt(x - reach), view_.HertzAt(x + reach));
    Assign(cursorHz_, static_cast<double>(bin) * trace->binHz);
    Change.Raise();
}

void SpectrumPlot::UserRemovesCursor() {
    PlaceCursor(std::nullopt);
    Change.Raise();
}

void SpectrumPlot::UserSteps(int bins) {
    const SpectrumTrace* const trace = CursorTrace();
    if (trace == nullptr) return;
    const double start = cursorHz_.value_or(data_.fundamental ? data_.fundamental->hertz : 1000.0);
    const double bin = static_cast<double>(NearestBin(*trace, start)) + (cursorHz_ ? bins : 0);
    const double lowest = std::ceil(kLowestPlotHz / trace->binHz);
    PlaceCursor(trace->binHz * std::clamp(bin, lowest, static_cast<double>(trace->power.size() - 1)));
    Change.Raise();
}

void SpectrumPlot::UserStepsByHarmonic(int direction) {
    const SpectrumTrace* const trace = CursorTrace();
    if (trace == nullptr || !data_.fundamental) return;
    const double fundamental = data_.fundamental->hertz;
    // The cursor is within half a bin of the harmonic that it shows.
    const double position = cursorHz_.value_or(0.0) / fundamental;
    const double half = 0.6 * trace->binHz / fundamental;
    const double order =
        direction > 0 ? std::floor(position + half) + 1.0 : std::max(1.0, std::ceil(position - half) - 1.0);
    if (order * fundamental > trace->LastHz()) return;
    PlaceCursor(trace->binHz * static_cast<double>(NearestBin(*trace, order * fundamental)));
    Change.Raise();
}

std::optional<SpectrumPlot::Readout> SpectrumPlot::CursorReadout() const {
    if (!cursorHz_) return std::nullopt;
    Readout readout{WithDecimals(*cursorHz_, 2) + " Hz", "", "", ""};
    if (data_.live && *cursorHz_ <= data_.live->LastHz()) {
        const double level = LevelAt(*data_.live, *cursorHz_);
        readout.plotted = Plotted(level);
        readout.dbfs = WithDecimals(level, 1) + " dBFS";
        if (data_.fundamental) readout.dbc = WithDecimals(level - data_.fundamental->levelDbfs, 1) + " dBc";
    }
    const auto levelOf = [this](const std::shared_ptr<const SpectrumTrace>& trace) {
        return trace && *cursorHz_ <= trace->LastHz() ? WithDecimals(LevelAt(*trace, *cursorHz_), 1)
                                                      : std::string();
    };
    readout.kept = levelOf(kept_);
    readout.keptSecond = levelOf(keptSecond_);
    return readout;
}

std::string SpectrumPlot::Description() const {
    std::string text = "Spectrum in " + UnitText() + ".";
    if (data_.live) text += " " + data_.live->name + ".";
    for (const auto& kept : {kept_, keptSecond_})
        if (kept) text += " Kept trace: " + kept->name + ".";
    for (const SpectrumMarker& marker : data_.markers)
        text += " H" + std::to_string(marker.order) + (marker.bound ? " at most " : " ") +
                WithDecimals(Plotted(marker.levelDbfs), 1) + ".";
    if (data_.noisePerBinDbfs)
        text += " Noise per bin " + WithDecimals(Plotted(*data_.noisePerBinDbfs), 1) + ".";
    if (const auto cursor = CursorReadout()) {
        text += " Cursor " + cursor->hertz;
        for (const std::string* part : {&cursor->dbfs, &cursor->dbc})
            if (!part->empty()) text += ", " + *part;
        for (const std::string* level : {&cursor->kept, &cursor->keptSecond})
            if (!level->empty()) text += ", kept trace " + *level + " dBFS";
        text += ".";
    }
    return text;
}

}  // namespace sonavex
