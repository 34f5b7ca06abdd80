#include "core/report/PrinterSupport.h"

#include <algorithm>

namespace sonavex {

PrinterSupport::PrinterSupport(Printer& printer, const InstalledPrinters& present)
    : printer_(printer), remembered_(present.preferred) {}

void PrinterSupport::RestoreDefault() {
    if (remembered_.empty()) return;
    const InstalledPrinters now = printer_.Printers();
    if (now.preferred == remembered_) return;
    if (std::find(now.names.begin(), now.names.end(), remembered_) == now.names.end()) return;
    printer_.SetDefaultPrinter(remembered_);
}

}  // namespace sonavex
