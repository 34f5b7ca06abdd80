#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "core/analyzer/AnalysisWindow.h"

namespace sonavex {
namespace {

TEST(AnalysisWindow, HasTheFiguresOfItsFamily) {
    const AnalysisWindow window(4096);
    EXPECT_NEAR(window.EnbwBins(), 2.631905, 1e-6);
    EXPECT_NEAR(window.SwallowedBins(), 3.4102, 1e-4);
    EXPECT_NEAR(-20.0 * std::log10(AnalysisWindow::Response(0.5)), 0.4846, 1e-4);
    EXPECT_NEAR(window.AmplitudeCorrelation(1024), 0.2572, 1e-4);
    EXPECT_NEAR(window.AmplitudeCorrelation(2048), 0.0033, 1e-4);
}

TEST(AnalysisWindow, SideLobesBeyond7BinsAreBelowMinus180Decibels) {
    double highest = 0.0;
    for (double bins = kHalfLobeBins; bins < 100.0; bins += 0.01)
        highest = std::max(highest, std::abs(AnalysisWindow::Response(bins)));
    EXPECT_NEAR(20.0 * std::log10(highest), -180.07, 0.05);
}

TEST(AnalysisWindow, IsSymmetricAboutTheCentre) {
    const AnalysisWindow window(5001);
    for (std::size_t n = 0; n < 2500; ++n) EXPECT_NEAR(window.Values()[n], window.Values()[5000 - n], 1e-15);
    EXPECT_NEAR(window.Values()[2500], 1.0, 1e-13);
}

TEST(AnalysisWindow, RefusesOtherLengths) {
    EXPECT_THROW(AnalysisWindow(4095), std::invalid_argument);
    EXPECT_THROW(AnalysisWindow(1048577), std::invalid_argument);
}

}  // namespace
}  // namespace sonavex
