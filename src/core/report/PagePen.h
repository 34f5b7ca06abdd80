#pragma once

#include <string_view>

#include "core/ports/Printer.h"

namespace sonavex {

// Writes fixed-pitch text on a page from a moving pen position. Lengths are in inches. Tab stops are at 0.85
// + 0.82 n, n = 0 to 8: nine columns between the margins of a page 8.5 inches wide.
class PagePen {
public:
    static constexpr double kFirstTab = 0.85;
    static constexpr double kTabDistance = 0.82;
    static constexpr int kTabs = 9;

    // Begins the page. The printer must outlive the pen.
    PagePen(Printer& printer, const PageSetUp& page);

    double CurrentX = 0.0;
    double CurrentY = 0.0;

    // Prints the text and moves the pen behind it.
    PagePen& Print(std::string_view text);
    // Moves the pen to the next tab stop; does nothing behind the last one.
    PagePen& Tab();
    // Moves the pen to the left edge, `lines` lines down.
    PagePen& NewLine(int lines = 1);
    // Moves the pen to a position on the line.
    PagePen& At(double x);

private:
    Printer& printer_;
    double characterWidth_;
    double lineHeight_;
};

}  // namespace sonavex
