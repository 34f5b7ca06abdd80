#pragma once

#include <string>

namespace sonavex {

// Content of the dialog about a failed sound device.
struct ErrorState {
    std::string Message;      // line breaks are carriage returns
    bool FatalError = false;  // the program cannot continue
};

}  // namespace sonavex
