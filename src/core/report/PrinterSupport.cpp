#include "core/report/PrinterSupport.h"

namespace sonavex {

PrinterSupport::PrinterSupport(Printer& printer) : printer_(printer), remembered_(printer.DefaultPrinter()) {}

void PrinterSupport::RestoreDefault() {
    if (remembered_.empty() || printer_.DefaultPrinter() == remembered_) return;
    printer_.SetDefaultPrinter(remembered_);
}

}  // namespace sonavex
