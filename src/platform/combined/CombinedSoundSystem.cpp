#include "platform/combined/CombinedSoundSystem.h"

#include <optional>
#include <vector>

#include "core/ports/SoundErrors.h"

namespace sonavex {
namespace {

using Enumerate = SoundDeviceList (SoundSystem::*)();

// The devices of both systems. The primary device is that of the first system that has any device.
SoundDeviceList Join(SoundSystem& server, SoundSystem& direct, Enumerate enumerate) {
    SoundDeviceList list;
    std::optional<RuntimeError> failure;
    try {
        list = (server.*enumerate)();
    } catch (const RuntimeError& error) {
        failure = error;
    }
    const SoundDeviceList directList = (direct.*enumerate)();
    // A list with fewer than two entries holds no device.
    if (failure && directList.size() < 2) throw *failure;
    if (list.size() < 2) return directList.size() < 2 ? list : directList;
    if (!directList.empty()) list.insert(list.end(), directList.begin() + 1, directList.end());
    return list;
}

// call(server); if that fails, call(direct devices). Without direct devices the server's error is thrown.
template <class Call>
auto OfPrimary(SoundSystem& server, SoundSystem& direct, Call call) {
    std::optional<RuntimeError> failure;
    try {
        return call(server);
    } catch (const RuntimeError& error) {
        failure = error;
    }
    try {
        return call(direct);
    } catch (const RuntimeError& error) {
        if (error.Number() != sound_error::kNoDriver) throw;
    }
    throw *failure;
}

}  // namespace

// A capture buffer of one of the two systems. It translates the combined events to those of its system.
class CombinedSoundSystem::Buffer : public CaptureBuffer {
public:
    Buffer(const CombinedSoundSystem& system, std::unique_ptr<CaptureBuffer> buffer, bool direct)
        : system_(system), buffer_(std::move(buffer)), direct_(direct) {}

    void SetNotificationPositions(std::span<const PositionNotification> positions) override {
        std::vector<PositionNotification> translated;
        for (const PositionNotification& position : positions)
            translated.push_back({position.offset, Translated(position.event)});
        buffer_->SetNotificationPositions(translated);
    }
    void StartLooping() override { buffer_->StartLooping(); }
    void Stop() override { buffer_->Stop(); }
    void ReadBuffer(std::int32_t offset, std::span<std::int16_t> samples) override {
        buffer_->ReadBuffer(offset, samples);
    }
    void CaptureFine(bool on) override { buffer_->CaptureFine(on); }
    FineRun TakeFine(std::span<std::int32_t> samples) noexcept override { return buffer_->TakeFine(samples); }
    int Bits() const override { return buffer_->Bits(); }
    std::uint32_t TakeMovedBits() noexcept override { return buffer_->TakeMovedBits(); }
    CaptureStatistics Statistics() const override { return buffer_->Statistics(); }
    std::string PathNote() const override { return buffer_->PathNote(); }
    std::optional<std::chrono::nanoseconds> ClockLead() const override { return buffer_->ClockLead(); }
    std::string ClockName() const override { return buffer_->ClockName(); }

private:
    // 0 for an unknown event, which the buffer refuses.
    EventHandle Translated(EventHandle event) const {
        const auto found = system_.events_.find(event);
        if (found == system_.events_.end()) return 0;
        return direct_ ? found->second.ofDirect : found->second.ofServer;
    }

    const CombinedSoundSystem& system_;
    std::unique_ptr<CaptureBuffer> buffer_;
    bool direct_;
};

class CombinedSoundSystem::Capture : public CaptureDevice {
public:
    Capture(const CombinedSoundSystem& system, std::unique_ptr<CaptureDevice> device, bool direct)
        : system_(system), device_(std::move(device)), direct_(direct) {}
    std::unique_ptr<CaptureBuffer> CreateBuffer(const BufferDescription& description) override {
        return std::make_unique<Buffer>(system_, device_->CreateBuffer(description), direct_);
    }

private:
    const CombinedSoundSystem& system_;
    std::unique_ptr<CaptureDevice> device_;
    bool direct_;
};

CombinedSoundSystem::CombinedSoundSystem(std::unique_ptr<SoundSystem> server,
                                         std::unique_ptr<SoundSystem> direct, std::string directPrefix)
    : server_(std::move(server)), direct_(std::move(direct)), directPrefix_(std::move(directPrefix)) {}

CombinedSoundSystem::~CombinedSoundSystem() = default;

SoundDeviceList CombinedSoundSystem::EnumeratePlayback() {
    return Join(*server_, *direct_, &SoundSystem::EnumeratePlayback);
}

SoundDeviceList CombinedSoundSystem::EnumerateCapture() {
    return Join(*server_, *direct_, &SoundSystem::EnumerateCapture);
}

template <class Call>
auto CombinedSoundSystem::OfDevice(const std::string& identifier, Call call) const {
    return identifier.empty() ? OfPrimary(*server_, *direct_, call) : call(SystemOf(identifier));
}

RateList CombinedSoundSystem::ExtendedPlaybackRates(const std::string& identifier) {
    return OfDevice(identifier,
                    [&](SoundSystem& system) { return system.ExtendedPlaybackRates(identifier); });
}

RateList CombinedSoundSystem::ExtendedCaptureRates(const std::string& identifier) {
    return OfDevice(identifier, [&](SoundSystem& system) { return system.ExtendedCaptureRates(identifier); });
}

std::unique_ptr<PlaybackDevice> CombinedSoundSystem::CreatePlaybackDevice(const std::string& identifier) {
    return OfDevice(identifier, [&](SoundSystem& system) { return system.CreatePlaybackDevice(identifier); });
}

std::unique_ptr<CaptureDevice> CombinedSoundSystem::CreateCaptureDevice(const std::string& identifier) {
    return OfDevice(identifier, [&](SoundSystem& system) -> std::unique_ptr<CaptureDevice> {
        return std::make_unique<Capture>(*this, system.CreateCaptureDevice(identifier),
                                         &system == direct_.get());
    });
}

SoundSystem& CombinedSoundSystem::SystemOf(const std::string& identifier) const {
    return identifier.starts_with(directPrefix_) ? *direct_ : *server_;
}

EventHandle CombinedSoundSystem::CreateEvent(std::function<void(EventHandle)> handler) {
    const EventHandle event = ++lastEvent_;
    const auto forward = [event, handler = std::move(handler)](EventHandle) { handler(event); };
    events_[event] = {server_->CreateEvent(forward), direct_->CreateEvent(forward)};
    return event;
}

void CombinedSoundSystem::DestroyEvent(EventHandle event) {
    const auto found = events_.find(event);
    if (found == events_.end()) return;
    const EventPair pair = found->second;
    events_.erase(found);
    server_->DestroyEvent(pair.ofServer);
    direct_->DestroyEvent(pair.ofDirect);
}

void CombinedSoundSystem::OnDeviceLost(std::function<void(const RuntimeError&)> handler) {
    server_->OnDeviceLost(handler);
    direct_->OnDeviceLost(std::move(handler));
}

}  // namespace sonavex
