#include "platform/simulated/SimulatedSoundSystem.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "core/ports/SoundErrors.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// Longest time that the pacing thread makes up for after it was held up; beyond it frames are lost,
// as they would be on a real card.
constexpr auto kLongestCatchUp = 2s;
constexpr auto kPacingInterval = 4ms;

RuntimeError DeviceGone() {
    return {sound_error::kBufferLost, "The simulated sound card has been unplugged."};
}

void RequireFormat(const WaveFormat& format) {
    if (format.formatTag == 1 && format.channels == 2 && format.bitsPerSample == 16 &&
        format.blockAlign == 4 && format.samplesPerSecond > 0)
        return;
    throw RuntimeError(sound_error::kBadFormat, "The simulated sound card takes 16-bit stereo PCM only.");
}

}  // namespace

// What a buffer and the system both know of the buffer's fate. It holds as long as the buffer exists.
struct SimulatedSoundSystem::Connection {
    bool lost = false;
    bool reported = false;

    void Require() const {
        if (lost) throw DeviceGone();
    }
};

class SimulatedSoundSystem::PlayBuffer : public PlaybackBuffer {
public:
    PlayBuffer(SimulatedSoundSystem& system, const BufferDescription& description)
        : system_(system),
          ring_(std::make_shared<PlaybackRing>(
              description.bytes, static_cast<std::int32_t>(description.format.samplesPerSecond))),
          connection_(system.Connect()) {
        system_.SetRate(description.format.samplesPerSecond);
        system_.card_.ConnectPlayback(ring_);
    }
    ~PlayBuffer() override { system_.card_.Disconnect(*ring_); }
    PlayBuffer(const PlayBuffer&) = delete;
    PlayBuffer& operator=(const PlayBuffer&) = delete;

    BufferCursors GetCurrentPosition() override { return Ring().Cursors(); }
    void WriteBuffer(std::int32_t offset, std::span<const std::int16_t> samples) override {
        Ring().Write(offset, samples);
    }
    void SetCurrentPosition(std::int32_t offset) override { Ring().SetPosition(offset); }
    void PlayLooping() override { Ring().Play(); }
    void Stop() override { ring_->Stop(); }
    void SetVolume(std::int32_t hundredthsDb) override { Ring().SetVolume(hundredthsDb); }

private:
    PlaybackRing& Ring() {
        connection_->Require();
        return *ring_;
    }

    SimulatedSoundSystem& system_;
    std::shared_ptr<PlaybackRing> ring_;
    std::shared_ptr<const Connection> connection_;
};

class SimulatedSoundSystem::CaptBuffer : public CaptureBuffer {
public:
    CaptBuffer(SimulatedSoundSystem& system, const BufferDescription& description)
        : system_(system),
          ring_(std::make_shared<CaptureRing>(description.bytes)),
          connection_(system.Connect()) {
        system_.SetRate(description.format.samplesPerSecond);
        system_.card_.ConnectCapture(ring_);
    }
    ~CaptBuffer() override {
        ring_->Stop();
        system_.card_.Disconnect(*ring_);
    }
    CaptBuffer(const CaptBuffer&) = delete;
    CaptBuffer& operator=(const CaptBuffer&) = delete;

    void SetNotificationPositions(std::span<const PositionNotification> positions) override {
        std::vector<CaptureRing::Position> ringPositions;
        for (const PositionNotification& position : positions)
            ringPositions.push_back({position.offset, system_.hub_.SignalOf(position.event)});
        Ring().SetPositions(std::move(ringPositions));
    }
    void StartLooping() override { Ring().Start(); }
    void Stop() override { ring_->Stop(); }
    void ReadBuffer(std::int32_t offset, std::span<std::int16_t> samples) override {
        Ring().Read(offset, samples);
    }
    CaptureStatistics Statistics() const override { return ring_->Statistics(); }

private:
    CaptureRing& Ring() {
        connection_->Require();
        return *ring_;
    }

    SimulatedSoundSystem& system_;
    std::shared_ptr<CaptureRing> ring_;
    std::shared_ptr<const Connection> connection_;
};

class SimulatedSoundSystem::Playback : public PlaybackDevice {
public:
    explicit Playback(SimulatedSoundSystem& system) noexcept : system_(system) {}
    void SetCooperativeLevel(std::int32_t) override {}
    PlaybackCapabilities GetCapabilities() override { return {system_.freeHardwareBuffers_}; }
    std::unique_ptr<PlaybackBuffer> CreateBuffer(const BufferDescription& description) override {
        system_.FailIfAsked(Operation::kPlaybackBuffer);
        if (!system_.card_.Plugged()) throw DeviceGone();
        RequireFormat(description.format);
        return std::make_unique<PlayBuffer>(system_, description);
    }

private:
    SimulatedSoundSystem& system_;
};

