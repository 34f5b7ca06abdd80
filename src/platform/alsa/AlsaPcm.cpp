#include "platform/alsa/AlsaPcm.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/ports/SoundErrors.h"

namespace sonavex {
namespace {

constexpr std::span<const AlsaFormat> kAllFormats{kAlsaFormats};
// For conversions, which truncate wider samples.
constexpr std::span<const AlsaFormat> kNarrow = kAllFormats.last(1);
constexpr int kMostBits = 24;
constexpr snd_pcm_access_t kAccess = SND_PCM_ACCESS_RW_INTERLEAVED;
constexpr unsigned kChannels = 2;

struct FreeHardwareParameters {
    void operator()(snd_pcm_hw_params_t* parameters) const { snd_pcm_hw_params_free(parameters); }
};
using HardwareParameters = std::unique_ptr<snd_pcm_hw_params_t, FreeHardwareParameters>;

struct FreeSoftwareParameters {
    void operator()(snd_pcm_sw_params_t* parameters) const { snd_pcm_sw_params_free(parameters); }
};
using SoftwareParameters = std::unique_ptr<snd_pcm_sw_params_t, FreeSoftwareParameters>;

HardwareParameters NewHardwareParameters() {
    snd_pcm_hw_params_t* parameters = nullptr;
    if (snd_pcm_hw_params_malloc(&parameters) < 0) throw RuntimeError(error_number::kOutOfMemory);
    return HardwareParameters(parameters);
}

std::string Quoted(const AlsaDevice& device) {
    return "The sound device '" + device.info.description + "' ";
}

RuntimeError OpenError(const AlsaDevice& device, int error) {
    switch (-error) {
        case EBUSY:
        case EAGAIN:
            return {sound_error::kAllocated, Quoted(device) + "is in use by another program."};
        case ENOENT:
        case ENODEV:
        case ENXIO:
            return {sound_error::kNoDriver, Quoted(device) + "is not there."};
        case EINVAL:
            return {sound_error::kBadFormat, Quoted(device) + "refuses its settings."};
        default:
            return {sound_error::kGeneric, Quoted(device) + "cannot be used: " + snd_strerror(error) + "."};
    }
}

}  // namespace

void AlsaPcm::Close::operator()(snd_pcm_t* pcm) const noexcept {
    snd_pcm_drop(pcm);
    snd_pcm_close(pcm);
}

AlsaPcm::AlsaPcm(const AlsaDevice& device, snd_pcm_stream_t direction)
    : device_(device), direction_(direction) {
    Open(device_.pcm);
    FindExtendedRates();
}

AlsaPcm::AlsaPcm(const AlsaDevice& device, snd_pcm_stream_t direction, std::uint32_t rateHz, Shape wanted)
    : AlsaPcm(device, direction) {
    rateHz_ = rateHz;
    const std::span<const AlsaFormat> formats = NativeFormats();
    const Lacks lacks = FindFormats(Resampling::kForbidden, formats);
    if (lacks.Any()) {
        // The same device with libasound's conversions.
        if (device_.Hardware()) Open("plug" + device_.pcm);
        const Lacks stillLacks = FindFormats(Resampling::kAllowed, device_.Hardware() ? kNarrow : formats);
        if (stillLacks.Any()) RefuseFormat(stillLacks);
    }
    ConfigureInTurn(wanted);
    note_ = ConversionNote(lacks);
}

RateList AlsaPcm::ReadExtendedRates(const AlsaDevice& device, snd_pcm_stream_t direction) {
    return AlsaPcm(device, direction).extendedRates_;
}

std::span<const AlsaFormat> AlsaPcm::NativeFormats() const noexcept {
    return device_.converting ? kNarrow : kAllFormats;
}

void AlsaPcm::FindExtendedRates() {
    // A rate plugin resamples even where that is forbidden, so that it seems to have every rate.
    if (device_.converting) return;
    for (const std::int32_t rateHz : kExtendedRates)
        if (std::any_of(kAllFormats.begin(), kAllFormats.end(), [&](const AlsaFormat& format) {
                return !Missing(Resampling::kForbidden, format, static_cast<std::uint32_t>(rateHz)).Any();
            }))
            extendedRates_.push_back(rateHz);
}

void AlsaPcm::Open(const std::string& name) {
    // The device can be open only once.
    pcm_.reset();
    snd_pcm_t* pcm = nullptr;
    const int error = snd_pcm_open(&pcm, name.c_str(), direction_, SND_PCM_NONBLOCK);
    if (error < 0) throw OpenError(device_, error);
    pcm_.reset(pcm);
}

void AlsaPcm::Require(int result) const {
    if (result < 0) throw OpenError(device_, result);
}

AlsaPcm::Lacks AlsaPcm::FindFormats(Resampling resampling, std::span<const AlsaFormat> formats) {
    formats_.clear();
    Lacks toConvert{.format = true};
    for (const AlsaFormat& format : formats) {
        const Lacks lacks = Missing(resampling, format, rateHz_);
        if (!lacks.Any()) formats_.push_back(format);
        if (toConvert.format) toConvert = lacks;
    }
    return formats_.empty() ? toConvert : Lacks{};
}

AlsaPcm::Lacks AlsaPcm::Missing(Resampling resampling, const AlsaFormat& format, std::uint32_t rateHz) const {
    snd_pcm_t* const pcm = Handle();
    const HardwareParameters parameters = NewHardwareParameters();
    Require(snd_pcm_hw_params_any(pcm, parameters.get()));
    Require(snd_pcm_hw_params_set_rate_resample(pcm, parameters.get(),
                                                resampling == Resampling::kAllowed ? 1 : 0));
    // Each test is made with the earlier properties set, because a card may have this rate in mono only.
    Lacks lacks;
    lacks.channels = snd_pcm_hw_params_test_channels(pcm, parameters.get(), kChannels) < 0;
    if (!lacks.channels) Require(snd_pcm_hw_params_set_channels(pcm, parameters.get(), kChannels));
    lacks.format = snd_pcm_hw_params_test_format(pcm, parameters.get(), format.code) < 0;
    if (!lacks.format) Require(snd_pcm_hw_params_set_format(pcm, parameters.get(), format.code));
    lacks.rate = snd_pcm_hw_params_test_rate(pcm, parameters.get(), rateHz, 0) < 0;
    return lacks;
}

// A card may refuse a format only when all its settings are known, and with any error: USB cards lack the
// bandwidth for a wide format.
void AlsaPcm::ConfigureInTurn(Shape wanted) {
    for (const AlsaFormat& format : formats_) {
        format_ = format;
        try {
            return Configure(wanted);
        } catch (const RuntimeError& error) {
            if (error.Number() == sound_error::kAllocated || error.Number() == sound_error::kNoDriver) throw;
            snd_pcm_hw_free(Handle());  // settings whose preparation failed stay installed
        }
    }
    throw RuntimeError(sound_error::kBadFormat,
                       Quoted(device_) + "refuses its settings. Formats tried: " + NamesOf(formats_) + ".");
}

void AlsaPcm::Configure(Shape wanted) {
    snd_pcm_t* const pcm = Handle();
    const HardwareParameters owned = NewHardwareParameters();
    snd_pcm_hw_params_t* const parameters = owned.get();
    Require(snd_pcm_hw_params_any(pcm, parameters));
    Require(snd_pcm_hw_params_set_access(pcm, parameters, kAccess));
    Require(snd_pcm_hw_params_set_format(pcm, parameters, format_.code));
    Require(snd_pcm_hw_params_set_channels(pcm, parameters, kChannels));
    Require(snd_pcm_hw_params_set_rate(pcm, parameters, rateHz_, 0));
    snd_pcm_uframes_t periodFrames = wanted.periodFrames;
    Require(snd_pcm_hw_params_set_period_size_near(pcm, parameters, &periodFrames, nullptr));
    snd_pcm_uframes_t bufferFrames = wanted.bufferFrames;
    Require(snd_pcm_hw_params_set_buffer_size_near(pcm, parameters, &bufferFrames));
    Require(snd_pcm_hw_params(pcm, parameters));
    Require(snd_pcm_hw_params_get_period_size(parameters, &periodFrames, nullptr));
    Require(snd_pcm_hw_params_get_buffer_size(parameters, &bufferFrames));
    periodFrames_ = static_cast<std::uint32_t>(periodFrames);
    bufferFrames_ = static_cast<std::uint32_t>(bufferFrames);
    const int significant = snd_pcm_hw_params_get_sbits(parameters);
    bits_ = std::min({significant > 0 ? significant : format_.bits, format_.bits, kMostBits});
}

void AlsaPcm::SetWakeUp(std::uint32_t frames) {
    snd_pcm_sw_params_t* raw = nullptr;
    if (snd_pcm_sw_params_malloc(&raw) < 0) throw RuntimeError(error_number::kOutOfMemory);
    const SoftwareParameters parameters(raw);
    snd_pcm_uframes_t never = 0;
    Require(snd_pcm_sw_params_current(Handle(), raw));
    Require(snd_pcm_sw_params_get_boundary(raw, &never));
    Require(snd_pcm_sw_params_set_start_threshold(Handle(), raw, never));
    Require(snd_pcm_sw_params_set_avail_min(Handle(), raw, frames));
    Require(snd_pcm_sw_params(Handle(), raw));
}

std::string AlsaPcm::ConversionNote(const Lacks& lacks) const {
    std::string note;
    if (lacks.rate)
        note =
            "does not run at " + std::to_string(rateHz_) + " Hz: its samples are converted from another rate";
    else if (lacks.format)
        note = "takes none of the formats " + NamesOf(kAllFormats) + ": samples are converted";
    else if (lacks.channels)
        note = "is not stereo: its channels are converted";
    else if (device_.converting)
        note = "is defined with conversions: samples may change on their way";
    return note.empty() ? note : Quoted(device_) + note + ", with " + std::to_string(bits_) + " bits.";
}

void AlsaPcm::RefuseFormat(const Lacks& lacks) const {
    std::string reason =
        "takes none of the formats " + NamesOf(device_.converting ? kNarrow : kAllFormats) + ".";
    if (lacks.channels) reason = "is not stereo.";
    if (lacks.rate) reason = "does not run at " + std::to_string(rateHz_) + " Hz.";
    throw RuntimeError(sound_error::kBadFormat, Quoted(device_) + reason);
}

std::string AlsaPcm::ClockName() const {
    snd_pcm_info_t* info = nullptr;
    if (snd_pcm_info_malloc(&info) < 0) return {};
    const int card = snd_pcm_info(pcm_.get(), info) == 0 ? snd_pcm_info_get_card(info) : -1;
    snd_pcm_info_free(info);
    return card < 0 ? std::string() : "card " + std::to_string(card);
}

}  // namespace sonavex
