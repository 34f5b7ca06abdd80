#include "support/alsa/LoopCards.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace sonavex {
namespace {

const std::string kHardware = "hw:CARD=";

bool IsHardware(const LoopCards::Card& card) {
    return card.name.starts_with(kHardware);
}

// Options of a card's definition other than its file.
std::string Abilities(const LoopCards::Card& card) {
    std::string text = " channels " + std::to_string(card.channels) + " format \"" + card.format +
                       "\" refuse \"" + card.refused + "\" error " + std::to_string(card.refusal);
    if (card.ratesHz.empty()) return text;
    text += " rates [";
    for (const int rateHz : card.ratesHz) text += " " + std::to_string(rateHz);
    return text + " ]";
}

}  // namespace

void LoopCards::Unmap::operator()(LoopCardState* state) const noexcept {
    munmap(state, sizeof(LoopCardState));
}

LoopCards::LoopCards(const std::vector<Card>& cards, const std::string& more) {
    std::ofstream file(ConfigurationPath());
    file << "pcm_type.sonavex_loop { lib \"" SONAVEX_LOOP_PCM "\" }\n";
    std::string hints;
    for (const Card& card : cards) {
        if (!IsHardware(card)) file << Definition(card);
        if (!IsHardware(card)) continue;
        if (hints.empty()) file << HardwareDefinitions(card);
        hints += " \"" + card.name + "|" + card.description + "\"";
    }
    if (!hints.empty()) file << "namehint.pcm [" << hints << " ]\n";
    file << more << '\n';
    file.close();
    if (!file) throw std::runtime_error("cannot write the ALSA configuration");
    setenv("ALSA_CONFIG_PATH", ConfigurationPath().c_str(), 1);
}

LoopCards::~LoopCards() {
    setenv("ALSA_CONFIG_PATH", "/dev/null", 1);
}

std::string LoopCards::Definition(const Card& card) const {
    return "pcm." + card.name + " { type sonavex_loop state \"" + StatePath(card.name).string() + "\"" +
           Abilities(card) + " hint { show on description \"" + card.description + "\" } }\n";
}

std::string LoopCards::HardwareDefinitions(const Card& card) const {
    const std::string arguments =
        "@args [ CARD DEV ] @args.CARD { type string default \"0\" } @args.DEV { type integer default 0 }";
    const std::string loop = "type sonavex_loop state { @func concat strings [ \"" +
                             (folder_.Path() / "state-hw-").string() + "\" $CARD ] }" + Abilities(card);
    return "pcm.hw { " + arguments + " " + loop + " }\n" +  //
           "pcm.plughw { " + arguments + " type plug slave.pcm { " + loop + " } }\n";
}

std::filesystem::path LoopCards::StatePath(const std::string& name) const {
    if (!name.starts_with(kHardware)) return folder_.Path() / ("state-" + name);
    const std::string card = name.substr(kHardware.size());
    return folder_.Path() / ("state-hw-" + card.substr(0, card.find(',')));
}

bool LoopCards::InUse(const std::string& name, Direction direction) const {
    const int file = open(StatePath(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_start = direction == Direction::kPlayback ? 0 : 1;
    lock.l_len = 1;
    const bool asked = file >= 0 && fcntl(file, F_OFD_GETLK, &lock) == 0;
    close(file);
    if (!asked) throw std::runtime_error("cannot look at the card " + name);
    return lock.l_type != F_UNLCK;
}

LoopCardState& LoopCards::State(const std::string& name) {
    const auto known =
        std::find_if(states_.begin(), states_.end(), [&](const auto& state) { return state.first == name; });
    if (known != states_.end()) return *known->second;
    const int file = open(StatePath(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    void* const memory =
        file < 0 || ftruncate(file, sizeof(LoopCardState)) < 0
            ? MAP_FAILED
            : mmap(nullptr, sizeof(LoopCardState), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (memory == MAP_FAILED) throw std::runtime_error("cannot map the state of " + name);
    states_.emplace_back(name, static_cast<LoopCardState*>(memory));
    return *states_.back().second;
}

}  // namespace sonavex
