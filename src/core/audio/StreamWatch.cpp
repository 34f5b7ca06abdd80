#include "core/audio/StreamWatch.h"

#include <algorithm>
#include <utility>

#include "core/ports/SoundErrors.h"
#include "core/support/ScopedFlag.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr auto kCheckEvery = 100ms;
constexpr auto kTryEvery = 1s;
// A slow attempt, because the server does not answer, lengthens the pause: the window must stay usable.
constexpr int kPauseOverTry = 4;
constexpr auto kLeastPatience = 1s;
constexpr std::int64_t kPatientBlocks = 3;

// A longer gap between two checks means that the event loop was blocked; the notification may be queued, so
// the gap does not count.
constexpr auto kBlockedTime = 1s;

constexpr const char* kLostMessage = "The sound device in use was lost. Measuring has stopped.";
constexpr const char* kWaiting = "Waiting for the sound device.";
constexpr const char* kStalled = "The sound device has stopped delivering sound.";
constexpr const char* kHeldBack = "Measuring waits until the message is closed.";
constexpr const char* kFailing = "The captured signal cannot be measured.";
constexpr const char* kNotRunning = "No sound device is in use.";

// The device in use and the stored choice.
struct Choice {
    std::string stored;
    std::string usedIdentifier;
    std::string listedIdentifier;  // of the device that a primary device referred to
    std::string usedName;
};

// Whether the primary device refers to the device in use. A twin that was connected or removed changes its
// name, and connecting it to another socket changes its identifier.
bool RefersToUsed(const SoundDeviceInfo& device, const Choice& choice) {
    return device.identifier == choice.listedIdentifier || device.description == choice.usedName;
}

// Whether a start would open the same device again. It would not if the primary device now refers to another
// one.
bool Lists(const SoundDeviceList& devices, const Choice& choice) {
    if (choice.stored.empty())
        return devices.size() > 1 && (!choice.usedIdentifier.empty() || RefersToUsed(devices[1], choice));
    return std::any_of(devices.begin(), devices.end(),
                       [&](const SoundDeviceInfo& device) { return device.identifier == choice.stored; });
}

}  // namespace

StreamWatch::StreamWatch(const Needs& needs, const Policy& policy) : needs_(needs), policy_(policy) {}

StreamWatch::~StreamWatch() {
    Stop();
}

void StreamWatch::Start() {
    BeginPatience();
    lastCheck_ = needs_.loop.Now();
    needs_.sound.OnDeviceLost([this](const RuntimeError& error) { DeviceLost(error); });
    if (timer_ == 0) timer_ = needs_.loop.StartTimer(kCheckEvery, [this] { Check(); });
}

void StreamWatch::Stop() {
    if (timer_ == 0) return;
    needs_.loop.StopTimer(timer_);
    timer_ = 0;
    needs_.sound.OnDeviceLost({});
}

void StreamWatch::Notified() {
    lastNotification_ = needs_.loop.Now();
    awaitingFirst_ = false;
}

void StreamWatch::BlockQueued() {
    Notified();
    if (loss_) return;
    lastBlock_ = lastNotification_;
    onTrial_ = false;
    SetStopped(false, {});
}

void StreamWatch::BeginPatience() {
    seenStarts_ = needs_.engine.CaptureStarts;
    lastBlock_ = lastNotification_ = needs_.loop.Now();
    awaitingFirst_ = true;
    loss_.reset();
}

std::chrono::nanoseconds StreamWatch::Patience() const {
    const std::chrono::nanoseconds blocks =
        kPatientBlocks * kBlockFrames * 1'000'000'000ns / needs_.shared.SampleRate;
    return std::max<std::chrono::nanoseconds>(kLeastPatience, blocks);
}

std::chrono::nanoseconds StreamWatch::StartPatience() const {
    return std::max(policy_.firstBlock, Patience());
}

bool StreamWatch::Watching() const {
    return !reporting_ && !needs_.engine.Restarting() && !needs_.engine.HoldNotifications &&
           !(Held && Held());
}

void StreamWatch::Check() {
    const Time now = needs_.loop.Now();
    ExcludeBlockedTime(now);
    FollowStarts();
    MarkStale(now);
    postponed_ = Yielding && Yielding();
    if (postponed_) return;
    // While a message or a selection of devices is open, the stream is not judged, and the limits start again
    // afterwards.
    if (!Watching()) {
        lastNotification_ = now;
        return;
    }
    if (!needs_.shared.EventsReady)
        CheckForReturn();
    else if (loss_)
        TakeLoss(RuntimeError(*loss_), false);
    else
        CheckForStall(now);
}

