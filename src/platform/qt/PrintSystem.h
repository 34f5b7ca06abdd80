#pragma once

#include <QByteArray>
#include <QString>

#include "core/ports/Printer.h"
#include "core/support/Ending.h"

namespace sonavex {

// The system's printers (CUPS), through its programs lpstat, lp and lpoptions. Each call waits in a nested
// event loop for at most three seconds, or fifteen for a document. The loop delivers signals, timers and the
// window manager's requests to close a window; keys, mouse and touch are discarded, except in a dialog that
// opens meanwhile. Such a dialog extends the call, but not the time of the program being waited for. A
// request to end the program kills the program being waited for; the call then throws EndProgram. An
// application object must exist. For the thread of that object.
class PrintSystem {
public:
    // The request must outlive this object.
    explicit PrintSystem(Ending& ending) noexcept : ending_(ending) {}

    // The result describes the failure when the print system is missing, does not run or does not answer.
    InstalledPrinters Printers();

    // SetDefaultPrinter and Send throw kPrinterError with the message of the print system.
    void SetDefaultPrinter(const QString& name);
    // Sends a document as one copy.
    void Send(const QString& printer, const QString& title, const QByteArray& document);

private:
    struct Answer;

    Answer Run(const QString& program, const QStringList& arguments, int limitMs,
               const QByteArray& input = {});

    Ending& ending_;
};

}  // namespace sonavex
