#include "core/report/PrinterSupport.h"

#include <algorithm>
#include <vector>

namespace sonavex {

PrinterSupport::PrinterSupport(Printer& printer) : printer_(printer), remembered_(printer.DefaultPrinter()) {}

void PrinterSupport::RestoreDefault() {
    if (remembered_.empty() || printer_.DefaultPrinter() == remembered_) return;
    const std::vector<std::string> printers = printer_.Printers();
    if (std::find(printers.begin(), printers.end(), remembered_) == printers.end()) return;
    printer_.SetDefaultPrinter(remembered_);
}

}  // namespace sonavex
