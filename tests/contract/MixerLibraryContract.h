#pragma once

#include <chrono>
#include <cstdlib>
#include <functional>

#include "contract/MixerPlatform.h"
#include "core/mixer/VistaSound.h"
#include "support/PollUntil.h"

namespace sonavex {

// What the newer mixer library keeps on every hardware, with the raw levels behind it.
template <class Platform>
class MixerLibraryContract : public MixerContract<Platform> {
protected:
    using Library = HardwareMixerLibrary;

    struct LevelOperation {
        MixerFunction function;
        MixerSide side;
        std::int32_t absent;
        std::function<std::int32_t(Library&, std::int32_t&)> get;
        std::function<void(Library&, std::int32_t, std::int32_t&)> set;
    };
    static std::vector<LevelOperation> Levels() {
        using enum MixerFunction;
        return {
            {kMasterVolume, MixerSide::kPlayback, 100, &Library::GetMasterVolume, &Library::SetMasterVolume},
            {kLineVolume, MixerSide::kPlayback, 0, &Library::GetLinePlayBack, &Library::SetLinePlayBack},
            {kMicVolume, MixerSide::kPlayback, 0, &Library::GetMicPlayBack, &Library::SetMicPlayBack},
            {kMicRecord, MixerSide::kCapture, 100, &Library::GetMicRecordVolume,
             &Library::SetMicRecordVolume},
            {kLineRecord, MixerSide::kCapture, 100, &Library::GetLineRecordVolume,
             &Library::SetLineRecordVolume}};
    }

    struct SwitchOperation {
        MixerFunction function;
        bool absent;
        std::function<bool(Library&, std::int32_t&)> get;
        std::function<void(Library&, bool, std::int32_t&)> set;
    };
    static std::vector<SwitchOperation> Switches() {
        using enum MixerFunction;
        return {{kMasterMute, false, &Library::GetMasterMute, &Library::SetMasterMute},
                {kLineMute, true, &Library::GetLinePlayBackMute, &Library::SetLinePlayBackMute},
                {kMicMute, true, &Library::GetMicPlayBackMute, &Library::SetMicPlayBackMute},
                {kMicBoost, false, &Library::GetMicBoost, &Library::SetMicBoost},
                {kMonitorOff, true, &Library::GetNoMonitor, &Library::SetNoMonitor}};
    }

    struct ToneOperation {
        MixerFunction function;
        std::function<double(Library&, std::int32_t&)> get;
        std::function<void(Library&, double, std::int32_t&)> set;
    };
    static std::vector<ToneOperation> Tones() {
        using enum MixerFunction;
        return {{kBass, &Library::GetBass, &Library::SetBass},
                {kMidRange, &Library::GetMidRange, &Library::SetMidRange},
                {kTreble, &Library::GetTreble, &Library::SetTreble}};
    }

    // A control is served when the card has it and, for a level that sources share, its source is the
    // one selected.
    bool Served(MixerFunction function, MixerSide side) {
        const bool playback = side == MixerSide::kPlayback;
        const auto device = this->hardware_->Open(
            {side, playback ? this->platform_.PlaybackName() : this->platform_.CaptureName()});
        return this->Has(function) && device->Serves(function);
    }

