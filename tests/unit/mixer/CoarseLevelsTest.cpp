// The level sliders of both dialogs on cards whose controls have few steps.

#include <gmock/gmock.h>

#include <functional>

#include "core/mixer/HardwareMixerControl.h"
#include "core/mixer/frmSound.h"
#include "core/mixer/frmSoundVista.h"
#include "support/FakePlaces.h"
#include "support/MemoryHardware.h"

namespace sonavex {
namespace {

using enum MixerFunction;

// A card whose six levels have this number of steps.
struct CoarseCard : MemoryCard {
    explicit CoarseCard(std::int32_t steps)
        : MemoryCard({{kMasterVolume, MemoryHardware::Level({0, 0}, steps)},
                      {kWaveVolume, MemoryHardware::Level({0, 0}, steps)},
                      {kLineVolume, MemoryHardware::Level({0, 0}, steps)},
                      {kMicVolume, MemoryHardware::Level({0, 0}, steps)}},
                     {{kMicRecord, MemoryHardware::Level({0, 0}, steps)},
                      {kLineRecord, MemoryHardware::Level({0, 0}, steps)}}) {
        for (HardwareMixerControl* control : {&output, &input}) {
            control->DeviceCount();
            control->SelectDevice(0);
        }
    }

    HardwareMixerControl output{hardware, MixerSide::kPlayback};
    HardwareMixerControl input{hardware, MixerSide::kCapture};
    FakePlaces places{log};
};

struct NewerRig : CoarseCard {
    using CoarseCard::CoarseCard;
    void Refresh() { form.RefreshVistaSoundControls(); }

    SpeakerLocators speaker = VistaSound::SetUpVistaSoundControls(output);
    std::string name = "Card";
    frmSoundVista form{{library, output, speaker, name, name, places}};
    std::vector<std::pair<Slider*, MixerFunction>> levels{
        {&form.sldSpeakers, kMasterVolume}, {&form.sldMaster, kMasterVolume},
        {&form.sldLinePlay, kLineVolume},   {&form.sldMicPlay, kMicVolume},
        {&form.sldMic, kMicRecord},         {&form.sldLine, kLineRecord}};
    std::int32_t up = 1;  // direction in which the sliders' values grow louder
};

struct OlderRig : CoarseCard {
    explicit OlderRig(std::int32_t steps) : CoarseCard(steps) { SetUpSoundControls(mixer); }
    void Refresh() { form.RefreshSoundControls(); }

    LegacyMixer mixer{output, input};
    frmSound form{mixer, places};
    std::vector<std::pair<Slider*, MixerFunction>> levels{
        {&form.MasterOut, kMasterVolume}, {&form.WaveOut, kWaveVolume}, {&form.LineOut, kLineVolume},
        {&form.playMic, kMicVolume},      {&form.MicIn, kMicRecord},    {&form.LineIn, kLineRecord}};
    std::int32_t up = -1;
};

// Every press moves the card by one step, or by two where a step is not a whole percentage. The slider
// shows the card's level after every press.
template <class Rig>
void ExpectThatEveryKeyMoves(std::int32_t steps) {
    Rig rig(steps);
    rig.Refresh();
    for (const auto& [slider, function] : rig.levels) {
        const std::vector<std::int32_t>& raw = rig.At(function).values;
        // direction: 1 louder, -1 softer.
        const auto pressUntil = [&, slider = slider](std::int32_t end, std::int32_t direction) {
            while (raw[0] != end) {
                const std::int32_t before = raw[0];
                slider->UserMoves(slider->Value() + direction * rig.up * slider->Step());
                rig.Refresh();
                const std::int32_t moved = (raw[0] - before) * direction;
                ASSERT_TRUE(moved == 1 || moved == 2)
                    << steps << " steps, from " << before << " by " << moved;
            }
        };
        pressUntil(steps, 1);
        pressUntil(0, -1);
    }
}

TEST(CoarseLevels, MoveWithEveryKeyInTheNewerDialog) {
    for (const std::int32_t steps : {1, 3, 31, 64, 87, 99, 100}) ExpectThatEveryKeyMoves<NewerRig>(steps);
}

TEST(CoarseLevels, MoveWithEveryKeyInTheOlderDialog) {
    for (const std::int32_t steps : {1, 3, 31, 64, 87, 99, 100}) ExpectThatEveryKeyMoves<OlderRig>(steps);
}

TEST(CoarseLevels, FollowTheCard) {
    NewerRig rig(31);
    rig.Refresh();
    for (const auto& [slider, function] : rig.levels) EXPECT_EQ(slider->Step(), 4);
    for (const auto& [slider, function] : rig.levels) rig.At(function).range.maximum = 65536;
    rig.Refresh();
    for (const auto& [slider, function] : rig.levels) EXPECT_EQ(slider->Step(), 1);
}

TEST(CoarseLevels, ThatTheCardLacksStepByOne) {
    NewerRig newer(31);
    newer.hardware.playback.at("Speakers").clear();
    newer.hardware.capture.at("Microphone").clear();
    newer.Refresh();
    for (const auto& [slider, function] : newer.levels) EXPECT_EQ(slider->Step(), 1);
    OlderRig older(31);
    older.hardware.playback.at("Speakers").clear();
    older.hardware.capture.at("Microphone").clear();
    older.Refresh();
    for (const auto& [slider, function] : older.levels) EXPECT_EQ(slider->Step(), 1);
}

}  // namespace
}  // namespace sonavex
