#include <gtest/gtest.h>

#include "core/generator/GeneratorWords.h"

namespace sonavex {
namespace {

class GeneratorWordsTest : public testing::Test {
protected:
    // A tone on its way from 1000 to 2000 Hz, or at its end.
    void AddSweep(double frequencyHz, bool loop = false) {
        ToneRecord& tone = generator.Tones[static_cast<std::size_t>(generator.NumTones++)];
        tone.Sweep = true;
        tone.Loop = loop;
        tone.LoopIncrement = 1.0;
        tone.StartFrequency = 1000.0;
        tone.EndFrequency = 2000.0;
        tone.Frequency = tone.SweepFrequency = frequencyHz;
    }
    GeneratorWords Words(bool clockRuns = true) { return GeneratorWords::Of(generator, clockRuns); }

    SharedState shared;
    Generator generator{shared};
};

TEST_F(GeneratorWordsTest, SayWhetherItPlays) {
    EXPECT_EQ(Words().state, "Generator stopped");
    generator.SetGeneratorRunning(true);
    generator.NumTones = 1;
    EXPECT_EQ(Words().state, "Generator playing");
    generator.NumTones = 3;
    EXPECT_EQ(Words().state, "Generator playing 3 tones");
    generator.NumTones = 8;
    EXPECT_EQ(Words().state, GeneratorWords::kLongestState);
    generator.NumTones = 3;
    EXPECT_EQ(Words().detail, "") << "nothing sweeps";
}

TEST_F(GeneratorWordsTest, SayWhereASweepIs) {
    generator.SetGeneratorRunning(true);
    AddSweep(1250.4);
    EXPECT_EQ(Words().detail, "sweeping, 1250 Hz");
    EXPECT_EQ(Words(false).detail, "") << "nothing advances";
    generator.Tones[0].Frequency = 1250.5;
    EXPECT_EQ(Words().detail, "sweeping, 1251 Hz");
    generator.Tones[0].Frequency = -0.4;
    EXPECT_EQ(Words().detail, "sweeping, 0 Hz");
    generator.SetGeneratorRunning(false);
    EXPECT_EQ(Words().detail, "") << "stopped";
}

TEST_F(GeneratorWordsTest, IgnoreTonesThatDoNotPlay) {
    generator.SetGeneratorRunning(true);
    AddSweep(1250.0);
    generator.NumTones = 0;
    EXPECT_EQ(Words().detail, "");
}

TEST_F(GeneratorWordsTest, SayThatASweepHasEnded) {
    generator.SetGeneratorRunning(true);
    AddSweep(2000.0);
    EXPECT_EQ(Words().detail, "sweep ended at 2000 Hz");
    generator.Tones[0].Loop = true;
    EXPECT_EQ(Words().detail, "sweeping, 2000 Hz") << "a looping sweep has no end";
}

TEST_F(GeneratorWordsTest, CountTheSweepsOfSeveralTones) {
    generator.SetGeneratorRunning(true);
    AddSweep(1100.0);
    AddSweep(1200.0);
    EXPECT_EQ(Words().detail, "2 tones sweeping");
    AddSweep(2000.0);
    EXPECT_EQ(Words().detail, "2 sweeping, 1 ended");
    for (ToneRecord& tone : generator.Tones) tone.Frequency = tone.SweepFrequency = 2000.0;
    EXPECT_EQ(Words().detail, "3 sweeps ended");
}

TEST_F(GeneratorWordsTest, CountTheMemory) {
    EXPECT_EQ(MemoryWords(0), "0 of 8");
    EXPECT_EQ(MemoryWords(8), "8 of 8");
}

}  // namespace
}  // namespace sonavex
