#include "support/alsa/FakeMixerCards.h"

#include <alsa/asoundlib.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace sonavex {

FakeMixerCards::FakeMixerCards() {
    const std::string folder = folder_.Path().string();
    std::ofstream(folder + "/asound.conf")
        << "ctl_type.fakemixer { lib \"" << SONAVEX_FAKE_MIXER << "\" }\n"
        << "ctl.hw { @args [ CARD ] @args.CARD { type string } type fakemixer\n"
        << "  state { @func concat strings [ \"" << folder << "/card-\" $CARD ] } }\n";
    setenv("ALSA_CONFIG_PATH", (folder + "/asound.conf").c_str(), 1);
    snd_config_update_free_global();
}

FakeMixerCards::~FakeMixerCards() {
    unsetenv("ALSA_CONFIG_PATH");
    snd_config_update_free_global();
}

std::string FakeMixerCards::StatePath(int number) const {
    return (folder_.Path() / ("card-" + std::to_string(number))).string();
}

FakeMixerState FakeMixerCards::Load(int number) const {
    FakeMixerState state;
    std::ifstream file(StatePath(number), std::ios::binary);
    file.read(reinterpret_cast<char*>(&state), sizeof state);
    if (!file) throw std::runtime_error("no fake card " + std::to_string(number));
    return state;
}

void FakeMixerCards::Save(int number, const FakeMixerState& state) const {
    const int file = open(StatePath(number).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const bool written = file >= 0 && write(file, &state, sizeof state) == static_cast<ssize_t>(sizeof state);
    if (file >= 0) close(file);
    if (!written) throw std::runtime_error("the fake card's file cannot be written");
}

std::string FakeMixerCards::PutIn(int number) {
    FakeMixerState state;
    state.values[kFakeMaster] = {60, 50};
    state.values[kFakeMasterSwitch] = {1, 1};
    state.values[kFakePcm] = {200, 200};
    state.values[kFakePcmSwitch] = {1, 1};
    state.values[kFakeLine] = {23, 23};
    state.values[kFakeCapture] = {16, 20};
    state.values[kFakeCaptureSwitch] = {1, 1};
    state.values[kFakeSource] = {1, 0};
    state.values[kFakeBass] = {7, 0};
    state.values[kFakeTreble] = {7, 0};
    state.missing.at(kFakePlainBoost) = 1;  // the card has a microphone boost
    Save(number, state);
    return "hw:" + std::to_string(number);
}

void FakeMixerCards::Change(int number, FakeControl control, const std::vector<std::int32_t>& values) {
    FakeMixerState state = Load(number);
    for (std::size_t channel = 0; channel < values.size(); ++channel)
        state.values.at(control).at(channel) = values[channel];
    Save(number, state);
}

std::vector<std::int32_t> FakeMixerCards::Values(int number, FakeControl control) const {
    const auto values = Load(number).values.at(control);
    return {values.begin(), values.end()};
}

void FakeMixerCards::Offer(int number, FakeControl control, bool offered) {
    FakeMixerState state = Load(number);
    state.missing.at(control) = offered ? 0 : 1;
    Save(number, state);
}

void FakeMixerCards::PullOut(int number) {
    FakeMixerState state = Load(number);
    state.pulledOut = 1;
    Save(number, state);
}

}  // namespace sonavex
