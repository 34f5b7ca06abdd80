#include <gtest/gtest.h>

#include <string>

#include "core/stimulus/ParseStimulus.h"

namespace sonavex {
namespace {

void ExpectTone(const StimulusTone& tone, double hertz, double amplitude) {
    EXPECT_EQ(tone.hertz, hertz);
    EXPECT_DOUBLE_EQ(tone.amplitude, amplitude);
}

void ExpectPair(std::string_view text, double firstHz, double secondHz, double ratio) {
    SCOPED_TRACE(text);
    const Stimulus pair = ParseStimulus(text);
    EXPECT_EQ(pair.shape, StimulusShape::kPair);
    ASSERT_EQ(pair.tones.size(), 2U);
    ExpectTone(pair.tones[0], firstHz, ratio);
    ExpectTone(pair.tones[1], secondHz, 1.0);
}

TEST(ParseStimulus, OneFrequency) {
    const std::pair<std::string, StimulusShape> kCases[] = {{"sine:1000.366", StimulusShape::kSine},
                                                            {"square:1000.366", StimulusShape::kSquare},
                                                            {"triangle:1000.366", StimulusShape::kTriangle},
                                                            {"sawtooth:1000.366", StimulusShape::kSawtooth}};
    for (const auto& [text, shape] : kCases) {
        SCOPED_TRACE(text);
        const Stimulus stimulus = ParseStimulus(text);
        EXPECT_EQ(stimulus.shape, shape);
        ASSERT_EQ(stimulus.tones.size(), 1U);
        ExpectTone(stimulus.tones[0], 1000.366, 1.0);
    }
}

TEST(ParseStimulus, Pairs) {
    ExpectPair("pair:19e3,2e4", 19000.0, 20000.0, 1.0);
    ExpectPair("pair:7000,60,0.25", 7000.0, 60.0, 0.25);
    ExpectPair("smpte", 60.0, 7000.0, 4.0);
    ExpectPair("din", 250.0, 8000.0, 4.0);
    ExpectPair("ccif", 19000.0, 20000.0, 1.0);
    ExpectPair("aes17-mod", 41.0, 7993.0, 4.0);
    ExpectPair("aes17-dfd", 18000.0, 20000.0, 1.0);
}

TEST(ParseStimulus, Multitones) {
    const Stimulus list = ParseStimulus("multitone:100@0,1000@-20,5000@6");
    EXPECT_EQ(list.shape, StimulusShape::kMultitone);
    EXPECT_EQ(list.tonesPerOctave, 0);
    ASSERT_EQ(list.tones.size(), 3U);
    ExpectTone(list.tones[0], 100.0, 1.0);
    ExpectTone(list.tones[1], 1000.0, 0.1);
    ExpectTone(list.tones[2], 5000.0, 1.9952623149688795);
    const Stimulus octaves = ParseStimulus("multitone:3/oct");
    EXPECT_EQ(octaves.shape, StimulusShape::kMultitone);
    EXPECT_EQ(octaves.tonesPerOctave, 3);
    EXPECT_TRUE(octaves.tones.empty());
}

TEST(ParseStimulus, Noise) {
    EXPECT_EQ(ParseStimulus("white").shape, StimulusShape::kWhiteNoise);
    EXPECT_EQ(ParseStimulus("pink").shape, StimulusShape::kPinkNoise);
}

std::string RefusalOf(std::string_view text) {
    try {
        ParseStimulus(text);
    } catch (const StimulusError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(ParseStimulus, AnythingElseIsRefusedWithTheReason) {
    const auto expect = [](std::string_view text, const std::string& reason) {
        EXPECT_EQ(RefusalOf(text), "The stimulus '" + std::string(text) + "' " + reason);
    };
    const std::string notation = std::string("is not one of ") + kStimulusNotation + ".";
    for (const char* const text : {"", "sinus:5", "sine", "SMPTE", "white:1", "smpte:", "din ", ":", "pair"})
        expect(text, notation);
    for (const char* const text : {"sine:", "sine:0", "sine:-5", "sine: 5", "sine:+5", "sine:5Hz", "sine:nan",
                                   "sine:inf", "sine:1e999", "square:1,2", "pair:1,", "multitone:@0"})
        expect(text, "has a frequency that is not a positive number.");
    for (const char* const text : {"pair:", "pair:1", "pair:1,2,3,4"})
        expect(text, "is not of the form pair:F1,F2[,RATIO].");
    for (const char* const text : {"pair:1,2,", "pair:1,2,0", "pair:1,2,0.0009", "pair:1,2,1001"})
        expect(text, "has a ratio that is not a number from 0.001 to 1000.");
    for (const char* const text : {"multitone:", "multitone:5", "multitone:5@1@2", "multitone:5@0,"})
        expect(text, "is not of the form multitone:F@DB,... or multitone:N/oct.");
    for (const char* const text : {"multitone:5@", "multitone:5@x", "multitone:5@141", "multitone:5@-140.5"})
        expect(text, "has a level that is not a number from -140 to 140 dB.");
    for (const char* const text :
         {"multitone:/oct", "multitone:0/oct", "multitone:2.5/oct", "multitone:25/oct"})
        expect(text, "has a number of tones per octave that is not a whole number from 1 to 24.");
}

TEST(ParseStimulus, TooManyTones) {
    std::string text = "multitone:1@0";
    for (int i = 1; i < 200; ++i) text += ",1@0";
    EXPECT_EQ(ParseStimulus(text).tones.size(), 200U);
    EXPECT_EQ(RefusalOf(text + ",1@0"),
              "The stimulus '" + text.substr(0, 60) + "...' has more than 200 tones.");
}

TEST(ParseStimulus, ARefusalIsOneLine) {
    EXPECT_EQ(RefusalOf("sine:\n5"), "The stimulus 'sine: 5' has a frequency that is not a positive number.");
}

}  // namespace
}  // namespace sonavex
