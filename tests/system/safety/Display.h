#pragma once

#include <cstdint>
#include <string>

#include "support/ChildProcess.h"

namespace sonavex {

// A private X server without a window manager.
class Display {
public:
    // Throws std::runtime_error if the server does not start.
    Display();

    // For the variable DISPLAY.
    const std::string& Name() const noexcept { return name_; }
    // Asks the program of this window to close it, as a window manager does. Throws std::runtime_error if
    // that fails.
    void AskToClose(std::uint32_t window) const;

private:
    PrivateFolder folder_;
    ChildProcess server_;
    std::string name_;
};

}  // namespace sonavex
