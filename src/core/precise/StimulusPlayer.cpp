#include "core/precise/StimulusPlayer.h"

#include <chrono>
#include <cmath>
#include <utility>

#include "core/stimulus/RenderStimulus.h"
#include "core/stimulus/StimulusPlan.h"

namespace sonavex {
namespace {

constexpr std::chrono::milliseconds kCheckInterval{50};
// At rates above 48 kHz a device holds up to this part of a second more than its cursors say.
constexpr int kBeyondCursorPerSecond = 15;
constexpr const char* kGeneratorPlays = "The generator plays. Stop it before a stimulus is started.";
constexpr const char* kNoOutput = "No output device is open.";

StimulusSignal AtLevel(std::vector<double> period, double levelDbfs) {
    const double peak = std::pow(10.0, levelDbfs / 20.0);
    for (double& sample : period) sample *= peak;
    return {{}, std::move(period)};
}

}  // namespace

SampleWord WordOf(const StimulusChoice& choice, int outputBits) {
    SampleWord word{outputBits, std::nullopt};
    if (choice.dither) word.ditherBits = choice.ditherBits.value_or(outputBits);
    return word;
}

StimulusPlayer::StimulusPlayer(const Needs& needs)
    : needs_(needs), self_(std::make_shared<StimulusPlayer*>(this)) {
    if (needs_.panel != nullptr) needs_.panel->StopStimulus = [this] { StopAtOnce(); };
}

StimulusPlayer::~StimulusPlayer() {
    OnChanged = nullptr;
    StopAtOnce();
    if (needs_.panel != nullptr) needs_.panel->StopStimulus = nullptr;
}

void StimulusPlayer::Start(const StimulusChoice& choice) {
    RequireFree();
    Render(choice);
    choice_ = choice;
    trouble_.clear();
    captureStarts_ = needs_.instrument.Engine.CaptureStarts;
    SetState(State::kRendering);
}

void StimulusPlayer::RequireFree() const {
    if (needs_.instrument.Meter.Generator.SweepRunning) throw StimulusError(kGeneratorPlays);
}

void StimulusPlayer::Render(const StimulusChoice& choice) {
    const int bits = needs_.instrument.Engine.OutputBits();
    if (bits == 0) throw StimulusError(kNoOutput);
    const SampleWord word = WordOf(choice, bits);
    CheckDither(word);
    CheckLevel(choice.stimulus.shape, word, choice.levelDbfs);
    if (choice.period)
        return RenderInBackground(
            [period = choice.period, level = choice.levelDbfs] { return AtLevel(*period, level); },
            choice.side, word);
    const StimulusPlan plan =
        PlanStimulus({choice.stimulus, static_cast<double>(needs_.instrument.Shared.SampleRate),
                      choice.recordLength, choice.levelDbfs, choice.snap});
    RenderInBackground([plan] { return RenderStimulus(plan); }, choice.side, word);
}

void StimulusPlayer::RenderInBackground(std::function<StimulusSignal()> render, StimulusSide side,
                                        const SampleWord& word) {
    needs_.background.Run(Background::Line::kStimulus, [render = std::move(render), word, side,
                                                        order = ++order_, self = std::weak_ptr(self_)] {
        return [self, order, sound = StimulusSource::Sound{render(), side, word}] {
            if (const auto player = self.lock()) (*player)->TakeRendered(order, sound);
        };
    });
}

void StimulusPlayer::TakeRendered(std::uint64_t order, StimulusSource::Sound sound) {
    if (order != order_ || state_ != State::kRendering || interrupted_) return;
    lines_ = sound.signal.Lines();
    PutFirst(sound);
    if (!heard_) source_.Reset(needs_.instrument.Shared.SampleRate);
    source_.Play(std::move(sound));
    if (std::exchange(heard_, true)) {
        needs_.instrument.Fine.Refill();
    } else {
        needs_.instrument.Fine.SetSource(&source_);
        needs_.instrument.Engine.SetFullVolume(true);
    }
    SetState(afterFirst_ ? State::kFirstSignal : State::kPlaying);
}

void StimulusPlayer::PutFirst(StimulusSource::Sound& sound) {
    afterFirst_.reset();
    if (heard_ || !FirstSignal) return;
    std::optional<StimulusSignal> first = FirstSignal(choice_.levelDbfs);
    if (!first) return;
    afterFirst_ = sound;
    sound.signal = std::move(*first);
}

void StimulusPlayer::Continue() {
    if (state_ != State::kFirstSignal) return;
    source_.Play(std::move(*std::exchange(afterFirst_, std::nullopt)));
    needs_.instrument.Fine.Refill();
    SetState(State::kPlaying);
}

void StimulusPlayer::Stop() {
    if (!heard_) return StopAtOnce();
    ++order_;
    source_.End();
    needs_.instrument.Fine.Refill();
    SetState(State::kEnding);
}

// Sets the volume first: the source is silent after its end, and the block meter's output may not be.
void StimulusPlayer::StopAtOnce() {
    ++order_;
    if (state_ == State::kOff) return;
    needs_.instrument.Engine.SetFullVolume(false);
    if (std::exchange(heard_, false)) needs_.instrument.Fine.SetSource(nullptr);
    interrupted_ = false;
    lines_.clear();
    SetState(State::kOff);
}

void StimulusPlayer::Check() {
    CheckEngine();
    if (state_ != State::kEnding) return;
    // A device that is closed drops what it has not played.
    const auto beyondCursor =
        static_cast<std::uint64_t>(needs_.instrument.Shared.SampleRate / kBeyondCursorPerSecond);
    const std::uint64_t unplayed =
        needs_.instrument.Fine.FramesAhead() + needs_.instrument.Engine.HeldFrames() + beyondCursor;
    if (source_.Ended(unplayed)) StopAtOnce();
}

// A restart of the engine that was not announced by the panel follows a loss.
void StimulusPlayer::CheckEngine() {
    const StreamEngine& engine = needs_.instrument.Engine;
    const bool runs = needs_.instrument.Shared.EventsReady && !engine.Restarting();
    if (runs && !interrupted_ && engine.CaptureStarts == captureStarts_) return;
    if (state_ == State::kEnding) return StopAtOnce();
    if (std::exchange(heard_, false)) needs_.instrument.Fine.SetSource(nullptr);
    interrupted_ = !runs;
    if (!runs) return;
    captureStarts_ = engine.CaptureStarts;
    try {
        Render(choice_);
        SetState(State::kRendering);
    } catch (const StimulusError& error) {
        trouble_ = error.what();
        StopAtOnce();
    }
}

void StimulusPlayer::SetState(State state) {
    state_ = state;
    if (!Active()) needs_.loop.StopTimer(std::exchange(timer_, 0));
    if (Active() && timer_ == 0) timer_ = needs_.loop.StartTimer(kCheckInterval, [this] { Check(); });
    if (needs_.panel != nullptr) needs_.panel->ShowStimulus(Active());
    if (OnChanged) OnChanged();
}

}  // namespace sonavex