    std::int32_t status_ = -1;
};

TYPED_TEST_SUITE_P(MixerLibraryContract);

TYPED_TEST_P(MixerLibraryContract, SaysWhichControlsTheCardHas) {
    for (const auto& level : this->Levels()) {
        const std::int32_t value = level.get(this->library_, this->status_);
        const bool served = this->Served(level.function, level.side);
        EXPECT_EQ(this->status_ == 0, served) << static_cast<int>(level.function);
        EXPECT_GE(value, 0);
        EXPECT_LE(value, 100);
        if (!served) {
            EXPECT_EQ(value, level.absent);
        }
    }
    for (const auto& operation : this->Switches()) {
        const bool on = operation.get(this->library_, this->status_);
        EXPECT_EQ(this->status_ == 0, this->Has(operation.function)) << static_cast<int>(operation.function);
        if (!this->Has(operation.function)) {
            EXPECT_EQ(on, operation.absent);
        }
    }
    for (const auto& tone : this->Tones()) {
        const double gainDb = tone.get(this->library_, this->status_);
        EXPECT_EQ(this->status_ == 0, this->Has(tone.function)) << static_cast<int>(tone.function);
        if (!this->Has(tone.function)) {
            EXPECT_EQ(gainDb, 0.0);
        }
    }
}

TYPED_TEST_P(MixerLibraryContract, TakesEveryLevelWithinAStepOfTheCard) {
    for (const auto& level : this->Levels()) {
        if (!this->Served(level.function, level.side)) continue;
        const double step = this->StepPercent(level.function, level.side);
        for (std::int32_t wanted = 0; wanted <= 100; wanted += 5) {
            level.set(this->library_, wanted, this->status_);
            EXPECT_EQ(this->status_, 0);
            EXPECT_NEAR(level.get(this->library_, this->status_), wanted, step / 2 + 0.5);
        }
        EXPECT_EQ(level.get(this->library_, this->status_), 100);
        level.set(this->library_, 0, this->status_);
        EXPECT_EQ(level.get(this->library_, this->status_), 0);
        level.set(this->library_, 150, this->status_);
        EXPECT_EQ(level.get(this->library_, this->status_), 100);
        level.set(this->library_, -1, this->status_);
        EXPECT_EQ(level.get(this->library_, this->status_), 0);
    }
}

TYPED_TEST_P(MixerLibraryContract, ReportsTheMasterLevelThatTheCardTook) {
    for (const std::int32_t wanted : {37, 99, 0, 64, 200}) {
        const std::int32_t taken = this->library_.SetMasterVolume(wanted, this->status_);
        EXPECT_EQ(taken, this->library_.GetMasterVolume(this->status_));
    }
}

TYPED_TEST_P(MixerLibraryContract, SwitchesSwitches) {
    for (const auto& operation : this->Switches()) {
        for (const bool on : {true, false, true}) {
            operation.set(this->library_, on, this->status_);
            EXPECT_EQ(this->status_ == 0, this->Has(operation.function));
            if (this->status_ == 0) {
                EXPECT_EQ(operation.get(this->library_, this->status_), on)
                    << static_cast<int>(operation.function);
            }
        }
    }
}

TYPED_TEST_P(MixerLibraryContract, TakesTonesInsideTheirRange) {
    double minimumDb = 1.0;
    double maximumDb = 1.0;
    this->library_.GetEQRange(minimumDb, maximumDb, this->status_);
    if (!this->Has(MixerFunction::kBass)) {
        EXPECT_NE(this->status_, 0);
        EXPECT_EQ(minimumDb, 0.0);
        EXPECT_EQ(maximumDb, 0.0);
        return;
    }
    EXPECT_EQ(this->status_, 0);
    ASSERT_LT(minimumDb, maximumDb);
    for (const auto& tone : this->Tones()) {
        if (!this->Has(tone.function)) continue;
        for (const double gainDb : {minimumDb, 0.0, maximumDb}) {
            tone.set(this->library_, gainDb, this->status_);
            EXPECT_EQ(this->status_, 0);
            EXPECT_NEAR(tone.get(this->library_, this->status_), gainDb, 0.76);
        }
        tone.set(this->library_, maximumDb + 100.0, this->status_);
        EXPECT_NEAR(tone.get(this->library_, this->status_), maximumDb, 1e-9);
    }
}

TYPED_TEST_P(MixerLibraryContract, WritesNothingWhereNothingChanges) {
    this->platform_.ChangeOutside(MixerFunction::kMasterVolume, this->platform_.OddValues());
    const std::string before = this->Raw();
    VistaSound::SetVistaMixerState(this->library_, VistaSound::GetVistaMixerState(this->library_));
    EXPECT_EQ(this->Raw(), before);
}

TYPED_TEST_P(MixerLibraryContract, TakesItsStateLineBack) {
    const std::string before = VistaSound::GetVistaMixerState(this->library_);
    VistaSound::SetVistaMixerState(this->library_, "5,True,6,False,7,False,True,False,3,3,3,8,9,");
    EXPECT_NE(VistaSound::GetVistaMixerState(this->library_), before);
    VistaSound::SetVistaMixerState(this->library_, before);
    EXPECT_EQ(VistaSound::GetVistaMixerState(this->library_), before);
}

TYPED_TEST_P(MixerLibraryContract, KeepsTheBalance) {
    const std::vector<std::int32_t> odd = this->platform_.OddValues();
    this->platform_.ChangeOutside(MixerFunction::kMasterVolume, odd);
    this->library_.SetMasterVolume(this->library_.GetMasterVolume(this->status_) / 2, this->status_);
    const auto device = this->hardware_->Open({MixerSide::kPlayback, this->platform_.PlaybackName()});
    MixerElement& master = *device->Find(MixerFunction::kMasterVolume);
    const std::vector<std::int32_t> halved = master.Read();
    const double minimum = master.Range().minimum;
    EXPECT_NEAR((halved[0] - minimum) / (halved[1] - minimum), (odd[0] - minimum) / (odd[1] - minimum), 0.05);
}

TYPED_TEST_P(MixerLibraryContract, GivesRawLevelsBackExactly) {
    this->platform_.ChangeOutside(MixerFunction::kMasterVolume, this->platform_.OddValues());
    const MixerDevice playback{MixerSide::kPlayback, this->platform_.PlaybackName()};
    const MixerDevice capture{MixerSide::kCapture, this->platform_.CaptureName()};
    const auto playbackLevels = this->levels_.Read(playback);
    const auto captureLevels = this->levels_.Read(capture);
    ASSERT_TRUE(playbackLevels);
    ASSERT_TRUE(captureLevels);
    VistaSound::SetVistaMixerState(this->library_, "5,True,6,False,7,False,True,False,3,3,3,8,9,");
    ASSERT_NE(this->Raw(), *playbackLevels + *captureLevels);
    EXPECT_TRUE(this->levels_.Write(playback, *playbackLevels));
    EXPECT_TRUE(this->levels_.Write(capture, *captureLevels));
    EXPECT_EQ(this->Raw(), *playbackLevels + *captureLevels);
}

TYPED_TEST_P(MixerLibraryContract, TakesRawLevelsOfAnotherCardAsFarAsTheyFit) {
    const std::string before = this->Raw();
    const MixerDevice playback{MixerSide::kPlayback, this->platform_.PlaybackName()};
    EXPECT_TRUE(this->levels_.Write(playback, ""));
    EXPECT_TRUE(this->levels_.Write(
        playback, "Nothing of this card\t1 2\n\nnoise\xff\nMaster Volume\t1 2 3 4 5 6 7\n"));
    EXPECT_EQ(this->Raw(), before);
}

TYPED_TEST_P(MixerLibraryContract, SeesWhatOthersChange) {
    for (const std::int32_t round : {0, 1, 0}) {
        const auto odd = this->platform_.OddValues();
        this->platform_.ChangeOutside(MixerFunction::kMasterVolume,
                                      round == 0 ? odd : std::vector<std::int32_t>(odd.size(), odd[0]));
        const auto device = this->hardware_->Open({MixerSide::kPlayback, this->platform_.PlaybackName()});
        const std::vector<std::int32_t> values = device->Find(MixerFunction::kMasterVolume)->Read();
        EXPECT_EQ(values[1] == values[0], round == 1);
    }
}

TYPED_TEST_P(MixerLibraryContract, TellsOfChangesFromOutside) {
    int changes = 0;
    this->levels_.OnChange([&] { ++changes; });
    static_cast<void>(this->library_.GetMasterVolume(this->status_));
    // What making the connection told of.
    PollUntil(
        this->loop_, [] { return false; }, std::chrono::milliseconds(300));
    changes = 0;
    this->platform_.ChangeOutside(MixerFunction::kMasterVolume, this->platform_.OddValues());
    EXPECT_TRUE(PollUntil(
        this->loop_, [&] { return changes > 0; }, std::chrono::seconds(5)));
}

TYPED_TEST_P(MixerLibraryContract, ClosedOrUnknownCardsHaveNoControls) {
    this->library_.CloseSoundCard(this->status_);
    EXPECT_EQ(this->status_, 0);
    EXPECT_EQ(this->library_.GetMasterVolume(this->status_), 100);
    EXPECT_NE(this->status_, 0);
    this->library_.OpenSoundCard("no such device", "", "", this->status_);
    EXPECT_NE(this->status_, 0);
    EXPECT_EQ(VistaSound::GetVistaMixerState(this->library_),
              "100,False,0,True,0,True,False,True,0,0,0,100,100,");
    this->library_.SetMasterVolume(3, this->status_);
    EXPECT_NE(this->status_, 0);
    this->Bind();
    static_cast<void>(this->library_.GetMasterVolume(this->status_));
    EXPECT_EQ(this->status_, 0);
}

TYPED_TEST_P(MixerLibraryContract, OfACardThatIsGoneFailsWithoutError) {
    this->platform_.TakeAway();
    EXPECT_EQ(VistaSound::GetVistaMixerState(this->library_),
              "100,False,0,True,0,True,False,True,0,0,0,100,100,");
    static_cast<void>(this->library_.GetMasterVolume(this->status_));
    EXPECT_NE(this->status_, 0);
    EXPECT_EQ(this->levels_.Read({MixerSide::kPlayback, this->platform_.PlaybackName()}), std::nullopt);
    EXPECT_FALSE(this->levels_.Write({MixerSide::kPlayback, this->platform_.PlaybackName()}, ""));
}

REGISTER_TYPED_TEST_SUITE_P(MixerLibraryContract, SaysWhichControlsTheCardHas,
                            TakesEveryLevelWithinAStepOfTheCard, ReportsTheMasterLevelThatTheCardTook,
                            SwitchesSwitches, TakesTonesInsideTheirRange, WritesNothingWhereNothingChanges,
                            TakesItsStateLineBack, KeepsTheBalance, GivesRawLevelsBackExactly,
                            TakesRawLevelsOfAnotherCardAsFarAsTheyFit, SeesWhatOthersChange,
                            TellsOfChangesFromOutside, ClosedOrUnknownCardsHaveNoControls,
                            OfACardThatIsGoneFailsWithoutError);

}  // namespace sonavex
