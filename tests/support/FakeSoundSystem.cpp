#include "support/FakeSoundSystem.h"

#include <algorithm>
#include <utility>

namespace sonavex {
namespace {

class FakePlaybackBuffer : public PlaybackBuffer {
public:
    explicit FakePlaybackBuffer(FakeSoundSystem& system) : system_(system) {}
    ~FakePlaybackBuffer() override { system_.log.Note("~playbackBuffer"); }
    FakePlaybackBuffer(const FakePlaybackBuffer&) = delete;
    FakePlaybackBuffer& operator=(const FakePlaybackBuffer&) = delete;

    std::string PathNote() const override { return system_.outputPathNote; }
    std::uint64_t Underruns() const override { return system_.underruns; }
    std::optional<std::chrono::nanoseconds> ClockLead() const override { return system_.outputLead; }
    std::string ClockName() const override { return system_.outputClock; }
    BufferCursors GetCurrentPosition() override {
        system_.log.Call("playbackBuffer.GetCurrentPosition");
        if (system_.cursors.empty()) return system_.restingCursors;
        const BufferCursors next = system_.cursors.front();
        system_.cursors.pop_front();
        return next;
    }
    void WriteBuffer(std::int32_t offset, std::span<const std::int16_t> samples) override {
        system_.log.Call("playbackBuffer.WriteBuffer", std::to_string(offset));
        system_.written.push_back({offset, {samples.begin(), samples.end()}});
    }
    void PlayFine(bool on) override { system_.fineOn = on; }
    std::size_t QueueFine(std::span<const std::int32_t> samples) override {
        const auto taken = samples.first(std::min(samples.size(), system_.fineRoom));
        system_.fineQueued.insert(system_.fineQueued.end(), taken.begin(), taken.end());
        system_.fineRoom -= taken.size();
        return taken.size();
    }
    std::size_t CutFine(std::chrono::milliseconds keep) override {
        system_.fineCuts.push_back(keep.count());
        return std::exchange(system_.fineWaiting, 0);
    }
    std::size_t FineFramesWaiting() const override { return system_.fineWaiting; }
    std::uint64_t FineFramesMissing() const override { return system_.fineMissing; }
    int Bits() const override { return system_.outputBits; }
    void SetCurrentPosition(std::int32_t offset) override {
        system_.log.Call("playbackBuffer.SetCurrentPosition", std::to_string(offset));
    }
    void PlayLooping() override { system_.log.Call("playbackBuffer.PlayLooping"); }
    void Stop() override { system_.log.Note("playbackBuffer.Stop"); }
    void SetVolume(std::int32_t hundredthsDb) override {
        system_.log.Call("playbackBuffer.SetVolume", std::to_string(hundredthsDb));
    }

private:
    FakeSoundSystem& system_;
};

class FakeCaptureBuffer : public CaptureBuffer {
public:
    explicit FakeCaptureBuffer(FakeSoundSystem& system) : system_(system) {}
    ~FakeCaptureBuffer() override { system_.log.Note("~captureBuffer"); }
    FakeCaptureBuffer(const FakeCaptureBuffer&) = delete;
    FakeCaptureBuffer& operator=(const FakeCaptureBuffer&) = delete;

    std::string PathNote() const override { return system_.inputPathNote; }
    std::optional<std::chrono::nanoseconds> ClockLead() const override { return system_.inputLead; }
    std::string ClockName() const override { return system_.inputClock; }
    void SetNotificationPositions(std::span<const PositionNotification> positions) override {
        std::string arguments = std::to_string(positions.size());
        for (const PositionNotification& position : positions)
            arguments += ' ' + std::to_string(position.offset) + ':' + std::to_string(position.event);
        system_.log.Call("captureBuffer.SetNotificationPositions", arguments);
        system_.positions.assign(positions.begin(), positions.end());
    }
    void StartLooping() override { system_.log.Call("captureBuffer.StartLooping"); }
    void Stop() override { system_.log.Note("captureBuffer.Stop"); }
    void ReadBuffer(std::int32_t offset, std::span<std::int16_t> samples) override {
        system_.log.Call("captureBuffer.ReadBuffer",
                         std::to_string(offset) + ' ' + std::to_string(samples.size_bytes()));
        std::int16_t sample = system_.firstCapturedSample;
        for (std::int16_t& captured : samples) captured = sample++;
    }
    void CaptureFine(bool on) override { system_.fineCaptureOn = on; }
    FineRun TakeFine(std::span<std::int32_t> samples) noexcept override {
        std::vector<std::int32_t>& waiting = system_.fineCaptured;
        const std::size_t count = std::min(samples.size(), waiting.size());
        std::copy_n(waiting.begin(), count, samples.begin());
        waiting.erase(waiting.begin(), waiting.begin() + static_cast<std::ptrdiff_t>(count));
        const std::uint64_t first = std::exchange(system_.fineFirstFrame, system_.fineFirstFrame + count / 2);
        return {count, first};
    }
    int Bits() const override { return system_.inputBits; }
    std::uint32_t TakeMovedBits() noexcept override { return std::exchange(system_.movedBits, 0U); }
    CaptureStatistics Statistics() const override { return system_.statistics; }

private:
    FakeSoundSystem& system_;
};

class FakePlaybackDevice : public PlaybackDevice {
public:
    explicit FakePlaybackDevice(FakeSoundSystem& system) : system_(system) {}
    ~FakePlaybackDevice() override { system_.log.Note("~playbackDevice"); }
    FakePlaybackDevice(const FakePlaybackDevice&) = delete;
    FakePlaybackDevice& operator=(const FakePlaybackDevice&) = delete;

