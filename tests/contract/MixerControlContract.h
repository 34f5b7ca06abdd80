#pragma once

#include <cmath>

#include "contract/MixerPlatform.h"
#include "core/mixer/ControlNames.h"
#include "core/mixer/LegacyMixerState.h"
#include "core/mixer/MixerLocators.h"
#include "core/mixer/VistaSound.h"

namespace sonavex {

// What the older mixer control keeps on every hardware.
template <class Platform>
class MixerControlContract : public MixerContract<Platform> {
protected:
    LegacyMixer mixer_{this->output_, this->input_};

    struct Located {
        MixerFunction function;
        MixerSide side;
        MixerLocator MixerLocatorTable::*entry;
        bool level;
    };
    static const std::vector<Located>& Table() {
        using enum MixerFunction;
        static const std::vector<Located> table{
            {kMasterVolume, MixerSide::kPlayback, &MixerLocatorTable::MasterVolume, true},
            {kMasterMute, MixerSide::kPlayback, &MixerLocatorTable::MasterMute, false},
            {kWaveVolume, MixerSide::kPlayback, &MixerLocatorTable::WaveVolume, true},
            {kWaveMute, MixerSide::kPlayback, &MixerLocatorTable::WaveMute, false},
            {kLineVolume, MixerSide::kPlayback, &MixerLocatorTable::LineVolume, true},
            {kLineMute, MixerSide::kPlayback, &MixerLocatorTable::LineMute, false},
            {kMicVolume, MixerSide::kPlayback, &MixerLocatorTable::MicVolume, true},
            {kMicMute, MixerSide::kPlayback, &MixerLocatorTable::MicMute, false},
            {kMicRecord, MixerSide::kCapture, &MixerLocatorTable::MicRecord, true},
            {kLineRecord, MixerSide::kCapture, &MixerLocatorTable::LineRecord, true},
            {kMicBoost, MixerSide::kCapture, &MixerLocatorTable::MicBoost, false},
            {kMonitorOff, MixerSide::kCapture, &MixerLocatorTable::MonitorOff, false},
            {kMicSource, MixerSide::kCapture, &MixerLocatorTable::MicSource, false},
            {kLineSource, MixerSide::kCapture, &MixerLocatorTable::LineSource, false}};
        return table;
    }
    MixerControl& MixerOf(const Located& located) {
        return located.side == MixerSide::kPlayback ? static_cast<MixerControl&>(this->output_)
                                                    : this->input_;
    }
    std::vector<Located> LocatedHere() {
        SetUpSoundControls(mixer_);
        std::vector<Located> found;
        for (const Located& located : Table())
            if ((mixer_.MixerLocators.*located.entry).Available()) found.push_back(located);
        return found;
    }
    void Set(const Located& located, std::int32_t left, std::int32_t right) {
        MixerControl& mixer = MixerOf(located);
        SelectLocated(mixer, mixer_.MixerLocators.*located.entry);
        mixer.SetValue(0, left);
        mixer.SetValue(1, right);
        mixer.Commit();
    }
    std::int32_t Value(const Located& located, std::int16_t channel = 0) {
        MixerControl& mixer = MixerOf(located);
        SelectLocated(mixer, mixer_.MixerLocators.*located.entry);
        return mixer.Value(channel);
    }
};

TYPED_TEST_SUITE_P(MixerControlContract);

TYPED_TEST_P(MixerControlContract, FindsTheFunctionsThatTheCardHas) {
    SetUpSoundControls(this->mixer_);
    for (const auto& located : this->Table())
        EXPECT_EQ((this->mixer_.MixerLocators.*located.entry).Available(), this->Has(located.function))
            << static_cast<int>(located.function);
}

TYPED_TEST_P(MixerControlContract, HasTheMasterLast) {
    const SpeakerLocators speaker = VistaSound::SetUpVistaSoundControls(this->output_);
    ASSERT_EQ(speaker.SpeakerVolumeControl >= 0, this->Has(MixerFunction::kMasterVolume));
    this->output_.SetDestination(speaker.SpeakerVolumeDestination);
    this->output_.SetControl(speaker.SpeakerVolumeControl);
    EXPECT_EQ(this->output_.ControlName(), "Master Volume");
    this->output_.SetControl(speaker.SpeakerMuteControl);
    EXPECT_EQ(this->output_.ControlName(), "Master Mute");
}

TYPED_TEST_P(MixerControlContract, ReadsEveryControlInsideItsRange) {
    for (MixerControl* mixer :
         {static_cast<MixerControl*>(&this->output_), static_cast<MixerControl*>(&this->input_)}) {
        int controls = 0;
        ForEachControl(*mixer, [&](const std::string& name) {
            ++controls;
            const MixerControlDescription description = mixer->Description();
            EXPECT_EQ(description.minimum, 0);
            EXPECT_EQ(description.maximum, description.type == mixer_type::kLevel ? 65535 : 1);
            for (std::int16_t channel = 0; channel < 2; ++channel) {
                EXPECT_GE(mixer->Value(channel), 0) << name;
                EXPECT_LE(mixer->Value(channel), description.maximum) << name;
            }
        });
        EXPECT_GT(controls, 0);
    }
}

TYPED_TEST_P(MixerControlContract, KeepsLevelsWithinAStepOfTheCard) {
    for (const auto& located : this->LocatedHere()) {
        if (!located.level) continue;
        const double step = this->StepPercent(located.function, located.side) * 655.35;
        for (const std::int32_t value : {0, 6554, 19660, 32768, 65500, 65535}) {
            this->Set(located, value, value);
            EXPECT_NEAR(this->Value(located), value, step / 2 + 1) << static_cast<int>(located.function);
            EXPECT_NEAR(this->Value(located, 1), value, step / 2 + 1);
        }
        EXPECT_EQ(this->Value(located), 65535) << "the upper end is reached";
        this->Set(located, 0, 0);
        EXPECT_EQ(this->Value(located), 0) << "and the lower one";
    }
}

TYPED_TEST_P(MixerControlContract, LimitsWhatLiesOutside) {
    for (const auto& located : this->LocatedHere()) {
        if (!located.level) continue;
        this->Set(located, 2000000000, 2000000000);
        EXPECT_EQ(this->Value(located), 65535);
        this->Set(located, -5, -5);
        EXPECT_EQ(this->Value(located), 0);
    }
}

TYPED_TEST_P(MixerControlContract, SwitchesSwitches) {
    for (const auto& located : this->LocatedHere()) {
        if (located.level || located.function >= MixerFunction::kMicSource) continue;
        for (const std::int32_t state : {1, 0, 1}) {
            this->Set(located, state, state);
            EXPECT_EQ(this->Value(located), state) << static_cast<int>(located.function);
        }
    }
}

TYPED_TEST_P(MixerControlContract, SelectsOneSourceAtATime) {
    if (!this->Has(MixerFunction::kMicSource)) {
        SetUpSoundControls(this->mixer_);
        EXPECT_FALSE(this->mixer_.MixerLocators.MicSource.Available());
        return;
    }
    SetUpSoundControls(this->mixer_);
    const MixerLocator mic = this->mixer_.MixerLocators.MicSource;
    const MixerLocator line = this->mixer_.MixerLocators.LineSource;
    for (const auto& [chosen, other] : {std::pair{mic, line}, std::pair{line, mic}, std::pair{mic, line}}) {
        SelectLocated(this->input_, chosen);
        this->input_.SetValue(0, 1);
        this->input_.Commit();
        EXPECT_EQ(ReadLocated(this->input_, chosen).Value, 1.0F);
        EXPECT_EQ(ReadLocated(this->input_, other).Value, 0.0F);
    }
    SelectLocated(this->input_, mic);
    this->input_.SetValue(0, 0);
    this->input_.Commit();
    EXPECT_EQ(ReadLocated(this->input_, mic).Value, 1.0F) << "one is always selected";
}

TYPED_TEST_P(MixerControlContract, WritesNothingBeforeTheCommit) {
    const std::string before = this->Raw();
    for (const auto& located : this->LocatedHere()) {
        MixerControl& mixer = this->MixerOf(located);
        SelectLocated(mixer, this->mixer_.MixerLocators.*located.entry);
        mixer.SetValue(0, 1);
    }
    EXPECT_EQ(this->Raw(), before);
}

TYPED_TEST_P(MixerControlContract, LeavesRawValuesWhereNothingChanges) {
    if (this->Has(MixerFunction::kMasterVolume))
        this->platform_.ChangeOutside(MixerFunction::kMasterVolume, this->platform_.OddValues());
    const std::string before = this->Raw();
    SetLegacyMixerState(this->output_, GetLegacyMixerState(this->output_));
    SetLegacyMixerState(this->input_, GetLegacyMixerState(this->input_));
    EXPECT_EQ(this->Raw(), before);
}

TYPED_TEST_P(MixerControlContract, TakesItsStateLineBack) {
    const std::string output = GetLegacyMixerState(this->output_);
    const std::string input = GetLegacyMixerState(this->input_);
    for (const auto& located : this->LocatedHere())
        this->Set(located, this->Value(located) == 0 ? 65535 : 0, this->Value(located) == 0 ? 65535 : 0);
    EXPECT_NE(GetLegacyMixerState(this->output_) + GetLegacyMixerState(this->input_), output + input);
    SetLegacyMixerState(this->output_, output);
    SetLegacyMixerState(this->input_, input);
    EXPECT_EQ(GetLegacyMixerState(this->output_), output);
    EXPECT_EQ(GetLegacyMixerState(this->input_), input);
}

TYPED_TEST_P(MixerControlContract, OfNoDeviceAnswersWithNothing) {
    this->output_.SelectDevice(-1);
    EXPECT_EQ(this->output_.DeviceName(), "");
    EXPECT_EQ(this->output_.DestinationCount(), 0);
    EXPECT_EQ(this->output_.ControlCount(), 0);
    EXPECT_EQ(this->output_.ControlName(), "");
    EXPECT_EQ(this->output_.Value(0), -1);
    this->output_.SetValue(0, 1);
    this->output_.Commit();
    this->output_.SelectDevice(30000);
    EXPECT_EQ(this->output_.DestinationCount(), 0);
}

TYPED_TEST_P(MixerControlContract, OfNoControlAnswersWithNothing) {
    const std::string before = this->Raw();
    for (const auto& [destination, control] :
         {std::pair<std::int16_t, std::int16_t>{-1, 0}, {9, 0}, {0, -1}, {0, 99}}) {
        this->output_.SetDestination(destination);
        this->output_.SetControl(control);
        EXPECT_EQ(this->output_.ControlName(), "");
        EXPECT_EQ(this->output_.Value(0), -1);
        this->output_.SetValue(0, 1);
        this->output_.Commit();
    }
    EXPECT_EQ(this->Raw(), before);
}

TYPED_TEST_P(MixerControlContract, OfACardThatIsGoneReportsNoValues) {
    const auto located = this->LocatedHere();
    ASSERT_FALSE(located.empty());
    this->platform_.TakeAway();
    for (const auto& entry : located) {
        EXPECT_EQ(this->Value(entry), -1);
        this->Set(entry, 1, 1);
    }
}

REGISTER_TYPED_TEST_SUITE_P(MixerControlContract, FindsTheFunctionsThatTheCardHas, HasTheMasterLast,
                            ReadsEveryControlInsideItsRange, KeepsLevelsWithinAStepOfTheCard,
                            LimitsWhatLiesOutside, SwitchesSwitches, SelectsOneSourceAtATime,
                            WritesNothingBeforeTheCommit, LeavesRawValuesWhereNothingChanges,
                            TakesItsStateLineBack, OfNoDeviceAnswersWithNothing,
                            OfNoControlAnswersWithNothing, OfACardThatIsGoneReportsNoValues);

}  // namespace sonavex
