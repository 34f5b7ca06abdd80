#include "core/report/RunReport.h"

#include <cstddef>

namespace sonavex {
namespace {

constexpr double kPictureLeft = 0.5;
constexpr double kPictureTop = 0.5;
constexpr double kPictureWidth = 7.5;
constexpr double kLinesTop = 5.4;
constexpr double kLinesLeft = 0.75;
constexpr double kLinesEnd = 10.2;  // no line begins below
constexpr std::size_t kLineCharacters = 70;

// At the last blank that fits; a word that is too long is cut between characters of UTF-8.
std::size_t EndOfLine(std::string_view text) {
    if (text.size() <= kLineCharacters) return text.size();
    const std::size_t blank = text.rfind(' ', kLineCharacters);
    if (blank != std::string_view::npos && blank > 0) return blank;
    std::size_t end = kLineCharacters;
    while (end > 1 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
    return end;
}

std::vector<std::string> Wrapped(const std::vector<std::string>& lines) {
    std::vector<std::string> wrapped;
    for (std::string_view rest : lines) {
        while (!rest.empty()) {
            const std::size_t end = EndOfLine(rest);
            wrapped.emplace_back(rest.substr(0, end));
            rest.remove_prefix(end);
            if (rest.starts_with(' ')) rest.remove_prefix(1);
        }
    }
    return wrapped;
}

}  // namespace

void PrintRun(std::string_view png, const std::vector<std::string>& lines, Printer& printer) {
    const PageSetUp page;
    printer.BeginPage(page);
    printer.Picture(kPictureLeft, kPictureTop, kPictureWidth, png);
    double y = kLinesTop;
    for (const std::string& line : Wrapped(lines)) {
        if (y > kLinesEnd) return printer.Text(kLinesLeft, y, "...");
        printer.Text(kLinesLeft, y, line);
        y += page.lineHeight;
    }
}

}  // namespace sonavex
