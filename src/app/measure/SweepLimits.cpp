#include "app/measure/SweepLimits.h"

#include <fstream>

#include "app/measure/MeasureError.h"
#include "app/measure/OptionValues.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {
namespace {

constexpr std::size_t kMostFileCharacters = 4'000'001;
constexpr const char* kLimitTakes =
    "QUANTITY:[LOW:]HIGH or QUANTITY:FILE, with thd, thdn, h2 to h9 or response";

std::optional<LimitCurve> ConstantIn(const std::string& text) {
    if (!IsNumeric(text)) return std::nullopt;
    return LimitCurve(CDbl(text));
}

}  // namespace

RunLimit LimitOf(const std::string& text) {
    const std::size_t colon = text.find(':');
    const std::optional<RunQuantity> quantity = QuantityNamed(text.substr(0, colon));
    if (!quantity || colon == std::string::npos || colon + 1 == text.size())
        Refuse("--limit", kLimitTakes, text);
    const std::string value = text.substr(colon + 1);
    RunLimit limit{*quantity, std::nullopt, ConstantIn(value)};
    if (limit.atMost) return limit;
    const std::size_t second = value.find(':');
    if (second != std::string::npos && ConstantIn(value.substr(0, second)) &&
        ConstantIn(value.substr(second + 1))) {
        limit.atLeast = ConstantIn(value.substr(0, second));
        limit.atMost = ConstantIn(value.substr(second + 1));
        return limit;
    }
    LimitTable table = ParseLimitTable(TextOfFile("limit", value));
    return {*quantity, std::move(table.atLeast), std::move(table.atMost)};
}

std::string TextOfFile(const std::string& what, const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text(kMostFileCharacters, '\0');
    if (file) file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad() || !file.is_open() || (file.gcount() == 0 && !file.eof()))
        throw MeasureError("The " + what + " '" + path + "' cannot be read.");
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

}  // namespace sonavex::measure
