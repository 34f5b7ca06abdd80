// A plugin for libasound: a sound card whose output is wired to its input. It keeps the pace of the
// clock, takes only the rates of its configuration, is used by one stream a direction at a time, and
// can be unplugged, stalled, suspended and made to fail through its file while streams run:
//
//   pcm.NAME { type sonavex_loop  state "FILE"  rates [ 48000 44100 ]  channels 2
//              format "S32_LE S16_LE"  refuse "S32_LE"  error 71 }
//
// All but the file may be left out; the channels are then 2, the format is S16_LE and the rates are
// those of the instrument. The formats may also be S24_LE, S24_3LE or FLOAT_LE, which is never opened
// by the instrument. A refused format is offered, and its settings then fail with the error (EPROTO by
// default). The cable has 24 bits.

#define PIC 1
#include <alsa/asoundlib.h>
#include <alsa/pcm_external.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/alsa/LoopCardState.h"

namespace sonavex {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

struct Settings {
    std::string stateFile;
    std::vector<unsigned> rates;
    unsigned channels = 2;
    std::vector<unsigned> formats{SND_PCM_FORMAT_S16_LE};
    std::vector<unsigned> refused;
    int error = EPROTO;
};

constexpr std::uint64_t kSampleMask = 0xFFFFFF;
constexpr std::uint64_t kFrameMask = 0xFFFFFFFFFFFF;

// The upper 24 bits of two left-justified samples.
std::uint64_t Packed(std::uint32_t first, std::uint32_t second) {
    return std::uint64_t{first >> 8U} | std::uint64_t{second >> 8U} << 24U;
}

// The mapped file; each direction is held by one stream.
class Cable {
public:
    Cable() = default;
    ~Cable() {
        if (state_ != nullptr) munmap(state_, sizeof(LoopCardState));
        if (file_ >= 0) close(file_);
    }
    Cable(const Cable&) = delete;
    Cable& operator=(const Cable&) = delete;

    // Returns 0 or a negative error.
    int Open(const std::string& path, snd_pcm_stream_t direction) {
        file_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (file_ < 0 || ftruncate(file_, sizeof(LoopCardState)) < 0) return -errno;
        void* const memory =
            mmap(nullptr, sizeof(LoopCardState), PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
        if (memory == MAP_FAILED) return -errno;
        state_ = static_cast<LoopCardState*>(memory);
        if (Unplugged()) return -ENODEV;
        struct flock mine {};
        mine.l_type = F_WRLCK;
        mine.l_start = direction;
        mine.l_len = 1;
        // The lock belongs to the open file, so another stream of this process is refused too.
        return fcntl(file_, F_OFD_SETLK, &mine) < 0 ? -EBUSY : 0;
    }

    bool Unplugged() const { return state_->unplugged.load() != 0; }
    bool Stalled() const { return state_->stalled.load() != 0; }
    bool Suspended() const { return state_->suspended.load() != 0; }
    bool Failing() const { return state_->failing.load() != 0; }

    void Put(std::int64_t number, std::uint64_t frame) { Slot(number).store(Tag(number) << 48U | frame); }
    void Silence(std::int64_t number) { Slot(number).store(0); }
    std::uint64_t Get(std::int64_t number) const {
        const std::uint64_t word = Slot(number).load();
        return word >> 48U == Tag(number) ? word & kFrameMask : 0;
    }

private:
    static std::uint64_t Tag(std::int64_t number) {
        return static_cast<std::uint16_t>(static_cast<std::size_t>(number) / LoopCardState::kFrames + 1);
    }
    std::atomic<std::uint64_t>& Slot(std::int64_t number) const {
        return state_->frames[static_cast<std::size_t>(number) % LoopCardState::kFrames];
    }

    int file_ = -1;
    LoopCardState* state_ = nullptr;
};

// One stream. Positions count frames since its start.
class LoopPcm {
public:
    LoopPcm() : timer_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {}
    ~LoopPcm() { close(timer_); }
    LoopPcm(const LoopPcm&) = delete;
    LoopPcm& operator=(const LoopPcm&) = delete;

    // Returns 0 or a negative error. After 0 the PCM owns this object.
    int Create(const char* name, const Settings& settings, snd_pcm_stream_t direction, int mode);
    snd_pcm_t* Pcm() const { return io_.pcm; }

private:
    static LoopPcm& Of(snd_pcm_ioplug_t* io) { return *static_cast<LoopPcm*>(io->private_data); }
    bool Playback() const { return io_.stream == SND_PCM_STREAM_PLAYBACK; }

