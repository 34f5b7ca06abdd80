#include "platform/combined/CombinedSoundSystem.h"

#include <optional>
#include <vector>

#include "core/ports/SoundErrors.h"

namespace sonavex {
namespace {

// Both lists with one primary device, the first system's that has a device at all.
template <class List>
SoundDeviceList Join(List listServer, List listDirect) {
    SoundDeviceList server;
    std::optional<RuntimeError> failure;
    try {
        server = listServer();
    } catch (const RuntimeError& error) {
        failure = error;
    }
    SoundDeviceList direct = listDirect();
    if (failure && direct.size() < 2) throw *failure;
    if (server.size() < 2) return direct.size() < 2 ? server : direct;
    if (!direct.empty()) server.insert(server.end(), direct.begin() + 1, direct.end());
    return server;
}

// The primary device of the server, or of the direct devices where the server has none.
template <class Create>
auto CreatePrimary(Create createOnServer, Create createDirect) -> decltype(createOnServer()) {
    std::optional<RuntimeError> failure;
    try {
        return createOnServer();
    } catch (const RuntimeError& error) {
        failure = error;
    }
    try {
        return createDirect();
    } catch (const RuntimeError& error) {
        if (error.Number() != sound_error::kNoDriver) throw;
    }
    throw *failure;
}

}  // namespace

// A capture buffer of one of the systems, armed with the combined system's events.
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
    CaptureStatistics Statistics() const override { return buffer_->Statistics(); }
    std::string PathNote() const override { return buffer_->PathNote(); }
    std::optional<std::chrono::nanoseconds> ClockLead() const override { return buffer_->ClockLead(); }
    std::string ClockName() const override { return buffer_->ClockName(); }

private:
    // An unknown event is refused by the buffer as well.
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
    using List = std::function<SoundDeviceList()>;
    return Join<List>([this] { return server_->EnumeratePlayback(); },
                      [this] { return direct_->EnumeratePlayback(); });
}

SoundDeviceList CombinedSoundSystem::EnumerateCapture() {
    using List = std::function<SoundDeviceList()>;
    return Join<List>([this] { return server_->EnumerateCapture(); },
                      [this] { return direct_->EnumerateCapture(); });
}

std::unique_ptr<PlaybackDevice> CombinedSoundSystem::CreatePlaybackDevice(const std::string& identifier) {
    using Create = std::function<std::unique_ptr<PlaybackDevice>()>;
    const Create onServer = [&] { return server_->CreatePlaybackDevice(identifier); };
    const Create direct = [&] { return direct_->CreatePlaybackDevice(identifier); };
    if (identifier.empty()) return CreatePrimary(onServer, direct);
    return Direct(identifier) ? direct() : onServer();
}

std::unique_ptr<CaptureDevice> CombinedSoundSystem::CreateCaptureDevice(const std::string& identifier) {
    using Create = std::function<std::unique_ptr<CaptureDevice>()>;
    const Create onServer = [&] {
        return std::make_unique<Capture>(*this, server_->CreateCaptureDevice(identifier), false);
    };
    const Create direct = [&] {
        return std::make_unique<Capture>(*this, direct_->CreateCaptureDevice(identifier), true);
    };
    if (identifier.empty()) return CreatePrimary(onServer, direct);
    return Direct(identifier) ? direct() : onServer();
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
