#pragma once

#include <string_view>

#include "core/ports/Printer.h"

namespace sonavex {

// Writes lines of fixed-pitch text on a page, from a pen position that moves along. Lengths in inches.
// Tab stops stand at 0.85 + 0.82 n, n = 0 to 8: nine columns between the margins of a page 8.5 wide.
class PagePen {
public:
    static constexpr double kFirstTab = 0.85;
    static constexpr double kTabDistance = 0.82;
    static constexpr int kTabs = 9;

    // Begins the page. The printer must outlive the pen.
    PagePen(Printer& printer, const PageSetUp& page);

    double CurrentX = 0.0;
    double CurrentY = 0.0;

    // Puts the text at the pen, which then stands behind it.
    PagePen& Print(std::string_view text);
    // To the next stop right of the pen; behind the last one the pen stays.
    PagePen& Tab();
    // To the left edge of the page, so many lines down.
    PagePen& NewLine(int lines = 1);
    // To this place of the line.
    PagePen& At(double x);

private:
    Printer& printer_;
    double characterWidth_;
    double lineHeight_;
};

}  // namespace sonavex