    std::int64_t ClockFrames() const {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return now.tv_sec * std::int64_t{io_.rate} + now.tv_nsec * io_.rate / kNanosecondsPerSecond;
    }
    // Frames that the program has written or read.
    std::int64_t Application() const { return static_cast<std::int64_t>(io_.appl_ptr); }
    std::int64_t Position() {
        if (running_ && !cable_.Stalled()) position_ = ClockFrames() - start_;
        return position_;
    }

    void SetTimer(std::int64_t intervalNs) {
        const timespec interval{0, static_cast<long>(intervalNs)};
        const itimerspec setting{interval, interval};
        timerfd_settime(timer_, 0, &setting, nullptr);
    }

    int CheckFormat() const;
    int Prepare();
    int Start();
    int Stop();
    snd_pcm_sframes_t Pointer();
    snd_pcm_sframes_t Transfer(char* samples, snd_pcm_uframes_t frames);
    unsigned short Events();
    std::size_t SampleBytes() const {
        return static_cast<std::size_t>(snd_pcm_format_physical_width(io_.format)) / 8;
    }
    std::uint64_t LoadFrame(const char* samples) const;
    void StoreFrame(char* samples, std::uint64_t frame) const;
    int SetConstraints(const Settings& settings);
    static const snd_pcm_ioplug_callback_t& Callbacks();

