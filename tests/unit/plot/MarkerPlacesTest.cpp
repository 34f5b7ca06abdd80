#include <gtest/gtest.h>

#include <cmath>

#include "core/plot/MarkerPlaces.h"

namespace sonavex {
namespace {

constexpr PlotSize kPlotSize{520, 346, 7, 13};
const PlotView kWholeView{{1.0, std::log10(24000.0)}, {-180, 0}};

std::vector<PlotMark> HarmonicsOf(double hertz, int highest, double level) {
    std::vector<PlotMark> marks;
    for (int order = 2; order <= highest; ++order) marks.push_back({order, order * hertz, level});
    return marks;
}

TEST(MarkerPlaces, MarksAreAtTheirFrequencyAndLevel) {
    const std::vector<double> curve(520, 330.0);
    const auto places = PlaceMarkers(HarmonicsOf(1000, 3, -105), kWholeView, kPlotSize, curve);
    ASSERT_EQ(places.size(), 2U);
    EXPECT_NEAR(places[0].x, 353.98, 0.01);
    EXPECT_NEAR(places[0].y, 201.83, 0.01);
    EXPECT_NEAR(places[0].numberBottom, 196.83, 0.01);
}

TEST(MarkerPlaces, NumbersAreAboveBothCurves) {
    std::vector<double> curve(1040, 300.0);
    curve[711] = 150.0;
    const auto places = PlaceMarkers(HarmonicsOf(1000, 3, -105), kWholeView, kPlotSize, curve);
    EXPECT_NEAR(places[0].numberBottom, 148.0, 0.01);
    EXPECT_NEAR(places[1].numberBottom, 196.83, 0.01);
    curve[711] = 1.0;
    EXPECT_EQ(PlaceMarkers(HarmonicsOf(1000, 2, -105), kWholeView, kPlotSize, curve)[0].numberBottom, 13);
}

TEST(MarkerPlaces, ANumberThatWouldTouchAnotherIsLeftOut) {
    const auto places = PlaceMarkers(HarmonicsOf(100, 20, -105), kWholeView, kPlotSize, {});
    ASSERT_EQ(places.size(), 19U);
    std::string numbered;
    for (const MarkerPlace& place : places)
        if (place.numbered) numbered += std::to_string(place.order) + " ";
    EXPECT_EQ(numbered, "2 3 4 5 6 7 8 9 11 14 18 ");
}

TEST(MarkerPlaces, MarksOutsideTheViewAreLeftOut) {
    const PlotView view{{3.2, 4.0}, {-120, -60}};
    EXPECT_EQ(PlaceMarkers(HarmonicsOf(1000, 20, -105), view, kPlotSize, {}).size(), 9U);
    EXPECT_TRUE(PlaceMarkers(HarmonicsOf(1000, 20, -125), view, kPlotSize, {}).empty());
}

TEST(MarkerPlaces, TheHighestCurve) {
    const std::vector<TraceColumn> live{{-100, -110, -90}, {-100, -110, -40, true}, {std::nan(""), 0, 0}};
    const std::vector<TraceColumn> kept{{-80, -80, -80}, {-80, -80, -80}, {-80, -80, -80}};
    const auto both = HighestCurve(live, kept, {-200, 0}, 200);
    EXPECT_NEAR(both[0], 80, 1e-9);
    EXPECT_NEAR(both[1], 40, 1e-9);
    EXPECT_NEAR(both[2], 80, 1e-9);
    EXPECT_NEAR(HighestCurve(live, {}, {-200, 0}, 200)[0], 100, 1e-9);
}

}  // namespace
}  // namespace sonavex
