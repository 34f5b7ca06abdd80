#include <gtest/gtest.h>

#include "core/generator/ToneLine.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

ToneRecord Sweeping(double startHz, double endHz, std::int32_t timeMs) {
    ToneRecord tone;
    tone.StartFrequency = startHz;
    tone.EndFrequency = endHz;
    tone.SweepTime = timeMs;
    tone.Sweep = true;
    return tone;
}

ToneRecord Parsed(std::string_view line) {
    ToneRecord tone;
    ParseToneLine(line, tone);
    return tone;
}

TEST(ToneLine, DescribesASweep) {
    EXPECT_EQ(MakeToneLine(Sweeping(1000, 5000, 2000), "Sine", true),
              "1000Hz / 5000Hz  / Sine / 2000ms / Loop");
    EXPECT_EQ(MakeToneLine(Sweeping(20.25, 12.5, 10000), "Sawtooth", false),
              "20.25Hz / 12.5Hz  / Sawtooth / 10000ms / No Loop");
}

TEST(ToneLine, DescribesATone) {
    ToneRecord tone = Sweeping(1000, 5000, 2000);
    tone.Sweep = false;
    EXPECT_EQ(MakeToneLine(tone, "Square", false), "1000Hz / NA / Square / NA / No Loop");
    EXPECT_EQ(MakeToneLine(tone, "Triangle", true), "1000Hz / NA / Triangle / NA / Loop");
    tone.StartFrequency = 12.5;
    EXPECT_EQ(MakeToneLine(tone, "Sine", false), "12.5Hz / NA / Sine / NA / No Loop");
}

TEST(ToneLine, ReadsATone) {
    const ToneRecord tone = Parsed("1000Hz / NA / Square / NA / No Loop");
    EXPECT_EQ(tone.StartFrequency, 1000.0);
    EXPECT_EQ(tone.EndFrequency, 0.0);
    EXPECT_EQ(tone.WaveType, wave::kSquare);
    EXPECT_EQ(tone.SweepTime, 0);
    EXPECT_FALSE(tone.Sweep);
    EXPECT_FALSE(tone.Loop);
}

TEST(ToneLine, ReadsASweep) {
    const ToneRecord tone = Parsed("12.5Hz / 5000Hz  / Triangle / 2000ms / Loop");
    EXPECT_EQ(tone.StartFrequency, 12.5);
    EXPECT_EQ(tone.EndFrequency, 5000.0);
    EXPECT_EQ(tone.WaveType, wave::kTriangle);
    EXPECT_EQ(tone.SweepTime, 2000);
    EXPECT_TRUE(tone.Sweep);
    EXPECT_TRUE(tone.Loop);
}

TEST(ToneLine, ComesBackAsItWas) {
    for (std::size_t type = 0; type < kWaveNames.size(); ++type) {
        for (const bool loop : {false, true}) {
            for (const ToneRecord& tone : {Sweeping(1, 16000, 1), Sweeping(22050, 20, 10000), ToneRecord()}) {
                const std::string line = MakeToneLine(tone, kWaveNames[type], loop);
                const ToneRecord read = Parsed(line);
                EXPECT_EQ(read.WaveType, static_cast<std::int16_t>(type)) << line;
                EXPECT_EQ(MakeToneLine(read, kWaveNames[type], read.Loop), line);
            }
        }
    }
}

TEST(ToneLine, LeavesTheStepAlone) {
    ToneRecord tone;
    tone.LoopIncrement = 4.5;
    tone.Frequency = 77.0;
    ParseToneLine("1000Hz / 5000Hz  / Sine / 2000ms / Loop", tone);
    EXPECT_EQ(tone.LoopIncrement, 4.5);
    EXPECT_EQ(tone.Frequency, 77.0);
}

TEST(ToneLine, ReadsZeroForWhatIsNoNumber) {
    const ToneRecord tone = Parsed("x / y / Sawtooth / z / Loop");
    EXPECT_EQ(tone.StartFrequency, 0.0);
    EXPECT_EQ(tone.EndFrequency, 0.0);
    EXPECT_EQ(tone.WaveType, wave::kSawtooth);
    EXPECT_EQ(tone.SweepTime, 0);
    EXPECT_FALSE(tone.Sweep);
    EXPECT_TRUE(tone.Loop);
}

TEST(ToneLine, RoundsTheSweepTimeHalfToEven) {
    EXPECT_EQ(Parsed("1Hz / 2Hz  / Sine / 2.5ms / Loop").SweepTime, 2);
    EXPECT_EQ(Parsed("1Hz / 2Hz  / Sine / 3.5ms / Loop").SweepTime, 4);
    EXPECT_FALSE(Parsed("1Hz / 2Hz  / Sine / 0.5ms / Loop").Sweep);
    EXPECT_TRUE(Parsed("1Hz / 2Hz  / Sine / -7ms / Loop").Sweep);
}

TEST(ToneLine, ReadsLoopFromTheRest) {
    for (const char* rest : {" No Loop", "No Loop", "   No Loop  "})
        EXPECT_FALSE(Parsed(std::string("1Hz / NA / Sine / NA /") + rest).Loop) << rest;
    for (const char* rest : {" Loop", "", " no loop", " No Loops", " anything"})
        EXPECT_TRUE(Parsed(std::string("1Hz / NA / Sine / NA /") + rest).Loop) << rest;
}

TEST(ToneLine, KeepsTheWaveformWhenItsNameIsUnknown) {
    ToneRecord tone;
    tone.WaveType = wave::kTriangle;
    ParseToneLine("1Hz / NA / Noise / NA / Loop", tone);
    EXPECT_EQ(tone.WaveType, wave::kTriangle);
    ParseToneLine("1Hz / NA /Sine / NA / Loop", tone);  // the four characters are "Sine"
    EXPECT_EQ(tone.WaveType, wave::kTriangle);
    ParseToneLine("1Hz / NA / Sin", tone);
    EXPECT_EQ(tone.WaveType, wave::kSine);
}

TEST(ToneLine, SurvivesAnyText) {
    for (const char* line : {"", "/", "////", "//////", "Hz", "1000", "/ / / / /"}) {
        const ToneRecord tone = Parsed(line);
        EXPECT_EQ(tone.SweepTime, 0) << line;
        EXPECT_TRUE(tone.Loop) << line;
    }
    EXPECT_EQ(ErrorOf([] { return Parsed("1e999Hz / NA / Sine / NA / Loop"); }), 6);
    EXPECT_EQ(ErrorOf([] { return Parsed("1Hz / 2Hz  / Sine / 3000000000ms / Loop"); }), 6);
}

TEST(ToneLine, WithoutAWaveformKeepsTheOneBefore) {
    for (const char* line : {"1000Hz", "1000Hz / NA", "1000Hz / NA / ", "1000Hz / NA /  / NA / Loop"}) {
        ToneRecord tone;
        tone.WaveType = wave::kTriangle;
        ParseToneLine(line, tone);
        EXPECT_EQ(tone.WaveType, wave::kTriangle) << line;
    }
}

}  // namespace
}  // namespace sonavex
