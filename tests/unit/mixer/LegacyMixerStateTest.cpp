#include <gmock/gmock.h>

#include "core/mixer/LegacyMixerState.h"
#include "support/Errors.h"
#include "support/FakeMixerControl.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FakeMixerControl TwoDestinations() {
    FakeMixerControl mixer(
        {{FakeMixerControl::Level("Wave Volume", 10)},
         {FakeMixerControl::Level("Master Volume", 0), FakeMixerControl::Switch("Mute", 1)}});
    mixer.Find("Master Volume").values = {65535, 32768};
    return mixer;
}

TEST(LegacyState, HoldsEveryControlWithBothChannels) {
    FakeMixerControl mixer = TwoDestinations();
    EXPECT_EQ(GetLegacyMixerState(mixer), "0,Wave Volume,10,10,1,Master Volume,65535,32768,1,Mute,1,1,");
}

TEST(LegacyState, RoundTrips) {
    FakeMixerControl mixer = TwoDestinations();
    const std::string state = GetLegacyMixerState(mixer);
    FakeMixerControl other = TwoDestinations();
    other.Find("Master Volume").values = {0, 0};
    other.Find("Mute").values = {0, 0};
    SetLegacyMixerState(other, state);
    EXPECT_EQ(GetLegacyMixerState(other), state);
}

TEST(LegacyState, OfNoMixerIsEmptyAndEmptySetsNothing) {
    FakeMixerControl none;
    EXPECT_EQ(GetLegacyMixerState(none), "");
    FakeMixerControl mixer = TwoDestinations();
    SetLegacyMixerState(mixer, "");
    EXPECT_THAT(mixer.written, IsEmpty());
}

TEST(LegacyState, SkipsControlsThatTheMixerLacks) {
    FakeMixerControl mixer = TwoDestinations();
    SetLegacyMixerState(mixer, "7,Bass,1,1,0,Treble,2,2,0,Wave Volume,-1,-1,1,Mute,0,0,");
    EXPECT_THAT(mixer.written, ElementsAre("Mute/0=0", "Mute/1=0"));
}

TEST(LegacyState, ReadsNamesWithCommas) {
    FakeMixerControl mixer({{FakeMixerControl::Level("Line, rear", 5)}});
    SetLegacyMixerState(mixer, GetLegacyMixerState(mixer));
    EXPECT_THAT(mixer.written, ElementsAre("Line, rear/0=5", "Line, rear/1=5"));
}

class Malformed : public testing::TestWithParam<std::pair<std::string, std::int32_t>> {};
INSTANTIATE_TEST_SUITE_P(
    Lines, Malformed,
    testing::Values(std::pair{"0", 5}, std::pair{"0,Wave Volume", 5}, std::pair{"0,Wave Volume,7,", 5},
                    std::pair{"x,Wave Volume,7,7,", 13}, std::pair{"0,Wave Volume,seven,7,", 13},
                    std::pair{"0,Wave Volume,,7,", 13}, std::pair{"40000,Wave Volume,7,7,", 6},
                    std::pair{"0,Wave Volume,7,99999999999,", 6}, std::pair{std::string(10000, '#'), 5}));

TEST_P(Malformed, RaisesItsErrorAndKeepsWhatCameBefore) {
    FakeMixerControl mixer = TwoDestinations();
    EXPECT_EQ(ErrorOf([&] {
                  SetLegacyMixerState(mixer, "1,Mute,0,0," + GetParam().first);
                  return 0;
              }),
              GetParam().second);
    EXPECT_THAT(mixer.written, ElementsAre("Mute/0=0", "Mute/1=0"));
}

}  // namespace
}  // namespace sonavex