    void SetCooperativeLevel(std::int32_t level) override {
        system_.log.Call("playbackDevice.SetCooperativeLevel", std::to_string(level));
    }
    PlaybackCapabilities GetCapabilities() override {
        system_.log.Call("playbackDevice.GetCapabilities");
        return {system_.freeHardwareBuffers};
    }
    std::unique_ptr<PlaybackBuffer> CreateBuffer(const BufferDescription& description) override {
        system_.playbackDescription = description;
        system_.log.Call("playbackDevice.CreateBuffer");
        return std::make_unique<FakePlaybackBuffer>(system_);
    }

private:
    FakeSoundSystem& system_;
};

class FakeCaptureDevice : public CaptureDevice {
public:
    explicit FakeCaptureDevice(FakeSoundSystem& system) : system_(system) {}
    ~FakeCaptureDevice() override { system_.log.Note("~captureDevice"); }
    FakeCaptureDevice(const FakeCaptureDevice&) = delete;
    FakeCaptureDevice& operator=(const FakeCaptureDevice&) = delete;

    std::unique_ptr<CaptureBuffer> CreateBuffer(const BufferDescription& description) override {
        system_.captureDescription = description;
        system_.log.Call("captureDevice.CreateBuffer");
        return std::make_unique<FakeCaptureBuffer>(system_);
    }

private:
    FakeSoundSystem& system_;
};

}  // namespace

FakeSoundSystem::FakeSoundSystem(CallLog& callLog)
    : playbackDevices{{"", "Primary playback", ""}, {"out-a", "Card A", "a"}, {"out-b", "Card B", "b"}},
      captureDevices{{"", "Primary capture", ""}, {"in-a", "Line A", "a"}, {"in-b", "Line B", "b"}},
      log(callLog) {}

SoundDeviceList FakeSoundSystem::EnumeratePlayback() {
    log.Call("EnumeratePlayback");
    return playbackDevices;
}

SoundDeviceList FakeSoundSystem::EnumerateCapture() {
    log.Call("EnumerateCapture");
    return captureDevices;
}

RateList FakeSoundSystem::ExtendedRates(const char* operation, const std::string& identifier) const {
    if (extendedRates.empty()) return {};
    log.Call(operation, '[' + identifier + ']');
    const auto found = extendedRates.find(identifier);
    return found == extendedRates.end() ? RateList() : found->second;
}

RateList FakeSoundSystem::ExtendedPlaybackRates(const std::string& identifier) {
    return ExtendedRates("ExtendedPlaybackRates", identifier);
}

RateList FakeSoundSystem::ExtendedCaptureRates(const std::string& identifier) {
    return ExtendedRates("ExtendedCaptureRates", identifier);
}

std::unique_ptr<PlaybackDevice> FakeSoundSystem::CreatePlaybackDevice(const std::string& identifier) {
    log.Call("CreatePlaybackDevice", '[' + identifier + ']');
    return std::make_unique<FakePlaybackDevice>(*this);
}

std::unique_ptr<CaptureDevice> FakeSoundSystem::CreateCaptureDevice(const std::string& identifier) {
    log.Call("CreateCaptureDevice", '[' + identifier + ']');
    return std::make_unique<FakeCaptureDevice>(*this);
}

EventHandle FakeSoundSystem::CreateEvent(std::function<void(EventHandle)> handler) {
    const EventHandle event = ++lastEvent_;
    log.Call("CreateEvent", std::to_string(event));
    handlers_.emplace(event, std::move(handler));
    return event;
}

void FakeSoundSystem::DestroyEvent(EventHandle event) {
    handlers_.erase(event);
    log.Call("DestroyEvent", std::to_string(event));
}

void FakeSoundSystem::Fire(EventHandle event) {
    const auto found = handlers_.find(event);
    if (found == handlers_.end()) return;
    const auto handler = found->second;
    handler(event);
}

void FakeSoundSystem::FireSegment(std::size_t segment) {
    Fire(positions.at(segment).event);
}

}  // namespace sonavex
