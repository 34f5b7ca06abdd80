#include <algorithm>
#include <optional>
#include <utility>

#include "core/audio/StreamEngine.h"
#include "core/generator/SignalControls.h"
#include "core/ports/SoundErrors.h"
#include "core/support/EndProgram.h"

namespace sonavex {
namespace {

constexpr const char* kNoOutput =
    "Unable to find Output Sound Card and/or DirectX. Check proper sound card installation";
constexpr const char* kNoInput =
    "Unable to find Inpout Sound Card and/or DirectX. Check proper sound card installation";
constexpr const char* kNoCaptureBuffer = "Error Creating Input Capture Device\ror sound card is in use.";
constexpr const char* kNoPlaybackBuffer = "Error Creating Output Sound Device";

constexpr std::int32_t kPriorityLevel = 2;

// An identifier's device. For the primary device (empty identifier) it is the second entry, the device that
// it refers to; error 9 if there is none. Empty for an unknown identifier.
SoundDeviceInfo Listed(const SoundDeviceList& devices, const std::string& identifier) {
    if (identifier.empty()) {
        if (devices.size() < 2) throw RuntimeError(error_number::kSubscript);
        return devices[1];
    }
    const auto found = std::find_if(devices.begin(), devices.end(), [&](const SoundDeviceInfo& device) {
        return device.identifier == identifier;
    });
    return found == devices.end() ? SoundDeviceInfo() : *found;
}

}  // namespace

bool StreamEngine::Report(std::string message, const RuntimeError& error) {
    if (!quiet_) needs_.errorLog.WriteErrorLog(message, error);
    return false;
}

void StreamEngine::EndWithoutPlaybackDevice(const RuntimeError& error) {
    needs_.errorLog.SetFatalError(true);
    Report(kNoOutput, error);
    throw EndProgram{1};
}

// Returns an empty list only in a quiet restart.
SoundDeviceList StreamEngine::EnumeratePlayback() {
    RuntimeError trouble(0, "");
    try {
        SoundDeviceList devices = needs_.sound.EnumeratePlayback();
        if (devices.size() > 1) return devices;
    } catch (const RuntimeError& error) {
        trouble = error;
    }
    if (!quiet_) EndWithoutPlaybackDevice(trouble);
    return {};
}

bool StreamEngine::CreateDevices() {
    const SoundDeviceList playbackDevices = EnumeratePlayback();
    if (playbackDevices.empty() || !CreateDeviceObjects(playbackDevices)) return false;
    needs_.mixers.PointMixersAt(OutputDeviceName, InputDeviceName);
    if (OnDevices) OnDevices(InputDeviceName, OutputDeviceName, needs_.shared.SampleRate);
    if (needs_.shared.NewerGeneration()) needs_.mixers.ReopenSoundCard(OutputDeviceName, InputDeviceName);
    try {
        playbackDevice_->SetCooperativeLevel(kPriorityLevel);
    } catch (const RuntimeError& error) {
        return Report(kNoPlaybackBuffer, error);
    }
    return CreateCaptureBuffer() && CreatePlaybackBuffer();
}

bool StreamEngine::CreateDeviceObjects(const SoundDeviceList& playbackDevices) {
    InputDeviceId = needs_.settings.Text(keys::kInput);
    OutputDeviceId = needs_.settings.Text(keys::kOutput);
    const SoundDeviceInfo output = Listed(playbackDevices, OutputDeviceId);
    OutputDeviceName = output.description;
    ListedOutputId = output.identifier;
    std::optional<RuntimeError> inputError;
    try {
        const SoundDeviceInfo input = Listed(needs_.sound.EnumerateCapture(), InputDeviceId);
        InputDeviceName = input.description;
        ListedInputId = input.identifier;
    } catch (const RuntimeError& error) {
        InputDeviceName.clear();
        ListedInputId.clear();
        inputError = error;
    }
    try {
        playbackDevice_ = needs_.sound.CreatePlaybackDevice(OutputDeviceId);
    } catch (const RuntimeError& error) {
        return Report(kNoOutput, error);
    }
    if (inputError) return Report(kNoInput, *inputError);
    try {
        captureDevice_ = needs_.sound.CreateCaptureDevice(InputDeviceId);
    } catch (const RuntimeError& error) {
        return Report(kNoInput, error);
    }
    return true;
}

bool StreamEngine::CreateCaptureBuffer() {
    const BufferDescription description{0, kCaptureBytes, WaveFormat::Stereo16(needs_.shared.SampleRate)};
    try {
        captureBuffer_ = captureDevice_->CreateBuffer(description);
    } catch (const RuntimeError& error) {
        return Report(kNoCaptureBuffer, error);
    }
    captureCounts_ = {};
    gapBefore_ = false;
    return true;
}

bool StreamEngine::CreatePlaybackBuffer() {
    const std::int32_t volume = Volume();
    BufferDescription description{buffer_flag::kVolumePositionFocus, kPlaybackBytes,
                                  WaveFormat::Stereo16(needs_.shared.SampleRate)};
    try {
        description.flags |= MixingLocationFlag();
        playbackBuffer_ = playbackDevice_->CreateBuffer(description);
        playbackBuffer_->SetVolume(volume);
    } catch (const RuntimeError& error) {
        return Report(kNoPlaybackBuffer, error);
    }
    return true;
}

// A buffer whose device is lost keeps its volume: the next one gets the right one.
void StreamEngine::SetFullVolume(bool on) {
    fullVolume_ = on;
    if (!playbackBuffer_) return;
    try {
        playbackBuffer_->SetVolume(Volume());
    } catch (const RuntimeError& error) {
        if (error.Number() != sound_error::kBufferLost) throw;
    }
}

// Virtual cables, and cards without a free hardware voice, are mixed in software.
std::uint32_t StreamEngine::MixingLocationFlag() {
    const PlaybackCapabilities capabilities = playbackDevice_->GetCapabilities();
    const bool isVirtual = OutputDeviceName.find("Virtual") != std::string::npos ||
                           OutputDeviceName.find("Cable") != std::string::npos;
    return isVirtual || capabilities.freeHardwareMixingBuffers < 1 ? buffer_flag::kSoftware
                                                                   : buffer_flag::kHardware;
}

std::int32_t StreamEngine::StoredLevel() const {
    return std::clamp(needs_.settings.Long(keys::kLevel), kLowestLevel, 0);
}

}  // namespace sonavex
