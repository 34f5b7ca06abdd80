#pragma once

#include <string>

#include "core/ports/Printer.h"

namespace sonavex {

// Restores the user's default printer after a print command.
class PrinterSupport {
public:
    // Stores the present default printer. The printer must outlive this object.
    PrinterSupport(Printer& printer, const InstalledPrinters& present);

    // Makes the stored printer the default again if it no longer is. Does nothing if there was none, if it is
    // unchanged, or if it is gone or the print system does not answer.
    void RestoreDefault();

private:
    Printer& printer_;
    std::string remembered_;
};

}  // namespace sonavex
