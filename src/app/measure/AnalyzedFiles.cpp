#include "app/measure/AnalyzedFiles.h"

#include <sndfile.h>

#include <array>
#include <cstdio>
#include <memory>

#include "app/measure/MeasureError.h"
#include "app/measure/Recording.h"
#include "core/analyzer/Reading.h"
#include "platform/plain/ReplacedFile.h"

namespace sonavex::measure {
namespace {

[[noreturn]] void FailToWrite(const std::string& path, const std::string& why) {
    throw MeasureError("The file '" + path + "' cannot be written: " + why);
}

void CheckWritten(const std::string& path, const std::error_code& error) {
    if (error) FailToWrite(path, error.message());
}

template <typename... Arguments>
std::string Formatted(const char* format, Arguments... arguments) {
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(), format, arguments...);
    return text.data();
}

}  // namespace

void WriteText(const std::string& path, const std::string& text) {
    ReplacedFile file(path);
    CheckWritten(path, file.Error());
    CheckWritten(path, file.Write(text));
    CheckWritten(path, file.Commit());
}

void WriteFloatWav(const std::string& path, std::span<const double> samples, std::int32_t rateHz) {
    ReplacedFile target(path);
    CheckWritten(path, target.Error());
    SF_INFO info{};
    info.samplerate = rateHz;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(
        sf_open_fd(target.Descriptor(), SFM_WRITE, &info, SF_FALSE), sf_close);
    if (!file) FailToWrite(path, ReasonOf(nullptr));
    const auto frames = static_cast<sf_count_t>(samples.size());
    if (sf_writef_double(file.get(), samples.data(), frames) != frames)
        FailToWrite(path, ReasonOf(file.get()));
    sf_write_sync(file.get());
    if (sf_close(file.release()) != 0) FailToWrite(path, "The file could not be completed.");
    CheckWritten(path, target.Commit());
}

void SpectrumMean::Add(std::span<const double> samples) {
    const std::vector<double> power = plan_.AcPowerSpectrum(samples);
    power_.resize(power.size());
    ++records_;
    for (std::size_t j = 0; j < power.size(); ++j)
        power_[j] += (power[j] - power_[j]) / static_cast<double>(records_);
}

std::string SpectrumMean::Csv() const {
    const double enbw = plan_.Window().EnbwBins();
    std::string csv =
        "# Mean power spectrum without dc, scaled so that a sine on a bin reads its level in dBFS\n";
    csv += "# A full-scale sine is 0 dBFS\n";
    csv += "# Window: 7-term minimum side lobe\n";
    csv += Formatted("# ENBW: %.6f bins = %.6f Hz\n", enbw, enbw * plan_.BinHz());
    csv += Formatted("# Rate: %.0f Hz; record: %zu samples; records: %zu, overlapping by 75 %%\n",
                     plan_.RateHz(), plan_.Length(), records_);
    csv += "frequency_hz,level_dbfs\n";
    for (std::size_t j = 0; j < power_.size(); ++j)
        csv += Formatted("%.9g,%.4f\n", static_cast<double>(j) * plan_.BinHz(),
                         0.5 * Decibels(2.0 * enbw * power_[j]));
    return csv;
}

}  // namespace sonavex::measure
