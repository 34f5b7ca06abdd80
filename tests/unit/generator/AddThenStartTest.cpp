#include <gmock/gmock.h>

#include "support/PanelRig.h"

namespace sonavex {
namespace {

using testing::Each;

// Adding a tone leaves NumTones different from what plays next.
class AddThenStart : public PanelRig {
protected:
    AddThenStart() { Init(); }
    // A block of the current signal of 440 Hz after `entries` additions.
    std::vector<double> BlockAfter(int entries) {
        MoveTo(signal.sldStartFreq, 440);
        Add(entries);
        if (entries > 0) {
            EXPECT_EQ(generator.NumTones, memory.ToneList.Count() - 1);
        }
        signal.Command1.Press();
        EXPECT_EQ(generator.NumTones, 1);
        const auto block = bench.Fill();
        signal.Command1.Press();
        return block;
    }
};

TEST_F(AddThenStart, PlaysTheCurrentSignalAlone) {
    const auto expected = BlockAfter(0);
    EXPECT_NEAR(*std::max_element(expected.begin(), expected.end()), 8191.75, 1.0);
    for (int entry = 1; entry <= 8; ++entry) EXPECT_EQ(BlockAfter(1), expected) << entry;
}

TEST_F(AddThenStart, PlaysTheSelectedTonesAlone) {
    Add(5);
    for (std::int32_t entry = 0; entry < 3; ++entry) Select(entry);
    memory.cmdStartMemory.Press();
    EXPECT_EQ(generator.NumTones, 3);
    memory.cmdStartMemory.Press();
    Select(0, false);
    memory.cmdStartMemory.Press();
    EXPECT_EQ(generator.NumTones, 2);
}

TEST_F(AddThenStart, IsSilentInBetween) {
    for (int entry = 0; entry < 8; ++entry) {
        Add();
        EXPECT_THAT(bench.Fill(), Each(0.0)) << entry;
        // The remaining number may be 1, and the slider then writes the first record.
        MoveTo(signal.sldStartFreq, 500 + entry);
        EXPECT_THAT(bench.Fill(), Each(0.0)) << entry;
    }
}

TEST_F(AddThenStart, StartsAtTheFrequencyThatTheSliderShowsThen) {
    Add(2);
    ASSERT_EQ(generator.NumTones, 1);
    MoveTo(signal.sldStartFreq, 700);
    MoveTo(signal.sldStartFreq, 900);
    signal.Command1.Press();
    EXPECT_EQ(Tone().Frequency, 900.0);
    EXPECT_EQ(Tone().Period, 49.0);
    EXPECT_NEAR(bench.Fill()[0], 8191.75 * std::sin(2.0 * 3.14159265358979 / 49.0), 1e-6);
}

}  // namespace
}  // namespace sonavex
