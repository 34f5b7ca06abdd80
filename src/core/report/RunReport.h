#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/ports/Printer.h"

namespace sonavex {

// Draws one page about a run: the picture of its plot, a PNG that is 1000 wide for each 620 of height or
// less, and the lines below it. Long lines are wrapped; what does not fit on the page is left out and says
// so.
void PrintRun(std::string_view png, const std::vector<std::string>& lines, Printer& printer);

}  // namespace sonavex
