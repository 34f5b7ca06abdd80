#pragma once

#include <QByteArray>
#include <QString>

#include "core/ports/Printer.h"

namespace sonavex {

// The system's printers (CUPS), through its programs lpstat, lp and lpoptions. Each call waits in a nested
// event loop that delivers signals and timers but no user input, for at most three seconds, or fifteen for a
// document. An application object must exist. For the thread of that object.
class PrintSystem {
public:
    // The result describes the failure when the print system is missing, does not run or does not answer.
    static InstalledPrinters Printers();

    // SetDefaultPrinter and Send throw kPrinterError with the message of the print system.
    static void SetDefaultPrinter(const QString& name);
    // Sends a document as one copy.
    static void Send(const QString& printer, const QString& title, const QByteArray& document);
};

}  // namespace sonavex
