#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/ports/SoundSystem.h"

namespace sonavex {

// Wraps a sound system and copies the first channel of every captured sample that the instrument reads, in
// reading order.
class CaptureTap : public SoundSystem {
public:
    // The system must outlive this object.
    explicit CaptureTap(SoundSystem& system) noexcept : system_(system) {}

    const std::vector<std::int16_t>& Samples() const noexcept { return samples_; }
    void Forget() noexcept { samples_.clear(); }

    SoundDeviceList EnumeratePlayback() override { return system_.EnumeratePlayback(); }
    SoundDeviceList EnumerateCapture() override { return system_.EnumerateCapture(); }
    RateList ExtendedPlaybackRates(const std::string& identifier) override {
        return system_.ExtendedPlaybackRates(identifier);
    }
    RateList ExtendedCaptureRates(const std::string& identifier) override {
        return system_.ExtendedCaptureRates(identifier);
    }
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override {
        return system_.CreatePlaybackDevice(identifier);
    }
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override {
        return std::make_unique<Device>(*this, system_.CreateCaptureDevice(identifier));
    }
    EventHandle CreateEvent(std::function<void(EventHandle)> handler) override {
        return system_.CreateEvent(std::move(handler));
    }
    void DestroyEvent(EventHandle event) override { system_.DestroyEvent(event); }
    void OnDeviceLost(std::function<void(const RuntimeError&)> handler) override {
        system_.OnDeviceLost(std::move(handler));
    }
    bool Simulated() const noexcept override { return system_.Simulated(); }

private:
    class Buffer : public CaptureBuffer {
    public:
        Buffer(CaptureTap& tap, std::unique_ptr<CaptureBuffer> buffer) noexcept
            : tap_(tap), buffer_(std::move(buffer)) {}
        void SetNotificationPositions(std::span<const PositionNotification> positions) override {
            buffer_->SetNotificationPositions(positions);
        }
        void StartLooping() override { buffer_->StartLooping(); }
        void Stop() override { buffer_->Stop(); }
        void ReadBuffer(std::int32_t offset, std::span<std::int16_t> samples) override {
            buffer_->ReadBuffer(offset, samples);
            for (std::size_t i = 0; i < samples.size(); i += 2) tap_.samples_.push_back(samples[i]);
        }
        void CaptureFine(bool on) override { buffer_->CaptureFine(on); }
        FineRun TakeFine(std::span<std::int32_t> samples) noexcept override {
            return buffer_->TakeFine(samples);
        }
        int Bits() const override { return buffer_->Bits(); }
        std::uint32_t TakeMovedBits() noexcept override { return buffer_->TakeMovedBits(); }
        CaptureStatistics Statistics() const override { return buffer_->Statistics(); }

    private:
        CaptureTap& tap_;
        std::unique_ptr<CaptureBuffer> buffer_;
    };
    class Device : public CaptureDevice {
    public:
        Device(CaptureTap& tap, std::unique_ptr<CaptureDevice> device) noexcept
            : tap_(tap), device_(std::move(device)) {}
        std::unique_ptr<CaptureBuffer> CreateBuffer(const BufferDescription& description) override {
            return std::make_unique<Buffer>(tap_, device_->CreateBuffer(description));
        }

    private:
        CaptureTap& tap_;
        std::unique_ptr<CaptureDevice> device_;
    };

    SoundSystem& system_;
    std::vector<std::int16_t> samples_;
};

}  // namespace sonavex
