#pragma once

#include <QByteArray>
#include <QString>

#include "core/ports/Printer.h"

namespace sonavex {

// The system's printers (CUPS), by its own programs lpstat, lp and lpoptions. Each call waits in an event
// loop of its own, where signals and timers go on and the user's input waits: three seconds at most, and
// fifteen for a document. An application object must exist; its thread only.
class PrintSystem {
public:
    // With trouble when there is no print system, when it does not run or when it does not answer.
    static InstalledPrinters Printers();

    // Both raise kPrinterError with what the print system says against it.
    static void SetDefaultPrinter(const QString& name);
    // Sends a document as one copy.
    static void Send(const QString& printer, const QString& title, const QByteArray& document);
};

}  // namespace sonavex
