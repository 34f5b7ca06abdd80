#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "core/stimulus/ParseStimulus.h"
#include "core/stimulus/StimulusPlan.h"

namespace sonavex {
namespace {

StimulusRequest Request(std::string_view text, double rateHz = 48000.0, std::size_t length = 65536) {
    StimulusRequest request;
    request.stimulus = ParseStimulus(text);
    request.rateHz = rateHz;
    request.length = length;
    return request;
}

std::string PlanRefusal(const StimulusRequest& request) {
    try {
        PlanStimulus(request);
    } catch (const StimulusError& error) {
        return error.what();
    }
    return "accepted";
}

double BinsOf(const PlannedTone& tone, std::size_t length) {
    return std::ldexp(static_cast<double>(tone.step), -64) * static_cast<double>(length);
}

TEST(StimulusPlan, ASineHasTheTypedFrequency) {
    const StimulusPlan plan = PlanStimulus(Request("sine:1000.366"));
    ASSERT_EQ(plan.tones.size(), 1U);
    EXPECT_FALSE(plan.Periodic());
    EXPECT_EQ(plan.tones[0].hertz, 1000.366);
    EXPECT_DOUBLE_EQ(std::ldexp(static_cast<double>(plan.tones[0].step), -64) * 48000.0, 1000.366);
}

TEST(StimulusPlan, SnapsToTheNearestOddBin) {
    StimulusRequest request = Request("sine:1000");
    request.snap = true;
    const PlannedTone tone = PlanStimulus(request).tones.at(0);
    EXPECT_EQ(BinsOf(tone, 65536), 1365.0);
    EXPECT_EQ(tone.hertz, 999.755859375);
    request.stimulus = ParseStimulus("pair:1001,7000.5");
    const auto tones = PlanStimulus(request).tones;
    EXPECT_EQ(BinsOf(tones.at(0), 65536), 1367.0);  // 1366.7
    EXPECT_EQ(BinsOf(tones.at(1), 65536), 9559.0);  // 9558.02
}

TEST(StimulusPlan, PeriodicShapesAreOnTheNearestBin) {
    for (const char* const text :
         {"square:1000.5", "triangle:1000.5", "sawtooth:1000.5", "multitone:1000.5@0"}) {
        const StimulusPlan plan = PlanStimulus(Request(text));
        EXPECT_TRUE(plan.Periodic());
        EXPECT_EQ(BinsOf(plan.tones.at(0), 65536), 1366.0) << text;
        EXPECT_EQ(plan.tones.at(0).hertz, 1366.0 * 48000.0 / 65536.0) << text;
    }
}

TEST(StimulusPlan, LimitsOfASine) {
    for (const double hertz : {5.859375, 23994.140625}) {
        StimulusRequest request = Request("sine:1");
        request.stimulus.tones[0].hertz = hertz;
        EXPECT_EQ(PlanRefusal(request), "accepted");
        request.snap = true;
        const double bins = BinsOf(PlanStimulus(request).tones.at(0), 65536);
        EXPECT_TRUE(bins == 9.0 || bins == 32759.0) << bins;
    }
    const std::string limits = " Hz is outside 5.859375 to 23994.140625 Hz at a rate of 48000 Hz.";
    EXPECT_EQ(PlanRefusal(Request("sine:5.859")), "The frequency 5.859" + limits);
    EXPECT_EQ(PlanRefusal(Request("pair:1000,24000")), "The frequency 24000" + limits);
}

TEST(StimulusPlan, LimitsOfSquareTriangleAndSawtooth) {
    EXPECT_EQ(PlanRefusal(Request("square:21600")), "accepted");
    EXPECT_EQ(PlanRefusal(Request("sawtooth:21601")),
              "The frequency 21601 Hz is outside 5.859375 to 21600 Hz at a rate of 48000 Hz.");
    EXPECT_EQ(PlanRefusal(Request("triangle:15", 192000, 65536)),
              "The frequency 15 Hz is outside 23.4375 to 86400 Hz at a rate of 192000 Hz.");
}

TEST(StimulusPlan, TonesAreEightBinsApart) {
    EXPECT_EQ(PlanRefusal(Request("pair:1000,1005.86")), "accepted");
    EXPECT_EQ(PlanRefusal(Request("pair:1005.85,1000")),
              "The tones 1000 Hz and 1005.85 Hz are closer than 5.859375 Hz, 8 bins of a record.");
    EXPECT_EQ(PlanRefusal(Request("multitone:300@0,100@0,300@0")),
              "The tones 300.29296875 Hz and 300.29296875 Hz are closer than 5.859375 Hz, 8 bins of a "
              "record.");
}

TEST(StimulusPlan, TonesPerOctaveFillTheBand) {
    for (const double rateHz : {4000.0, 44100.0, 48000.0, 192000.0}) {
        for (const std::size_t length : {4096U, 65536U}) {
            const StimulusPlan plan = PlanStimulus(Request("multitone:3/oct", rateHz, length));
            const double binHz = rateHz / static_cast<double>(length);
            ASSERT_GT(plan.tones.size(), 10U);
            EXPECT_GE(plan.tones.front().hertz, 8 * binHz);
            EXPECT_LT(plan.tones.front().hertz, std::max(20.5, 11.0 * binHz));
            EXPECT_LE(plan.tones.back().hertz, rateHz / 2 - 8 * binHz);
            EXPECT_GT(plan.tones.back().hertz, std::min(20000.0, rateHz / 2 - 11 * binHz) / 1.26);
            for (std::size_t i = 1; i < plan.tones.size(); ++i) {
                const double distance = BinsOf(plan.tones[i], length) - BinsOf(plan.tones[i - 1], length);
                EXPECT_GE(distance, 8.0);
                EXPECT_EQ(distance, std::round(distance));
            }
        }
    }
    EXPECT_EQ(PlanStimulus(Request("multitone:1/oct")).tones.size(), 10U);
}

TEST(StimulusPlan, NoiseHasNoTones) {
    EXPECT_TRUE(PlanStimulus(Request("white")).tones.empty());
    EXPECT_TRUE(PlanStimulus(Request("pink")).Periodic());
}

}  // namespace
}  // namespace sonavex
