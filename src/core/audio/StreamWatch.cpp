#include "core/audio/StreamWatch.h"

#include <algorithm>

#include "core/ports/SoundErrors.h"
#include "core/support/ScopedFlag.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr auto kLookEvery = 100ms;
constexpr auto kTryEvery = 1s;
// A try that takes long, because the server does not answer, makes the pause longer: the window must
// stay usable.
constexpr int kPauseOverTry = 4;
constexpr auto kLeastPatience = 1s;
constexpr auto kLeastStartPatience = 3s;
constexpr std::int64_t kPatientBlocks = 3;
constexpr std::int64_t kBlockFrames = 2048;

constexpr const char* kLostMessage = "The sound device in use was lost. Measuring has stopped.";
constexpr const char* kWaiting = "Waiting for the sound device.";
constexpr const char* kStalled = "The sound device no longer delivers anything.";

bool Lists(const SoundDeviceList& devices, const std::string& identifier) {
    if (identifier.empty()) return devices.size() > 1;
    return std::any_of(devices.begin(), devices.end(),
                       [&](const SoundDeviceInfo& device) { return device.identifier == identifier; });
}

}  // namespace

StreamWatch::StreamWatch(const Environment& environment) : env_(environment) {}

StreamWatch::~StreamWatch() {
    Stop();
}

void StreamWatch::Start() {
    BeginPatience();
    env_.sound.OnDeviceLost([this](const RuntimeError& error) { Lost(error); });
    if (timer_ == 0) timer_ = env_.loop.StartTimer(kLookEvery, [this] { Look(); });
}

void StreamWatch::Stop() {
    if (timer_ == 0) return;
    env_.loop.StopTimer(timer_);
    timer_ = 0;
    env_.sound.OnDeviceLost({});
}

void StreamWatch::BlockQueued() {
    lastBlock_ = env_.loop.Now();
    awaitingFirst_ = false;
    onTrial_ = false;
    SetStopped(false, {});
}

void StreamWatch::BeginPatience() {
    seenStarts_ = env_.engine.CaptureStarts;
    lastBlock_ = env_.loop.Now();
    awaitingFirst_ = true;
}

std::chrono::nanoseconds StreamWatch::Patience() const {
    const std::chrono::nanoseconds blocks =
        kPatientBlocks * kBlockFrames * 1'000'000'000ns / env_.shared.SampleRate;
    return std::max<std::chrono::nanoseconds>(kLeastPatience, blocks);
}

std::chrono::nanoseconds StreamWatch::StartPatience() const {
    return std::max<std::chrono::nanoseconds>(kLeastStartPatience, Patience());
}

bool StreamWatch::Watching() const {
    return !reporting_ && !env_.engine.Restarting() && !(Held && Held());
}

void StreamWatch::Look() {
    // While somebody reads a message or chooses devices nothing is judged, and the patience begins anew
    // after it, as it does after a start.
    if (!Watching() || env_.engine.HoldNotifications) {
        lastBlock_ = env_.loop.Now();
        return;
    }
    if (env_.engine.CaptureStarts != seenStarts_) {
        BeginPatience();
        onTrial_ = false;
    }
    if (env_.shared.EventsReady)
        LookForStall();
    else if (stopped_)
        LookForReturn();
}

void StreamWatch::LookForStall() {
    const std::chrono::nanoseconds silence = env_.loop.Now() - lastBlock_;
    if (silence <= Patience()) return;
    if (awaitingFirst_ && silence <= StartPatience())
        SetStopped(true, kWaiting);
    else
        Lost({sound_error::kBufferLost, kStalled});
}

void StreamWatch::Lost(const RuntimeError& error) {
    if (!Watching() || !env_.shared.EventsReady) return;
    env_.engine.Abandon();
    nextTry_ = env_.loop.Now() + kTryEvery;
    SetStopped(true, error.what());
    // A device that was tried again and failed again has been told of.
    if (!onTrial_) Report(error);
}

void StreamWatch::Report(const RuntimeError& error) {
    const ScopedFlag reporting(reporting_);
    ++losses_;
    std::string message = std::string(kLostMessage) + "\r\r" + error.what();
    env_.errorLog.WriteErrorLog(message, error);
    if (stopped_ && ChooseDevices && DevicesListed()) ChooseDevices();
}

void StreamWatch::LookForReturn() {
    const std::chrono::nanoseconds begin = env_.loop.Now();
    if (begin < nextTry_) return;
    if (DevicesListed()) TryAgain();
    const std::chrono::nanoseconds end = env_.loop.Now();
    nextTry_ = end + std::max<std::chrono::nanoseconds>(kTryEvery, kPauseOverTry * (end - begin));
}

void StreamWatch::TryAgain() {
    onTrial_ = true;
    try {
        if (env_.engine.ReStart(StreamEngine::Telling::kQuiet) && OnRestarted) OnRestarted();
    } catch (const RuntimeError&) {
        // The device went away again while it was being started.
        env_.engine.Abandon();
    }
    BeginPatience();
}

bool StreamWatch::DevicesListed() {
    try {
        return Lists(env_.sound.EnumeratePlayback(), env_.engine.OutputDeviceId) &&
               Lists(env_.sound.EnumerateCapture(), env_.engine.InputDeviceId);
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
