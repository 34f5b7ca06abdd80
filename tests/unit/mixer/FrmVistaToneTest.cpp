#include <gmock/gmock.h>

#include "core/mixer/frmVistaTone.h"
#include "support/MemoryVista.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

struct VistaToneRig {
    CallLog log;
    MemoryVista card{log};
    frmVistaTone form{card};
};

TEST(Tones, AreLoadedWithRangeAndLabelsWithoutAnySet) {
    VistaToneRig rig;
    rig.card.bass = -6.0;
    rig.card.midRange = 2.5;
    rig.card.treble = 3.5;
    rig.form.Show();
    EXPECT_EQ(rig.form.sldBass.Min(), -12);
    EXPECT_EQ(rig.form.sldMid.Max(), 12);
    EXPECT_EQ(rig.form.sldTreble.Max(), 12);
    EXPECT_EQ(rig.form.lblBassValue.Caption(), "-6 dB");
    EXPECT_EQ(rig.form.lblMidValue.Caption(), "2 dB");
    EXPECT_EQ(rig.form.lblTrebleValue.Caption(), "4 dB");
    EXPECT_THAT(rig.log.Lines(), ElementsAre("GetEQRange", "GetBass", "GetMidRange", "GetTreble"));
    EXPECT_EQ(rig.form.Frame.Caption(), "Tone Controls");
}

struct ToneCase {
    Slider frmVistaTone::*slider;
    Label frmVistaTone::*label;
    Label frmVistaTone::*value;
    const char* control;
    double MemoryVista::*stored;
};
class ToneSliders : public testing::TestWithParam<ToneCase> {};
INSTANTIATE_TEST_SUITE_P(
    All, ToneSliders,
    testing::Values(ToneCase{&frmVistaTone::sldBass, &frmVistaTone::lblBass, &frmVistaTone::lblBassValue,
                             "Bass", &MemoryVista::bass},
                    ToneCase{&frmVistaTone::sldMid, &frmVistaTone::lblMid, &frmVistaTone::lblMidValue,
                             "MidRange", &MemoryVista::midRange},
                    ToneCase{&frmVistaTone::sldTreble, &frmVistaTone::lblTreble,
                             &frmVistaTone::lblTrebleValue, "Treble", &MemoryVista::treble}));

TEST_P(ToneSliders, SetTheirGainAndTellIt) {
    VistaToneRig rig;
    rig.form.Show();
    for (const auto& [gain, text] :
         {std::pair{-6, "-6 dB"}, std::pair{0, "0 dB"}, std::pair{12, "12 dB"}, std::pair{-12, "-12 dB"}}) {
        rig.log.Clear();
        (rig.form.*GetParam().slider).UserMoves(gain);
        EXPECT_EQ((rig.form.*GetParam().value).Caption(), text);
        EXPECT_EQ(rig.card.*GetParam().stored, gain);
        EXPECT_THAT(rig.log.Lines(), ElementsAre("Set" + std::string(GetParam().control) + ' ' +
                                                 std::to_string(static_cast<double>(gain))));
    }
}

TEST_P(ToneSliders, MovedToTheirMinimumShowIt) {
    VistaToneRig rig;
    rig.card.eqMinimum = -10.4;
    rig.card.eqMaximum = 7.6;
    rig.form.Show();
    EXPECT_EQ((rig.form.*GetParam().slider).Max(), 8);
    (rig.form.*GetParam().slider).UserMoves(-1000);
    EXPECT_EQ((rig.form.*GetParam().value).Caption(), "-10 dB");
    EXPECT_EQ(rig.card.*GetParam().stored, -10.0);
}

TEST_P(ToneSliders, AreGreyedWithTheirLabels) {
    VistaToneRig rig;
    rig.card.missing = {GetParam().control};
    rig.form.Show();
    EXPECT_FALSE((rig.form.*GetParam().slider).Enabled());
    EXPECT_FALSE((rig.form.*GetParam().label).Enabled());
    EXPECT_FALSE((rig.form.*GetParam().value).Enabled());
}

TEST(Tones, OfACardWithoutThemHaveNoRange) {
    VistaToneRig rig;
    rig.card.eqMinimum = 0.0;
    rig.card.eqMaximum = 0.0;
    rig.card.missing = {"Bass", "MidRange", "Treble", "EQRange"};
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
