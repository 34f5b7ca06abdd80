#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "core/audio/Meter.h"
#include "support/AllocationCounter.h"
#include "support/Blocks.h"

namespace sonavex {
namespace {

// Prevents the compiler from removing unused memory.
void Use(const void* memory) {
    asm volatile("" : : "r"(memory) : "memory");
}

TEST(AllocationCounter, NoticesNew) {
    const AllocationCounter counter;
    const auto value = std::make_unique<int>(3);
    Use(value.get());
    EXPECT_EQ(counter.Count(), 1U);
}

TEST(AllocationCounter, NoticesContainersAndAlignedMemory) {
    struct alignas(64) Wide {
        double values[8];
    };
    const AllocationCounter counter;
    const std::vector<double> vector(100);
    const std::string text(40, 'x');
    const auto wide = std::make_unique<Wide>();
    Use(vector.data());
    Use(text.data());
    Use(wide.get());
    EXPECT_EQ(counter.Count(), 3U);
}

TEST(AllocationCounter, NoticesTheCLibrary) {
    const AllocationCounter counter;
    void* memory = std::malloc(10);
    Use(memory);
    memory = std::realloc(memory, 100000);
    Use(memory);
    void* const zeros = std::calloc(2, 8);
    Use(zeros);
    std::free(memory);
    std::free(zeros);
    EXPECT_EQ(counter.Count(), AllocationCounter::SeesTheCLibrary() ? 3U : 0U);
}

TEST(AllocationCounter, CountsOnlyWhileItExists) {
    { const AllocationCounter counter; }
    const auto before = std::make_unique<int>(3);
    Use(before.get());
    const AllocationCounter counter;
    EXPECT_EQ(counter.Count(), 0U);
}

TEST(LabelAllocation, AnEqualCaptionAsksForNoMemory) {
    const std::string sentence(60, 'a');
    const std::string longer(200, 'b');
    Label label;
    label.SetCaption(sentence);
    const AllocationCounter counter;
    for (int i = 0; i < 3; ++i) label.SetCaption(sentence);
    EXPECT_EQ(counter.Count(), 0U);
    label.SetCaption(longer);
    EXPECT_EQ(counter.Count(), 1U);
    EXPECT_EQ(label.Caption(), longer);
}

struct Setting {
    std::int16_t waveType;
    std::int32_t tones;
    bool mute;
};

class BlockAllocation : public testing::TestWithParam<Setting> {
protected:
    BlockAllocation() {
        const Setting& setting = GetParam();
        meter.SetUpAnalysis(25, 15900);
        meter.Controls.chkAuto.SetValue(1);
        meter.Controls.chkMuteOutput.SetValue(setting.mute ? 1 : 0);
        meter.Generator.NumTones = setting.tones;
        for (std::size_t i = 0; i < static_cast<std::size_t>(setting.tones); ++i) {
            meter.Generator.Tones[i].WaveType = setting.waveType;
            meter.Generator.Tones[i].Frequency = 200.0 * static_cast<double>(i + 1);
        }
        meter.Generator.ResetTonePhases();
        meter.Generator.SetGeneratorRunning(setting.tones > 0);
    }

    void Feed(const Block& captured, int blocks) {
        for (int i = 0; i < blocks; ++i) meter.ProcessCapturedBlock(captured, playback);
    }

    SharedState shared;
    Meter meter{shared};
    Block playback{};
    const Block tone = MakeBlock(Sum(Sine(32000, 1000, 9000), Sine(32000, 2000, 90)), 0);
    const Block silence{};
    const Block loud = MakeBlock(Sine(32000, 5000, 32767), 0);
};

TEST_P(BlockAllocation, WarmBlocksAskForNoMemory) {
    Feed(tone, 18 + 19);
    const AllocationCounter counter;
    Feed(tone, 18);
    EXPECT_EQ(counter.Count(), 0U) << "locked";
    ASSERT_TRUE(meter.Analysis().FreqLocked);
    Feed(tone, 1);
    ASSERT_TRUE(meter.Updated());
    EXPECT_EQ(counter.Count(), 0U) << "display update";
    Feed(silence, 10);
    ASSERT_FALSE(meter.Analysis().FreqLocked);
    EXPECT_EQ(counter.Count(), 0U) << "unlocked";
    Feed(loud, 9 + 19);
    ASSERT_TRUE(meter.Updated());
    EXPECT_EQ(counter.Count(), 0U) << "overload";
}

TEST_P(BlockAllocation, ARetunedToneAsksForNoMemory) {
    Feed(tone, 19);
    meter.Controls.chkAuto.SetValue(0);
    const AllocationCounter counter;
    for (ToneRecord& record : meter.Generator.Tones) record.SweepFrequency = record.Frequency += 3.5;
    Feed(tone, 19);
    EXPECT_EQ(counter.Count(), 0U);
}

std::string NameOf(const testing::TestParamInfo<Setting>& info) {
    const std::string wave = kWaveNames[static_cast<std::size_t>(info.param.waveType)];
    return wave + std::to_string(info.param.tones) + (info.param.mute ? "Muted" : "Open");
}

std::vector<Setting> AllSettings() {
    std::vector<Setting> settings{{wave::kSine, 0, true}, {wave::kSine, 0, false}};
    for (const std::int16_t waveType : {wave::kSine, wave::kSquare, wave::kTriangle, wave::kSawtooth})
        for (const std::int32_t tones : {1, 9})
            for (const bool mute : {true, false}) settings.push_back({waveType, tones, mute});
    return settings;
}

INSTANTIATE_TEST_SUITE_P(Tones, BlockAllocation, testing::ValuesIn(AllSettings()), NameOf);

}  // namespace
}  // namespace sonavex