void StreamWatch::ExcludeBlockedTime(Time now) {
    const Time pause = now - std::exchange(lastCheck_, now);
    if (pause < kBlockedTime) return;
    lastNotification_ = std::min(lastNotification_ + pause, now);
    lastBlock_ = std::min(lastBlock_ + pause, now);
}

void StreamWatch::CatchUp() {
    if (timer_ != 0 && postponed_) Check();
}

// Follows starts that were not made by the watch.
void StreamWatch::FollowStarts() {
    if (needs_.engine.CaptureStarts == seenStarts_) return;
    BeginPatience();
    onTrial_ = false;
}

void StreamWatch::MarkStale(Time now) {
    if (stopped_ || now - lastBlock_ <= Patience()) return;
    const char* reason = kFailing;
    if (!needs_.shared.EventsReady)
        reason = kNotRunning;
    else if (needs_.engine.HoldNotifications)
        reason = kHeldBack;
    else if (awaitingFirst_)
        reason = kWaiting;
    SetStopped(true, reason);
}

void StreamWatch::CheckForStall(Time now) {
    if (now - lastNotification_ > (awaitingFirst_ ? StartPatience() : Patience()))
        TakeLoss({sound_error::kBufferLost, kStalled}, true);
}

void StreamWatch::DeviceLost(const RuntimeError& error) {
    // A start that has not been checked yet must not clear a later loss.
    FollowStarts();
    if (loss_ || !needs_.shared.EventsReady) return;
    loss_ = error;
    SetStopped(true, error.what());
}

void StreamWatch::TakeLoss(const RuntimeError& error, bool stalled) {
    stalled_ = stalled;
    loss_.reset();
    if (policy_.recover) return GiveUp(error);
    Stop();
    ++losses_;
    SetStopped(true, error.what());
}

void StreamWatch::GiveUp(const RuntimeError& error) {
    needs_.engine.Abandon();
    nextTry_ = needs_.loop.Now() + kTryEvery;
    SetStopped(true, error.what());
    // A device that fails again after a restart by the watch has already been reported.
    if (!onTrial_) Report(error);
}

void StreamWatch::Report(const RuntimeError& error) {
    const ScopedFlag reporting(reporting_);
    ++losses_;
    std::string message = std::string(kLostMessage) + "\r\r" + error.what();
    needs_.errorLog.WriteErrorLog(message, error);
    if (stopped_ && ChooseDevices && (ChoiceGivenUp() || DevicesListed())) ChooseDevices();
}

// Whether the message's button has cleared the stored choice.
bool StreamWatch::ChoiceGivenUp() const {
    return needs_.settings.Text(keys::kOutput) != needs_.engine.OutputDeviceId ||
           needs_.settings.Text(keys::kInput) != needs_.engine.InputDeviceId;
}

void StreamWatch::CheckForReturn() {
    const Time begin = needs_.loop.Now();
    if (begin < nextTry_) return;
    if (DevicesListed()) TryAgain();
    const Time end = needs_.loop.Now();
    nextTry_ = end + std::max<Time>(kTryEvery, kPauseOverTry * (end - begin));
}

void StreamWatch::TryAgain() {
    onTrial_ = true;
    try {
        if (needs_.engine.ReStart(StreamEngine::Reporting::kQuiet)) {
            BeginPatience();
            if (OnRestarted) OnRestarted();
            return;
        }
    } catch (const RuntimeError&) {
        // The device was lost again during the restart.
        needs_.engine.Abandon();
    }
    BeginPatience();
}

bool StreamWatch::DevicesListed() {
    const Choice output{needs_.settings.Text(keys::kOutput), needs_.engine.OutputDeviceId,
                        needs_.engine.ListedOutputId, needs_.engine.OutputDeviceName};
    const Choice input{needs_.settings.Text(keys::kInput), needs_.engine.InputDeviceId,
                       needs_.engine.ListedInputId, needs_.engine.InputDeviceName};
    try {
        return Lists(needs_.sound.EnumeratePlayback(), output) &&
               Lists(needs_.sound.EnumerateCapture(), input);
    } catch (const RuntimeError&) {
        return false;
    }
}

void StreamWatch::SetStopped(bool stopped, const std::string& reason) {
    if (stopped == stopped_ && reason == reason_) return;
    stopped_ = stopped;
    reason_ = reason;
    if (OnChanged) OnChanged();
}

}  // namespace sonavex
