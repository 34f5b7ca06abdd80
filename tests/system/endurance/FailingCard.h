#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex {

// The simulated card, on which a test can make single operations fail.
class FailingCard : public SimulatedSoundSystem {
public:
    enum class Operation { kEnumerate, kPlaybackDevice, kCaptureDevice, kPlaybackBuffer, kCaptureBuffer };

    using SimulatedSoundSystem::SimulatedSoundSystem;

    // The next such operation fails once, with this error.
    void FailNext(Operation operation, const RuntimeError& error) {
        failures_.insert_or_assign(operation, error);
    }

    SoundDeviceList EnumeratePlayback() override {
        FailIfAsked(Operation::kEnumerate);
        return SimulatedSoundSystem::EnumeratePlayback();
    }
    SoundDeviceList EnumerateCapture() override {
        FailIfAsked(Operation::kEnumerate);
        return SimulatedSoundSystem::EnumerateCapture();
    }
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override {
        FailIfAsked(Operation::kPlaybackDevice);
        const std::shared_ptr<PlaybackDevice> device = SimulatedSoundSystem::CreatePlaybackDevice(identifier);
        return PlaybackDeviceOf(
            [this, device](const BufferDescription& description) {
                FailIfAsked(Operation::kPlaybackBuffer);
                return device->CreateBuffer(description);
            },
            device->GetCapabilities());
    }
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override {
        FailIfAsked(Operation::kCaptureDevice);
        const std::shared_ptr<CaptureDevice> device = SimulatedSoundSystem::CreateCaptureDevice(identifier);
        return CaptureDeviceOf([this, device](const BufferDescription& description) {
            FailIfAsked(Operation::kCaptureBuffer);
            return device->CreateBuffer(description);
        });
    }

private:
    void FailIfAsked(Operation operation) {
        if (const auto failure = failures_.extract(operation)) throw RuntimeError(failure.mapped());
    }

    std::map<Operation, RuntimeError> failures_;
};

}  // namespace sonavex
