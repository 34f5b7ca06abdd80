#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace sonavex {

// Gains of the simulated card's mixer, left and right. A gain of 1 leaves the samples unchanged.
struct MixerGains {
    using Pair = std::array<double, 2>;

    Pair wave{1.0, 1.0};     // playback to the output
    Pair line{0.0, 0.0};     // line input to the output
    Pair mic{0.0, 0.0};      // microphone input to the output
    Pair monitor{0.0, 0.0};  // recorded signal to the output
    Pair master{1.0, 1.0};   // sum of the above to the output
    Pair record{1.0, 1.0};   // selected input to the capture

    // Tone control of the output, decibels.
    double bassDb = 0.0;
    double midDb = 0.0;
    double trebleDb = 0.0;
};

// The signal path of the simulated card's mixer, before and after the device under test. The device's output
// is wired to both inputs. Inputs that are mixed into the output arrive there one device period later. With
// the default gains every sample passes unchanged. One thread at a time.
class MixerPath {
public:
    void SetGains(const MixerGains& gains);
    // Sets the rate that the tone filters are designed for.
    void SetRate(std::uint32_t rateHz);

    // Interleaved stereo, left-justified in 32 bits, in place; what the mixer changes has `bits`.
    // ProcessOutput turns playback into the input of the device under test, ProcessInput turns the device's
    // output into capture.
    void ProcessOutput(std::span<std::int32_t> samples, int bits);
    void ProcessInput(std::span<std::int32_t> samples, int bits);

private:
    // A second-order filter for two channels.
    struct Filter {
        double b0 = 1.0, b1 = 0.0, b2 = 0.0, a1 = 0.0, a2 = 0.0;
        std::array<double, 2> s1{}, s2{};
        bool inUse = false;
        double Run(double sample, std::size_t channel) noexcept;
        void Design(const std::array<double, 3>& b, const std::array<double, 3>& a) noexcept;
        void Shelf(double gainDb, double cornerHz, double rateHz, bool high) noexcept;
        void Peak(double gainDb, double centreHz, double rateHz) noexcept;
    };

    void DesignTones() noexcept;
    bool FeedsBack() const noexcept;
    double FedBack(std::size_t index, std::size_t channel) const noexcept;

    MixerGains gains_;
    double rateHz_ = 48000.0;
    std::array<Filter, 3> tones_;
    // The last period, at the inputs and after the record gain.
    std::vector<std::int32_t> input_;
    std::vector<std::int32_t> recorded_;
};

}  // namespace sonavex
