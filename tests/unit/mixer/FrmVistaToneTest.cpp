#include <gmock/gmock.h>

#include "core/mixer/frmVistaTone.h"
#include "support/MemoryHardware.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

struct VistaToneRig : MemoryCard {
    frmVistaTone form{library};
};

// A control whose only gains are these two, at the lower one.
MemoryHardware::Control OnlyGains(double lowerDb, double upperDb) {
    return {{0, 1}, {0}, GainRange{lowerDb, upperDb}};
}

TEST(Tones, AreLoadedWithRangeAndLabelsWithoutAnySet) {
    VistaToneRig rig;
    rig.At(MixerFunction::kBass).values = {-12};
    rig.At(MixerFunction::kMidRange) = OnlyGains(2.5, 12.0);
    rig.At(MixerFunction::kTreble) = OnlyGains(3.5, 12.0);
    rig.form.Show();
    EXPECT_EQ(rig.form.sldBass.Min(), -12);
    EXPECT_EQ(rig.form.sldMid.Max(), 12);
    EXPECT_EQ(rig.form.sldTreble.Max(), 12);
    EXPECT_EQ(rig.form.lblBassValue.Caption(), "-6 dB");
    EXPECT_EQ(rig.form.lblMidValue.Caption(), "2 dB");
    EXPECT_EQ(rig.form.lblTrebleValue.Caption(), "4 dB");
    EXPECT_THAT(rig.log.Lines(),
                ElementsAre("Read Speakers/Bass", "Read Speakers/MidRange", "Read Speakers/Treble"));
    EXPECT_EQ(rig.form.Frame.Caption(), "Tone Controls");
}

struct ToneCase {
    Slider frmVistaTone::*slider;
    Label frmVistaTone::*label;
    Label frmVistaTone::*value;
    MixerFunction control;
};
class ToneSliders : public testing::TestWithParam<ToneCase> {};
INSTANTIATE_TEST_SUITE_P(All, ToneSliders,
                         testing::Values(ToneCase{&frmVistaTone::sldBass, &frmVistaTone::lblBass,
                                                  &frmVistaTone::lblBassValue, MixerFunction::kBass},
                                         ToneCase{&frmVistaTone::sldMid, &frmVistaTone::lblMid,
                                                  &frmVistaTone::lblMidValue, MixerFunction::kMidRange},
                                         ToneCase{&frmVistaTone::sldTreble, &frmVistaTone::lblTreble,
                                                  &frmVistaTone::lblTrebleValue, MixerFunction::kTreble}));

TEST_P(ToneSliders, SetTheirGainAndShowIt) {
    VistaToneRig rig;
    rig.form.Show();
    for (const auto& [gain, text] :
         {std::pair{-6, "-6 dB"}, std::pair{0, "0 dB"}, std::pair{12, "12 dB"}, std::pair{-12, "-12 dB"}}) {
        rig.log.Clear();
        (rig.form.*GetParam().slider).UserMoves(gain);
        EXPECT_EQ((rig.form.*GetParam().value).Caption(), text);
        EXPECT_THAT(rig.At(GetParam().control).values, ElementsAre(2 * gain));
        EXPECT_EQ(rig.log.Count("Write"), 1U);
    }
}

TEST_P(ToneSliders, MovedToTheirMinimumShowIt) {
    VistaToneRig rig;
    for (const MixerFunction tone : {MixerFunction::kBass, MixerFunction::kMidRange, MixerFunction::kTreble})
        rig.At(tone) = {{0, 180}, {90}, GainRange{-10.4, 7.6}};
    rig.form.Show();
    EXPECT_EQ((rig.form.*GetParam().slider).Max(), 8);
    (rig.form.*GetParam().slider).UserMoves(-1000);
    EXPECT_EQ((rig.form.*GetParam().value).Caption(), "-10 dB");
    EXPECT_THAT(rig.At(GetParam().control).values, ElementsAre(4))
        << "-10 dB in steps of 0.1 dB from -10.4 dB";
}

TEST_P(ToneSliders, AreGreyedWithTheirLabels) {
    VistaToneRig rig;
    rig.Remove(GetParam().control);
    rig.form.Show();
    EXPECT_FALSE((rig.form.*GetParam().slider).Enabled());
    EXPECT_FALSE((rig.form.*GetParam().label).Enabled());
    EXPECT_FALSE((rig.form.*GetParam().value).Enabled());
}

TEST(Tones, OfACardWithoutThemHaveNoRange) {
    VistaToneRig rig;
    for (const MixerFunction tone : {MixerFunction::kBass, MixerFunction::kMidRange, MixerFunction::kTreble})
        rig.Remove(tone);
    rig.form.Show();
    EXPECT_EQ(rig.form.sldBass.Min(), 0);
    EXPECT_EQ(rig.form.sldBass.Max(), 0);
    EXPECT_FALSE(rig.form.sldBass.Enabled());
}

TEST(Tones, CloseByTheirButton) {
    VistaToneRig rig;
    rig.form.Show();
    rig.form.cmdClose.Press();
    EXPECT_FALSE(rig.form.Loaded());
}

}  // namespace
}  // namespace sonavex
