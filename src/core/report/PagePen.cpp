#include "core/report/PagePen.h"

#include <algorithm>

namespace sonavex {
namespace {

// Tolerance for comparing positions in inches: far below a printer's dot.
constexpr double kSameInches = 1e-6;

std::size_t Characters(std::string_view utf8) {
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

}  // namespace

PagePen::PagePen(Printer& printer, const PageSetUp& page)
    : printer_(printer), characterWidth_(page.characterWidth), lineHeight_(page.lineHeight) {
    printer_.BeginPage(page);
}

PagePen& PagePen::Print(std::string_view text) {
    if (text.empty()) return *this;
    printer_.Text(CurrentX, CurrentY, text);
    CurrentX += static_cast<double>(Characters(text)) * characterWidth_;
    return *this;
}

PagePen& PagePen::Tab() {
    for (int n = 0; n < kTabs; ++n) {
        const double stop = kFirstTab + kTabDistance * n;
        if (stop <= CurrentX + kSameInches) continue;
        CurrentX = stop;
        break;
    }
    return *this;
}

PagePen& PagePen::NewLine(int lines) {
    CurrentX = 0.0;
    CurrentY += lineHeight_ * lines;
    return *this;
}

PagePen& PagePen::At(double x) {
    CurrentX = x;
    return *this;
}

}  // namespace sonavex
