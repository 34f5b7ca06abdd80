#pragma once

#include <string>

#include "core/ports/Printer.h"

namespace sonavex {

// Keeps the user's default printer over a print command. User-interface thread only.
class PrinterSupport {
public:
    // Remembers the default printer of those present. The printer must outlive this object.
    PrinterSupport(Printer& printer, const InstalledPrinters& present);

    const std::string& Remembered() const noexcept { return remembered_; }

    // Makes the remembered printer the default again where it no longer is. Nothing is stored when there
    // was none, when nothing changed, or when the printer is gone or cannot be asked for.
    void RestoreDefault();

private:
    Printer& printer_;
    std::string remembered_;
};

}  // namespace sonavex
