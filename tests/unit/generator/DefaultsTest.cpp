#include <gtest/gtest.h>

#include "platform/plain/MemorySettingsStore.h"
#include "support/Errors.h"
#include "support/GeneratorBench.h"

namespace sonavex {
namespace {

class Defaults : public testing::Test {
protected:
    Defaults() { sldLevel.SetRange(-9600, 0); }
    void Load(const char* level) {
        store.Save("Signal Generator", "Level", level);
        bench.generator.LoadGeneratorDefaults(settings, sldLevel);
    }

    GeneratorBench bench{22050};
    MemorySettingsStore store;
    Settings settings{store};
    Slider sldLevel;
};

TEST_F(Defaults, AreAllLoaded) {
    bench.generator.GeneratorState = 8;
    Load("-1234.5");
    const Generator::Defaults& loaded = bench.generator.LoadedDefaults();
    EXPECT_EQ(loaded.level, -1234.5);
    EXPECT_EQ(loaded.name, "test");
    EXPECT_TRUE(loaded.enabled);
    EXPECT_EQ(loaded.constants, (std::array{0.005, 3.0, 5.0}));
    EXPECT_EQ(loaded.sampleRate, 22050.0);
    EXPECT_EQ(loaded.referenceRate, 44100);
    EXPECT_EQ(loaded.blockLength, 2048);
    EXPECT_EQ(bench.generator.GeneratorState, 0);
}

TEST_F(Defaults, HaveTheirOwnLevelWhereNoneIsStored) {
    sldLevel.SetRange(-100, 100);
    bench.generator.LoadGeneratorDefaults(settings, sldLevel);
    EXPECT_EQ(bench.generator.LoadedDefaults().level, 50.0);
    EXPECT_EQ(sldLevel.Value(), 50);
    EXPECT_EQ(store.Size(), 0U);
}

TEST_F(Defaults, RoundTheSliderHalfToEven) {
    for (const auto& [text, value] : {std::pair{"-50", -50}, std::pair{"-50.5", -50}, std::pair{"-51.5", -52},
                                      std::pair{"-50.6", -51}, std::pair{"-0.5", 0}, std::pair{"0", 0}}) {
        Load(text);
        EXPECT_EQ(sldLevel.Value(), value) << text;
    }
}

TEST_F(Defaults, ClampTheSlider) {
    Load("50");
    EXPECT_EQ(sldLevel.Value(), 0);
    EXPECT_EQ(bench.generator.LoadedDefaults().level, 50.0);
    Load("-20000");
    EXPECT_EQ(sldLevel.Value(), -9600);
}

TEST_F(Defaults, RefuseALevelThatIsNoNumber) {
    EXPECT_EQ(ErrorOf([&] {
                  Load("loud");
                  return 0;
              }),
              13);
}

}  // namespace
}  // namespace sonavex
