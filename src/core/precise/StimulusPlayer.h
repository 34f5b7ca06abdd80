#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/audio/Instrument.h"
#include "core/generator/GeneratorPanel.h"
#include "core/ports/Background.h"
#include "core/ports/EventLoop.h"
#include "core/precise/StimulusSource.h"
#include "core/stimulus/Stimulus.h"

namespace sonavex {

// What the user wants to play.
struct StimulusChoice {
    Stimulus stimulus;
    StimulusSide side = StimulusSide::kBoth;
    double levelDbfs = -1;
    bool snap = false;  // to the nearest odd bin of a record
    bool dither = true;
    std::optional<int> ditherBits;  // empty: the bits of the output
    std::size_t recordLength = 65536;
    // Not null: played again and again in place of the stimulus. Peak 1; its length is a power of two.
    std::shared_ptr<const std::vector<double>> period;
};

// The words of a choice on an output of this many bits.
SampleWord WordOf(const StimulusChoice& choice, int outputBits);

// Plays a stimulus in place of the block meter's output, at a playback volume of 0 dB. The level slider is
// applied again when the stimulus has ended. The generator cannot start meanwhile. A restart of the engine
// after a loss starts the stimulus again; the device dialog stops it for good.
class StimulusPlayer {
public:
    // All referenced objects must outlive the player.
    struct Needs {
        EventLoop& loop;
        sonavex::Instrument& instrument;
        Background& background;
        GeneratorPanel* panel = nullptr;  // null without a window
    };

    explicit StimulusPlayer(const Needs& needs);
    // Stops at once.
    ~StimulusPlayer();
    StimulusPlayer(const StimulusPlayer&) = delete;
    StimulusPlayer& operator=(const StimulusPlayer&) = delete;

    // Plays the choice, after what plays now. StimulusError if it cannot be played, while the generator plays
    // and without an output device; what plays then continues.
    void Start(const StimulusChoice& choice);
    // StimulusError while the generator plays.
    void RequireFree() const;
    // Ends with a ramp.
    void Stop();
    // Stops without a ramp.
    void StopAtOnce();

    // Called before the first stimulus after silence is heard, with its level in dBFS. A signal is played on
    // the stimulus' sides until Continue is called, nothing lets the stimulus start at once. May be empty.
    std::function<std::optional<StimulusSignal>(double levelDbfs)> FirstSignal;
    // Plays the stimulus after the first signal; does nothing without one.
    void Continue();

    enum class State { kOff, kRendering, kFirstSignal, kPlaying, kEnding };
    State Now() const noexcept { return state_; }
    // From Start until the end has been played.
    bool Active() const noexcept { return state_ != State::kOff; }
    // The tones as played; empty until the stimulus is rendered, and for noise.
    const std::vector<StimulusLine>& Lines() const noexcept { return lines_; }
    // Frames from the first one that was heard after silence to the first one of the stimulus; empty until it
    // has been filled.
    std::optional<std::uint64_t> Begin() const noexcept { return heard_ ? source_.Begin() : std::nullopt; }
    // Why a stimulus was not started again after a loss; empty otherwise.
    const std::string& Trouble() const noexcept { return trouble_; }

    // Called when the state, the lines or the trouble has changed. May be empty.
    std::function<void()> OnChanged;

private:
    void Render(const StimulusChoice& choice);
    void RenderInBackground(std::function<StimulusSignal()> render, StimulusSide side,
                            const SampleWord& word);
    void TakeRendered(std::uint64_t order, StimulusSource::Sound sound);
    void PutFirst(StimulusSource::Sound& sound);
    void Check();
    void CheckEngine();
    void SetState(State state);

    Needs needs_;
    StimulusSource source_;
    StimulusChoice choice_;
    std::optional<StimulusSource::Sound> afterFirst_;  // the stimulus that follows the first signal
    State state_ = State::kOff;
    bool heard_ = false;               // source_ plays
    bool interrupted_ = false;         // the engine does not run
    std::uint64_t order_ = 0;          // of the last rendering
    std::uint64_t captureStarts_ = 0;  // when the stimulus was started
    std::vector<StimulusLine> lines_;
    std::string trouble_;
    EventLoop::TimerId timer_ = 0;
    std::shared_ptr<StimulusPlayer*> self_;  // expires with the player, for late results
};

}  // namespace sonavex
