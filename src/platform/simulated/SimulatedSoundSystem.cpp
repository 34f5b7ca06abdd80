#include "platform/simulated/SimulatedSoundSystem.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "core/ports/SoundErrors.h"
#include "platform/ring/RingBuffers.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// After a delay, the pacing thread catches up with at most this time. Frames beyond it are lost, as on a
// real card.
constexpr auto kLongestCatchUp = 2s;
constexpr auto kPacingInterval = 4ms;
constexpr std::int32_t kFreeHardwareBuffers = 1;

RuntimeError DeviceGone() {
    return {sound_error::kBufferLost, "The simulated sound card has been unplugged."};
}

}  // namespace

// The connection of one buffer to the card.
struct SimulatedSoundSystem::Connection : RingDevice {
    explicit Connection(const SimulatedCard& simulated) : card(simulated) {}

    const SimulatedCard& card;
    bool lost = false;
    bool reported = false;

    int Bits() const noexcept override { return card.Bits(); }
    std::string ClockName() const override { return card.OneClock() ? "simulated card" : std::string(); }
    void RequireDevice() const override {
        if (lost) throw DeviceGone();
    }
};

class SimulatedSoundSystem::SimulatedPlayback : public RingPlaybackBuffer {
public:
    SimulatedPlayback(SimulatedCard& card, std::shared_ptr<const Connection> connection,
                      const BufferDescription& description)
        : RingPlaybackBuffer(description), card_(card), connection_(std::move(connection)) {
        card_.Connect(Ring());
    }
    ~SimulatedPlayback() override { card_.Disconnect(Ring()); }
    SimulatedPlayback(const SimulatedPlayback&) = delete;
    SimulatedPlayback& operator=(const SimulatedPlayback&) = delete;

private:
    const RingDevice& Device() const noexcept override { return *connection_; }

    SimulatedCard& card_;
    std::shared_ptr<const Connection> connection_;
};

class SimulatedSoundSystem::SimulatedCapture : public RingCaptureBuffer {
public:
    SimulatedCapture(SimulatedCard& card, std::shared_ptr<const Connection> connection,
                     const NotificationHub& hub, const BufferDescription& description)
        : RingCaptureBuffer(hub, description), card_(card), connection_(std::move(connection)) {
        card_.Connect(Ring());
    }
    ~SimulatedCapture() override { card_.Disconnect(Ring()); }
    SimulatedCapture(const SimulatedCapture&) = delete;
    SimulatedCapture& operator=(const SimulatedCapture&) = delete;

private:
    const RingDevice& Device() const noexcept override { return *connection_; }

    SimulatedCard& card_;
    std::shared_ptr<const Connection> connection_;
};

SimulatedSoundSystem::SimulatedSoundSystem(EventLoop& loop, Pace pace)
    : RingSoundSystem(loop), lostSignal_(loop.CreateSignal([this] { ReportLostBuffers(); })) {
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

RateList SimulatedSoundSystem::ExtendedPlaybackRates(const std::string& identifier) {
    RequirePlugged(identifier);
    return {kExtendedRates.begin(), kExtendedRates.end()};
}

RateList SimulatedSoundSystem::ExtendedCaptureRates(const std::string& identifier) {
    return ExtendedPlaybackRates(identifier);
}

void SimulatedSoundSystem::RequirePlugged(const std::string& identifier) const {
    if (card_.Plugged() && (identifier.empty() || identifier == kIdentifier)) return;
    throw RuntimeError(sound_error::kNoDriver, "There is no sound device '" + identifier + "'.");
}

std::unique_ptr<PlaybackDevice> SimulatedSoundSystem::CreatePlaybackDevice(const std::string& identifier) {
    RequirePlugged(identifier);
    return PlaybackDeviceOf(
        [this](const BufferDescription& description) {
            return std::make_unique<SimulatedPlayback>(card_, Connect(description.format), description);
        },
        {kFreeHardwareBuffers});
}

std::unique_ptr<CaptureDevice> SimulatedSoundSystem::CreateCaptureDevice(const std::string& identifier) {
    RequirePlugged(identifier);
    return CaptureDeviceOf([this](const BufferDescription& description) {
        return std::make_unique<SimulatedCapture>(card_, Connect(description.format), Hub(), description);
    });
}

// The connection of a new buffer of this format, to whose rate the card is set.
std::shared_ptr<const SimulatedSoundSystem::Connection> SimulatedSoundSystem::Connect(
    const WaveFormat& format) {
    if (!card_.Plugged()) throw DeviceGone();
    RequireStereo16(format, "The simulated sound card takes 16-bit stereo PCM only.");
    rateHz_.store(format.samplesPerSecond);
    card_.SetRate(format.samplesPerSecond);
    std::erase_if(connections_, [](const auto& connection) { return connection.expired(); });
    const auto connection = std::make_shared<Connection>(card_);
    connections_.push_back(connection);
    return connection;
}

void SimulatedSoundSystem::Unplug() {
    card_.SetPlugged(false);
    for (const auto& weak : connections_)
        if (const auto connection = weak.lock()) connection->lost = true;
    lostSignal_->Raise();
}

void SimulatedSoundSystem::ReportLostBuffers() {
    bool news = false;
    for (const auto& weak : connections_) {
        const auto connection = weak.lock();
        if (!connection || !connection->lost || connection->reported) continue;
        connection->reported = true;
        news = true;
    }
    if (news) ReportLoss(DeviceGone());
}

}  // namespace sonavex
