#include <gmock/gmock.h>

#include <limits>
#include <utility>

#include "core/mixer/LevelScale.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

TEST(LevelScale, MapsRangesOntoScalesAndBack) {
    const RawRange range{-10, 87};
    EXPECT_EQ(ToScale(-10, range, 100), 0);
    EXPECT_EQ(ToScale(87, range, 100), 100);
    EXPECT_EQ(ToScale(200, range, 100), 100) << "above the range";
    EXPECT_EQ(ToScale(-200, range, 65535), 0);
    for (std::int32_t raw = -10; raw <= 87; ++raw)
        EXPECT_EQ(FromScale(ToScale(raw, range, 65535), range, 65535), raw);
    EXPECT_EQ(FromScale(200, range, 100), 87);
    EXPECT_EQ(FromScale(-3, range, 100), -10);
}

TEST(LevelScale, OfASingleValueIsZero) {
    EXPECT_EQ(ToScale(5, {5, 5}, 100), 0);
    EXPECT_EQ(FromScale(50, {5, 5}, 100), 5);
}

TEST(LevelScale, TakesTheLoudestChannel) {
    EXPECT_EQ(PercentOf({10, 80, 40}, {0, 100}), 80);
    EXPECT_THAT(AtPercent({10, 80, 40}, {0, 100}, 40), ElementsAre(5, 40, 20));
    EXPECT_THAT(AtPercent({0, 0}, {0, 100}, 40), ElementsAre(40, 40));
    EXPECT_THAT(AtPercent({-5, -20}, {-20, 0}, 0), ElementsAre(-20, -20));
    EXPECT_THAT(AtPercent({150, 75}, {0, 100}, 100), ElementsAre(100, 50)) << "from above the range";
}

TEST(LevelScale, StepsToAnotherRawValue) {
    for (const auto& [steps, percent] :
         {std::pair{1, 100}, std::pair{3, 34}, std::pair{31, 4}, std::pair{64, 2}, std::pair{87, 2},
          std::pair{99, 2}, std::pair{100, 1}, std::pair{101, 1}, std::pair{65536, 1}})
        EXPECT_EQ(StepPercent({-10, steps - 10}), percent) << steps;
    EXPECT_EQ(StepPercent({5, 5}), 1) << "a single value";
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(StepPercent({kLowest, kHighest}), 1);
}

TEST(LevelScale, MapsGainsLinearly) {
    const RawRange range{0, 15};
    const GainRange gains{-10.5, 12.0};
    EXPECT_DOUBLE_EQ(ToGain(0, range, gains), -10.5);
    EXPECT_DOUBLE_EQ(ToGain(7, range, gains), 0.0);
    EXPECT_DOUBLE_EQ(ToGain(15, range, gains), 12.0);
    EXPECT_EQ(FromGain(-10.0, range, gains), 0);
    EXPECT_EQ(FromGain(0.7, range, gains), 7);
    EXPECT_EQ(FromGain(99.0, range, gains), 15);
    EXPECT_EQ(FromGain(3.0, range, GainRange{}), 0) << "without gains";
}

TEST(LevelScale, ShowsPercentOrADash) {
    EXPECT_EQ(PercentCaption(0, true), "0 %");
    EXPECT_EQ(PercentCaption(100, true), "100 %");
    EXPECT_EQ(PercentCaption(100, false), "—");
}

}  // namespace
}  // namespace sonavex
