#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/alsa/LoopCardState.h"

namespace sonavex {

// Sound cards without hardware for libasound: each returns on its input what it plays, in real time.
// While this object lives they are what this process's ALSA configuration holds, and nothing else is.
class LoopCards {
public:
    // A card that the configuration defines as a PCM.
    struct Card {
        std::string name;
        std::string description;
        std::vector<int> ratesHz{};  // empty: those of the instrument
        int channels = 2;
        std::string format = "S16_LE";
    };

    // More is added to the configuration as it is. Cards whose name begins with "hw:CARD=" stand for
    // hardware: "hw:" and "plughw:" reach them; they share rates, channels and format.
    explicit LoopCards(const std::vector<Card>& cards, const std::string& more = {});
    ~LoopCards();
    LoopCards(const LoopCards&) = delete;
    LoopCards& operator=(const LoopCards&) = delete;

    // What happens to the card of that name; a card stays as it is set.
    LoopCardState& State(const std::string& name);

    // Whether somebody has that direction of the card, found out without opening it.
    enum class Direction { kPlayback, kCapture };
    bool InUse(const std::string& name, Direction direction) const;

    // For programs that are to see the same cards.
    Environment ForPrograms() const { return {{"ALSA_CONFIG_PATH", ConfigurationPath().string()}}; }

private:
    struct Unmap {
        void operator()(LoopCardState* state) const noexcept;
    };

    std::filesystem::path ConfigurationPath() const { return folder_.Path() / "asound.conf"; }
    std::filesystem::path StatePath(const std::string& name) const;
    std::string Definition(const Card& card) const;
    std::string HardwareDefinitions(const Card& card) const;

    PrivateFolder folder_;
    std::vector<std::pair<std::string, std::unique_ptr<LoopCardState, Unmap>>> states_;
};

using CardList = std::vector<LoopCards::Card>;

}  // namespace sonavex
