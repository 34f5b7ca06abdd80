#include <gtest/gtest.h>

#include <cmath>

#include "core/plot/SpectrumPlot.h"

namespace sonavex {
namespace {

constexpr double kPlotBinHz = 48000.0 / 65536;

float PowerOf(double decibels) {
    return static_cast<float>(std::pow(10.0, decibels / 10));
}

// A tone on bin 1365 at -1 dBFS with its third harmonic, a hum line on bin 205 and a floor at -140.
struct PlotRig {
    PlotRig() {
        auto trace = std::make_shared<SpectrumTrace>(
            SpectrumTrace{"Left, live", std::vector<float>(32769, PowerOf(-140)), kPlotBinHz, 1});
        trace->power[1365] = PowerOf(-1);
        trace->power[4095] = PowerOf(-110);
        trace->power[204] = PowerOf(-122);
        trace->power[205] = PowerOf(-119.2);
        trace->power[206] = PowerOf(-123);
        data.live = trace;
        data.fundamental = PlotTone{999.756, -1.0};
        data.markers = {{2, 1999.512, -105.01}, {8, 7998.05, -141.7, true}};
        data.noisePerBinDbfs = -140.6;
        plot.Show(data);
    }
    double X(double hertz) const { return plot.View().FractionOfHertz(hertz); }

