#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace sonavex {

// Gains of the simulated card's mixer, left and right; 1 leaves the samples as they are.
struct MixerGains {
    using Pair = std::array<double, 2>;

    Pair wave{1.0, 1.0};     // what is played
    Pair line{0.0, 0.0};     // from the line input to the output
    Pair mic{0.0, 0.0};      // from the microphone input to the output
    Pair monitor{0.0, 0.0};  // from what is recorded to the output
    Pair master{1.0, 1.0};   // of the sum of these
    Pair record{1.0, 1.0};   // from the input that is recorded to the capture

    // Tone of the output, decibels.
    double bassDb = 0.0;
    double midDb = 0.0;
    double trebleDb = 0.0;
};

// The simulated card's mixer as a signal path: before the device under test and after it. The device's
// output is wired to both inputs. What comes back to the output does so one device period later. With
// the gains as they are by default every sample passes unchanged. One thread at a time.
class MixerPath {
public:
    void SetGains(const MixerGains& gains);
    // The tone filters depend on it.
    void SetRate(std::uint32_t rateHz);

    // Interleaved stereo, in place: from what is played to the device under test, and from there to
    // what is captured.
    void ProcessOutput(std::span<std::int16_t> samples);
    void ProcessInput(std::span<std::int16_t> samples);

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
    // The last period at the inputs, and as it was recorded.
    std::vector<std::int16_t> input_;
    std::vector<std::int16_t> recorded_;
};

}  // namespace sonavex