class SimulatedSoundSystem::Capture : public CaptureDevice {
public:
    explicit Capture(SimulatedSoundSystem& system) noexcept : system_(system) {}
    std::unique_ptr<CaptureBuffer> CreateBuffer(const BufferDescription& description) override {
        system_.FailIfAsked(Operation::kCaptureBuffer);
        if (!system_.card_.Plugged()) throw DeviceGone();
        RequireFormat(description.format);
        return std::make_unique<CaptBuffer>(system_, description);
    }

private:
    SimulatedSoundSystem& system_;
};

SimulatedSoundSystem::SimulatedSoundSystem(EventLoop& loop, Pace pace)
    : hub_(loop), lostBell_(loop.CreateSignal([this] { ReportLostBuffers(); })) {
    if (pace == Pace::kRealTime) thread_ = std::thread([this] { Run(); });
}

SimulatedSoundSystem::~SimulatedSoundSystem() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable()) thread_.join();
}

void SimulatedSoundSystem::Run() {
    using Clock = std::chrono::steady_clock;
    auto last = Clock::now();
    double owed = 0.0;  // frames
    std::unique_lock lock(mutex_);
    while (!wake_.wait_for(lock, kPacingInterval, [this] { return stopping_; })) {
        lock.unlock();
        const auto now = Clock::now();
        const auto elapsed = std::min<Clock::duration>(now - last, kLongestCatchUp);
        last = now;
        owed += std::chrono::duration<double>(elapsed).count() * rateHz_.load();
        const auto frames = static_cast<std::size_t>(owed);
        card_.Step(frames);
        owed -= static_cast<double>(frames);
        lock.lock();
    }
}

SoundDeviceList SimulatedSoundSystem::Enumerate() {
    FailIfAsked(Operation::kEnumerate);
    SoundDeviceList list{{"", "Primary sound device", ""}};
    if (card_.Plugged()) list.push_back({kIdentifier, kDescription, "simulated"});
    return list;
}

SoundDeviceList SimulatedSoundSystem::EnumeratePlayback() {
    return Enumerate();
}

SoundDeviceList SimulatedSoundSystem::EnumerateCapture() {
    return Enumerate();
}

void SimulatedSoundSystem::RequirePlugged(const std::string& identifier) const {
    if (card_.Plugged() && (identifier.empty() || identifier == kIdentifier)) return;
    throw RuntimeError(sound_error::kNoDriver, "There is no sound device '" + identifier + "'.");
}

std::unique_ptr<PlaybackDevice> SimulatedSoundSystem::CreatePlaybackDevice(const std::string& identifier) {
    FailIfAsked(Operation::kPlaybackDevice);
    RequirePlugged(identifier);
    return std::make_unique<Playback>(*this);
}

std::unique_ptr<CaptureDevice> SimulatedSoundSystem::CreateCaptureDevice(const std::string& identifier) {
    FailIfAsked(Operation::kCaptureDevice);
    RequirePlugged(identifier);
    return std::make_unique<Capture>(*this);
}

std::shared_ptr<const SimulatedSoundSystem::Connection> SimulatedSoundSystem::Connect() {
    std::erase_if(connections_, [](const auto& connection) { return connection.expired(); });
    const auto connection = std::make_shared<Connection>();
    connections_.push_back(connection);
    return connection;
}

void SimulatedSoundSystem::Unplug() {
    card_.SetPlugged(false);
    for (const auto& weak : connections_)
        if (const auto connection = weak.lock()) connection->lost = true;
    lostBell_->Raise();
}

void SimulatedSoundSystem::ReportLostBuffers() {
    bool news = false;
    for (const auto& weak : connections_) {
        const auto connection = weak.lock();
        if (!connection || !connection->lost || connection->reported) continue;
        connection->reported = true;
        news = true;
    }
    const auto handler = lostHandler_;
    if (news && handler) handler(DeviceGone());
}

void SimulatedSoundSystem::FailNext(Operation operation, const RuntimeError& error) {
    failures_.insert_or_assign(operation, error);
}

void SimulatedSoundSystem::FailIfAsked(Operation operation) {
    const auto found = failures_.find(operation);
    if (found == failures_.end()) return;
    const RuntimeError error = found->second;
    failures_.erase(found);
    throw error;
}

}  // namespace sonavex