    SpectrumPlot::Data data;
    SpectrumPlot plot;
};

TEST(SpectrumPlot, ShowsEverythingAtFirst) {
    const PlotRig rig;
    EXPECT_NEAR(rig.plot.View().HertzAt(0), 10, 1e-9);
    EXPECT_NEAR(rig.plot.View().HertzAt(1), 24000, 1e-6);
    EXPECT_EQ(rig.plot.View().decibels, (PlotRange{-180, 0}));
}

TEST(SpectrumPlot, ZoomKeepsTheFrequencyBelowThePointer) {
    PlotRig rig;
    const double x = rig.X(1000);
    rig.plot.UserZoomsFrequency(x, 5);
    EXPECT_NEAR(rig.plot.View().HertzAt(x), 1000, 1e-6);
    EXPECT_LT(rig.plot.View().decades.Span(), 1.2);
    rig.plot.UserZoomsLevel(0.25, 3);
    EXPECT_NEAR(rig.plot.View().decibels.At(0.25), -135, 1e-9);
    rig.plot.Fit();
    EXPECT_EQ(rig.plot.View(), PlotRig().plot.View());
}

TEST(SpectrumPlot, ZoomEndsAtBinsAndAtTheWholeRange) {
    PlotRig rig;
    rig.plot.UserZoomsFrequency(rig.X(1000), 1000);
    EXPECT_NEAR(rig.plot.View().HertzAt(1) - rig.plot.View().HertzAt(0), 32 * kPlotBinHz, 0.5);
    rig.plot.UserZoomsFrequency(0.3, -1000);
    EXPECT_NEAR(rig.plot.View().HertzAt(0), 10, 1e-9);
    EXPECT_NEAR(rig.plot.View().HertzAt(1), 24000, 1e-6);
    rig.plot.UserZoomsLevel(0.5, 1000);
    EXPECT_NEAR(rig.plot.View().decibels.Span(), 10, 1e-9);
}

TEST(SpectrumPlot, DraggingMovesTheCurveWithThePointerWithinTheLimits) {
    PlotRig rig;
    rig.plot.UserZoomsFrequency(0.5, 4);
    rig.plot.UserZoomsLevel(0.5, 4);
    const PlotView before = rig.plot.View();
    rig.plot.UserDrags(0.1, -0.2);
    EXPECT_NEAR(rig.plot.View().HertzAt(0.6), before.HertzAt(0.5), 1e-6);
    EXPECT_NEAR(rig.plot.View().decibels.At(0.3), before.decibels.At(0.5), 1e-9);
    rig.plot.UserDrags(100, 0);
    EXPECT_NEAR(rig.plot.View().HertzAt(0), 10, 1e-9);
    EXPECT_NEAR(rig.plot.View().decades.Span(), before.decades.Span(), 1e-12);
}

TEST(SpectrumPlot, ANewRateFitsTheView) {
    PlotRig rig;
    rig.plot.UserZoomsFrequency(0.5, 4);
    rig.data.rateHz = 96000;
    rig.plot.Show(rig.data);
    EXPECT_NEAR(rig.plot.View().HertzAt(1), 48000, 1e-6);
    rig.plot.UserZoomsFrequency(0.5, 4);
    const PlotView zoomed = rig.plot.View();
    rig.plot.Show(rig.data);
    EXPECT_EQ(rig.plot.View(), zoomed);
}

TEST(SpectrumPlot, AClickPlacesTheCursorOnTheNearestPeak) {
    PlotRig rig;
    EXPECT_FALSE(rig.plot.CursorReadout());
    rig.plot.UserClicks(rig.X(151.5), 0.01);
    EXPECT_NEAR(rig.plot.CursorHz().value(), 205 * kPlotBinHz, 1e-9);
    // The strongest bin within reach lies on the flank of the peak.
    rig.plot.UserClicks(rig.X(206 * kPlotBinHz), 1e-6);
    EXPECT_NEAR(rig.plot.CursorHz().value(), 205 * kPlotBinHz, 1e-9);
    rig.plot.UserClicks(rig.X(3010), 0.01);
    EXPECT_NEAR(rig.plot.CursorHz().value(), 4095 * kPlotBinHz, 1e-9);
    rig.plot.UserClicks(1.0, 0.01);
    EXPECT_LE(rig.plot.CursorHz().value(), 24000);
}

TEST(SpectrumPlot, TheReadoutAgreesWithBothTraces) {
    PlotRig rig;
    rig.plot.UserClicks(rig.X(150.15), 0.001);
    auto readout = rig.plot.CursorReadout().value();
    EXPECT_EQ(readout.hertz, "150.15 Hz");
    EXPECT_EQ(readout.dbfs, "-119.2 dBFS");
    EXPECT_EQ(readout.dbc, "-118.2 dBc");
    EXPECT_EQ(readout.kept, "");
    EXPECT_NEAR(readout.plotted.value(), -119.2, 1e-5);
    rig.plot.Keep(std::make_shared<SpectrumTrace>(
        SpectrumTrace{"A", std::vector<float>(16385, PowerOf(-111.9)), 2 * kPlotBinHz, 1}));
    rig.plot.SetUnit(PlotUnit::kDbc);
    readout = rig.plot.CursorReadout().value();
    EXPECT_EQ(readout.kept, "-111.9");
    EXPECT_EQ(readout.dbfs, "-119.2 dBFS");
    EXPECT_NEAR(readout.plotted.value(), -118.2, 1e-5);
    rig.plot.UserRemovesCursor();
    EXPECT_FALSE(rig.plot.CursorReadout());
}

TEST(SpectrumPlot, TheCursorStaysWhereItWasPlaced) {
    PlotRig rig;
    rig.plot.UserClicks(rig.X(150.15), 0.001);
    rig.data.live = nullptr;
    rig.data.fundamental.reset();
    rig.plot.Show(rig.data);
    EXPECT_NEAR(rig.plot.CursorHz().value(), 205 * kPlotBinHz, 1e-9);
    EXPECT_EQ(rig.plot.CursorReadout().value().dbfs, "");
    EXPECT_EQ(rig.plot.CursorReadout().value().dbc, "");
}

TEST(SpectrumPlot, KeysMoveTheCursorByBinsAndHarmonics) {
    PlotRig rig;
    const auto bin = [&] { return std::lround(rig.plot.CursorHz().value() / kPlotBinHz); };
    rig.plot.UserSteps(1);
    EXPECT_EQ(bin(), 1365);
    rig.plot.UserSteps(1);
    EXPECT_EQ(bin(), 1366);
    rig.plot.UserSteps(-2);
    EXPECT_EQ(bin(), 1364);
    rig.plot.UserStepsByHarmonic(1);
    EXPECT_EQ(bin(), 1365);
    rig.plot.UserStepsByHarmonic(1);
    EXPECT_EQ(bin(), 2730);
    rig.plot.UserStepsByHarmonic(-1);
    rig.plot.UserStepsByHarmonic(-1);
    EXPECT_EQ(bin(), 1365);
    for (int i = 0; i < 40; ++i) rig.plot.UserStepsByHarmonic(1);
    EXPECT_EQ(bin(), 1365 * 24);
    rig.plot.UserSteps(100000);
    EXPECT_EQ(bin(), 32768);
    rig.plot.UserSteps(-100000);
    EXPECT_EQ(bin(), 14);
}

TEST(SpectrumPlot, ACursorThatLeavesTheViewTakesItAlong) {
    PlotRig rig;
    rig.plot.UserClicks(rig.X(1000), 0.01);
    rig.plot.UserZoomsAtCursor(12);
    ASSERT_LT(rig.X(2000), 10);
    ASSERT_GT(rig.X(2000), 1);
    rig.plot.UserStepsByHarmonic(1);
    EXPECT_NEAR(rig.X(2730 * kPlotBinHz), 0.9, 1e-9);
}

TEST(SpectrumPlot, WithoutAFundamentalLevelsAreInDbfs) {
    PlotRig rig;
    rig.plot.SetUnit(PlotUnit::kDbc);
    EXPECT_EQ(rig.plot.UnitText(), "dBc");
    EXPECT_NEAR(rig.plot.Plotted(-119.2), -118.2, 1e-9);
    rig.data.fundamental.reset();
    rig.plot.Show(rig.data);
    EXPECT_EQ(rig.plot.UnitText(), "dBFS");
    EXPECT_EQ(rig.plot.Plotted(-119.2), -119.2);
}

TEST(SpectrumPlot, UserActionsWithoutATraceDoNothing) {
    SpectrumPlot plot;
    plot.UserClicks(0.5, 0.1);
    plot.UserSteps(1);
    plot.UserStepsByHarmonic(1);
    EXPECT_FALSE(plot.CursorHz());
    plot.UserZoomsAtCursor(2);
    EXPECT_LT(plot.View().decades.Span(), 3.0);
}

TEST(SpectrumPlot, DescribesItself) {
    PlotRig rig;
    rig.plot.UserClicks(rig.X(150.15), 0.001);
    EXPECT_EQ(
        rig.plot.Description(),
        "Spectrum in dBFS. Left, live. H2 -105.0. H8 at most -141.7. Noise per bin -140.6. Cursor 150.15 "
        "Hz, -119.2 dBFS, -118.2 dBc.");
}

TEST(SpectrumPlot, EveryUserActionRaisesChange) {
    PlotRig rig;
    int changes = 0;
    rig.plot.Change.Handle([&] { ++changes; });
    rig.plot.UserClicks(0.5, 0.01);
    rig.plot.UserSteps(1);
    rig.plot.UserStepsByHarmonic(1);
    rig.plot.UserZoomsAtCursor(1);
    rig.plot.UserZoomsLevel(0.5, 1);
    rig.plot.UserDrags(0.1, 0);
    rig.plot.UserRemovesCursor();
    EXPECT_EQ(changes, 7);
    rig.plot.Show(rig.data);
    rig.plot.Fit();
    EXPECT_EQ(changes, 7);
}

}  // namespace
}  // namespace sonavex
