#include "app/measure/OptionValues.h"

#include <sstream>

#include "app/measure/MeasureError.h"
#include "core/settings/SampleRates.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {
namespace {

constexpr double kHighestEdgeHz = 96000.0;

}  // namespace

std::string AllRates() {
    std::string list;
    for (const std::int32_t rate : SampleRateTable) list += (list.empty() ? "" : ", ") + CStr(rate);
    for (const std::int32_t rate : kExtendedRates) list += ", " + CStr(rate);
    return list;
}

void Refuse(const std::string& option, const std::string& takes, const std::string& text) {
    throw MeasureError(option + " takes " + takes + ", not '" + text + "'.");
}

double NumberOf(const std::string& option, const std::string& takes, Range range, const std::string& text) {
    if (!IsNumeric(text)) Refuse(option, takes, text);
    const double value = CDbl(text);
    if (value < range.lowest || value > range.highest) Refuse(option, takes, text);
    return value;
}

std::int32_t WholeNumberOf(const std::string& option, const std::string& takes, Range range,
                           const std::string& text) {
    const double value = NumberOf(option, takes, range, text);
    if (value != RoundHalfEven(value)) Refuse(option, takes, text);
    return CLng(value);
}

std::vector<double> NumbersOf(const std::string& option, const std::string& takes, Range range,
                              const std::string& text) {
    std::vector<double> numbers;
    std::istringstream list(text);
    for (std::string number; std::getline(list, number, ',');)
        numbers.push_back(NumberOf(option, takes, range, number));
    if (numbers.empty()) Refuse(option, takes, text);
    return numbers;
}

Range BandOf(const std::string& text) {
    const std::string takes = "LOW:HIGH in Hz, 0 to 96000";
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) Refuse("--band", takes, text);
    const Range range{0.0, kHighestEdgeHz};
    const Range band{NumberOf("--band", takes, range, text.substr(0, colon)),
                     NumberOf("--band", takes, range, text.substr(colon + 1))};
    if (band.lowest >= band.highest) Refuse("--band", takes, text);
    return band;
}

std::int32_t SampleRateOf(const std::string& text) {
    const std::string takes = "one of " + AllRates();
    const std::int32_t rateHz = WholeNumberOf("--rate", takes, {0.0, kExtendedRates.back()}, text);
    if (!IsSampleRate(rateHz)) Refuse("--rate", takes, text);
    return rateHz;
}

std::int32_t RecordLengthOf(const std::string& text) {
    const std::string takes = "a power of two from 4096 to 1048576";
    const std::int32_t length = WholeNumberOf("--length", takes, {4096.0, 1048576.0}, text);
    if ((length & (length - 1)) != 0) Refuse("--length", takes, text);
    return length;
}

// libsndfile interprets "-" as standard output, which is used for the readings.
std::string OutputFileOf(const std::string& option, const std::string& text) {
    if (text.empty() || text == "-") Refuse(option, "the name of a file", text);
    return text;
}

StimulusSide SideOf(const std::string& text) {
    if (text == "left") return StimulusSide::kLeft;
    if (text == "right") return StimulusSide::kRight;
    if (text == "both") return StimulusSide::kBoth;
    Refuse("--side", "left, right or both", text);
}

int DitherOf(const std::string& text) {
    if (text == "off") return 0;
    return WholeNumberOf("--dither", "8 to 32 bits or off", {8.0, 32.0}, text);
}

}  // namespace sonavex::measure