    snd_pcm_ioplug_t io_{};
    int timer_;
    Cable cable_;
    bool running_ = false;
    std::int64_t start_ = 0;     // number of the frame at position 0
    std::int64_t position_ = 0;  // position of the card
    std::int64_t availableMin_ = 1;
    std::vector<unsigned> refused_;
    int error_ = 0;                           // of a refusal
    std::vector<std::uint64_t> beforeStart_;  // written before the start, not yet on the cable
};

int LoopPcm::CheckFormat() const {
    const bool refused = std::find(refused_.begin(), refused_.end(), io_.format) != refused_.end();
    return refused ? -error_ : 0;
}

int LoopPcm::Prepare() {
    if (cable_.Unplugged()) return -ENODEV;
    running_ = false;
    position_ = 0;
    beforeStart_.clear();
    return 0;
}

int LoopPcm::Start() {
    if (cable_.Unplugged()) return -ENODEV;
    start_ = ClockFrames();
    running_ = true;
    for (std::size_t i = 0; i < beforeStart_.size(); ++i)
        cable_.Put(start_ + static_cast<std::int64_t>(i), beforeStart_[i]);
    beforeStart_.clear();
    SetTimer(static_cast<std::int64_t>(io_.period_size) * kNanosecondsPerSecond / io_.rate / 4);
    return 0;
}

// Discards what was written but not played.
int LoopPcm::Stop() {
    if (running_ && Playback())
        for (std::int64_t position = Position(); position < Application(); ++position)
            cable_.Silence(start_ + position);
    running_ = false;
    SetTimer(0);
    return 0;
}

snd_pcm_sframes_t LoopPcm::Pointer() {
    if (cable_.Unplugged()) return -ENODEV;
    if (running_ && cable_.Failing()) return -EPIPE;
    const std::int64_t position = Position();
    if (running_ && cable_.Suspended()) {
        snd_pcm_ioplug_set_state(&io_, SND_PCM_STATE_SUSPENDED);
        return static_cast<snd_pcm_sframes_t>(position);
    }
    const std::int64_t behind = Playback()
                                    ? position - Application()
                                    : position - Application() - static_cast<std::int64_t>(io_.buffer_size);
    return behind > 0 ? -EPIPE : static_cast<snd_pcm_sframes_t>(position);
}

// The significant bytes of a sample are its last ones in memory, except those of S24_LE.
std::uint64_t LoopPcm::LoadFrame(const char* samples) const {
    const auto load = [&](std::size_t channel) {
        std::uint32_t sample = 0;
        const std::size_t bytes = SampleBytes();
        std::memcpy(reinterpret_cast<char*>(&sample) + (4 - bytes), samples + channel * bytes, bytes);
        return io_.format == SND_PCM_FORMAT_S24_LE ? sample << 8U : sample;
    };
    return Packed(load(0), load(io_.channels - 1));
}

void LoopPcm::StoreFrame(char* samples, std::uint64_t frame) const {
    const std::size_t bytes = SampleBytes();
    for (std::size_t channel = 0; channel < io_.channels; ++channel) {
        const auto narrow = static_cast<std::uint32_t>(frame >> (24U * channel) & kSampleMask);
        // The upper byte of S24_LE may hold anything.
        const std::uint32_t sample =
            io_.format == SND_PCM_FORMAT_S24_LE ? narrow | 0xA5000000U : narrow << 8U;
        std::memcpy(samples + channel * bytes, reinterpret_cast<const char*>(&sample) + (4 - bytes), bytes);
    }
}

snd_pcm_sframes_t LoopPcm::Transfer(char* samples, snd_pcm_uframes_t frames) {
    if (cable_.Unplugged()) return -ENODEV;
    const std::size_t frameBytes = io_.channels * SampleBytes();
    // Mapped frames are read again until the program has taken them.
    std::int64_t number = start_ + Application();
    for (snd_pcm_uframes_t i = 0; i < frames; ++i, ++number, samples += frameBytes) {
        if (!Playback())
            StoreFrame(samples, cable_.Get(number));
        else if (running_)
            cable_.Put(number, LoadFrame(samples));
        else
            beforeStart_.push_back(LoadFrame(samples));
    }
    return static_cast<snd_pcm_sframes_t>(frames);
}

unsigned short LoopPcm::Events() {
    std::uint64_t ticks = 0;
    static_cast<void>(read(timer_, &ticks, sizeof ticks));
    const snd_pcm_sframes_t position = Pointer();
    if (position < 0 || cable_.Suspended()) return POLLERR;
    const std::int64_t waiting = Playback()
                                     ? static_cast<std::int64_t>(io_.buffer_size) - (Application() - position)
                                     : position - Application();
    if (waiting < availableMin_) return 0;
    return Playback() ? POLLOUT : POLLIN;
}

const snd_pcm_ioplug_callback_t& LoopPcm::Callbacks() {
    static const snd_pcm_ioplug_callback_t kCallbacks = [] {
        snd_pcm_ioplug_callback_t callbacks{};
        callbacks.hw_params = [](snd_pcm_ioplug_t* io, snd_pcm_hw_params_t*) { return Of(io).CheckFormat(); };
        callbacks.prepare = [](snd_pcm_ioplug_t* io) { return Of(io).Prepare(); };
        callbacks.start = [](snd_pcm_ioplug_t* io) { return Of(io).Start(); };
        callbacks.stop = [](snd_pcm_ioplug_t* io) { return Of(io).Stop(); };
        callbacks.pointer = [](snd_pcm_ioplug_t* io) { return Of(io).Pointer(); };
        callbacks.transfer = [](snd_pcm_ioplug_t* io, const snd_pcm_channel_area_t* areas,
                                snd_pcm_uframes_t offset, snd_pcm_uframes_t frames) {
            char* const samples = static_cast<char*>(areas->addr) + (areas->first + areas->step * offset) / 8;
            return Of(io).Transfer(samples, frames);
        };
        callbacks.poll_revents = [](snd_pcm_ioplug_t* io, pollfd*, unsigned, unsigned short* events) {
            *events = Of(io).Events();
            return 0;
        };
        callbacks.delay = [](snd_pcm_ioplug_t* io, snd_pcm_sframes_t* frames) {
            LoopPcm& pcm = Of(io);
            const std::int64_t ahead = pcm.Application() - pcm.Position();
            *frames = static_cast<snd_pcm_sframes_t>(pcm.Playback() ? ahead : -ahead);
            return 0;
        };
        callbacks.sw_params = [](snd_pcm_ioplug_t* io, snd_pcm_sw_params_t* parameters) {
            snd_pcm_uframes_t frames = 1;
            snd_pcm_sw_params_get_avail_min(parameters, &frames);
            Of(io).availableMin_ = static_cast<std::int64_t>(frames);
            return 0;
        };
        callbacks.close = [](snd_pcm_ioplug_t* io) {
            delete &Of(io);
            return 0;
        };
        return callbacks;
    }();
    return kCallbacks;
}

int LoopPcm::SetConstraints(const Settings& settings) {
    // Programs use read and write; libasound's conversions use mmap.
    const unsigned access[] = {SND_PCM_ACCESS_RW_INTERLEAVED, SND_PCM_ACCESS_MMAP_INTERLEAVED};
    int error = snd_pcm_ioplug_set_param_list(&io_, SND_PCM_IOPLUG_HW_ACCESS, 2, access);
    if (error == 0)
        error = snd_pcm_ioplug_set_param_list(&io_, SND_PCM_IOPLUG_HW_FORMAT,
                                              static_cast<unsigned>(settings.formats.size()),
                                              settings.formats.data());
    if (error == 0)
        error = snd_pcm_ioplug_set_param_list(&io_, SND_PCM_IOPLUG_HW_CHANNELS, 1, &settings.channels);
    if (error == 0)
        error = snd_pcm_ioplug_set_param_list(&io_, SND_PCM_IOPLUG_HW_RATE,
                                              static_cast<unsigned>(settings.rates.size()),
                                              settings.rates.data());
    if (error == 0) error = snd_pcm_ioplug_set_param_minmax(&io_, SND_PCM_IOPLUG_HW_PERIOD_BYTES, 64, 131072);
    if (error == 0)
        error = snd_pcm_ioplug_set_param_minmax(&io_, SND_PCM_IOPLUG_HW_BUFFER_BYTES, 256, 1048576);
    return error;
}

int LoopPcm::Create(const char* name, const Settings& settings, snd_pcm_stream_t direction, int mode) {
    int error = cable_.Open(settings.stateFile, direction);
    if (error < 0) return error;
    io_.version = SND_PCM_IOPLUG_VERSION;
    io_.name = "Loop card";
    // Positions are counted without wrapping.
    io_.flags = SND_PCM_IOPLUG_FLAG_BOUNDARY_WA;
    io_.poll_fd = timer_;
    io_.poll_events = POLLIN;
    io_.callback = &Callbacks();
    io_.private_data = this;
    refused_ = settings.refused;
    error_ = settings.error;
    error = snd_pcm_ioplug_create(&io_, name, direction, mode);
    if (error < 0) return error;
    return SetConstraints(settings);
}

void ReadRates(const snd_config_t* list, std::vector<unsigned>& rates) {
    snd_config_iterator_t i = nullptr;
    snd_config_iterator_t next = nullptr;
    rates.clear();
    snd_config_for_each(i, next, list) {
        long rateHz = 0;
        if (snd_config_get_integer(snd_config_iterator_entry(i), &rateHz) == 0)
            rates.push_back(static_cast<unsigned>(rateHz));
    }
}

// Names separated by blanks.
std::vector<unsigned> Formats(const char* names) {
    std::vector<unsigned> formats;
    std::istringstream stream(names);
    for (std::string name; stream >> name;)
        formats.push_back(static_cast<unsigned>(snd_pcm_format_value(name.c_str())));
    return formats;
}

Settings ReadSettings(const snd_config_t* configuration) {
    Settings settings;
    settings.rates = {4000, 8000, 16000, 22050, 32000, 44100, 48000};
    snd_config_iterator_t i = nullptr;
    snd_config_iterator_t next = nullptr;
    snd_config_for_each(i, next, configuration) {
        const snd_config_t* const entry = snd_config_iterator_entry(i);
        const char* id = "";
        const char* text = "";
        long number = 0;
        snd_config_get_id(entry, &id);
        const std::string key = id;
        if (key == "state" && snd_config_get_string(entry, &text) == 0) settings.stateFile = text;
        if (key == "rates") ReadRates(entry, settings.rates);
        if (key == "channels" && snd_config_get_integer(entry, &number) == 0)
            settings.channels = static_cast<unsigned>(number);
        if (key == "format" && snd_config_get_string(entry, &text) == 0) settings.formats = Formats(text);
        if (key == "refuse" && snd_config_get_string(entry, &text) == 0) settings.refused = Formats(text);
        if (key == "error" && snd_config_get_integer(entry, &number) == 0)
            settings.error = static_cast<int>(number);
    }
    return settings;
}

int Open(snd_pcm_t** pcm, const char* name, const Settings& settings, snd_pcm_stream_t direction, int mode) {
    auto loop = std::make_unique<LoopPcm>();
    const int error = loop->Create(name, settings, direction, mode);
    if (loop->Pcm() == nullptr) return error;
    LoopPcm* const owned = loop.release();
    *pcm = owned->Pcm();
    if (error < 0) snd_pcm_close(*pcm);
    return error;
}

}  // namespace
}  // namespace sonavex

extern "C" {
SND_PCM_PLUGIN_DEFINE_FUNC(sonavex_loop) {
    static_cast<void>(root);
    return sonavex::Open(pcmp, name, sonavex::ReadSettings(conf), stream, mode);
}
SND_PCM_PLUGIN_SYMBOL(sonavex_loop);
}
