#pragma once

#include <string>

namespace sonavex {

// What the dialog about a failed sound device shows.
struct ErrorState {
    std::string Message;      // line breaks are carriage returns
    bool FatalError = false;  // the program cannot go on
};

}  // namespace sonavex
