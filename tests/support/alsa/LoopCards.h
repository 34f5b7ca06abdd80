#pragma once

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/alsa/LoopCardState.h"

namespace sonavex {

// Fake sound cards for libasound: each returns on its input what it plays, in real time. During the object's
// lifetime this process's ALSA configuration contains these cards only.
class LoopCards {
public:
    // A card that the configuration defines as a PCM.
    struct Card {
        std::string name;
        std::string description;
        std::vector<int> ratesHz{};  // empty: all rates of the instrument
        int channels = 2;
        std::string format = "S16_LE";  // or several, separated by blanks
        std::string refused{};          // formats that the card offers and then refuses
        int refusal = EPROTO;           // error number of a refusal
    };

    // `more` is added to the configuration verbatim. Cards whose name begins with "hw:CARD=" act as hardware:
    // "hw:" and "plughw:" reach them, and they share rates, channels and format.
    explicit LoopCards(const std::vector<Card>& cards, const std::string& more = {});
    ~LoopCards();
    LoopCards(const LoopCards&) = delete;
    LoopCards& operator=(const LoopCards&) = delete;

    // State of the card with that name; it stays as set.
    LoopCardState& State(const std::string& name);

    // Whether a process uses that direction of the card, checked without opening it.
    enum class Direction { kPlayback, kCapture };
    bool InUse(const std::string& name, Direction direction) const;

    // Environment for programs that must see the same cards.
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
