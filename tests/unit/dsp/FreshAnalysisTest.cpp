#include <gtest/gtest.h>

#include <memory>

#include "core/dsp/display/MeasurementControls.h"
#include "core/dsp/modDSP.h"

namespace sonavex {
namespace {

TEST(FreshAnalysis, KnowsNothingYet) {
    const auto state = std::make_unique<modDSP::State>();
    EXPECT_EQ(state->BinWidth, 0.0F);
    EXPECT_EQ(state->CutoffBin, 0);
    EXPECT_EQ(state->LowFraction, 0.0);
    EXPECT_EQ(state->HighFraction, 0.0);
    EXPECT_EQ(state->InputPeak, 0.0);
    EXPECT_EQ(state->InputPeakB, 0.0);
    EXPECT_EQ(state->OutputPeak, 0.0);
    EXPECT_EQ(state->SynthPeak, 0.0);
    EXPECT_EQ(state->PeakBin, 0);
    EXPECT_EQ(state->PeakMag, 0);
    EXPECT_EQ(state->FundamentalHz, 0);
    EXPECT_FALSE(state->FreqLocked);
    EXPECT_EQ(state->HistIndex, 0);
    EXPECT_EQ(state->CurrentHz, 0);
    EXPECT_EQ(state->CurrentRate, 0);
}

TEST(FreshAnalysis, HasATransformOf4096Points) {
    const auto state = std::make_unique<modDSP::State>();
    EXPECT_EQ(state->FftOrder, 12);
    EXPECT_EQ(state->plan.Order(), 12);
}

TEST(FreshAnalysis, ShowsBarsUpToFullScale) {
    const MeasurementControls controls;
    EXPECT_EQ(controls.prgADC.Max(), 32760.0F);
    EXPECT_EQ(controls.prgDAC.Max(), 32760.0F);
}

}  // namespace
}  // namespace sonavex
