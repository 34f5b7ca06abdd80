#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace sonavex {

// The system's printers (CUPS), by its own programs lpstat, lp and lpoptions. None of the calls waits
// longer than some seconds. Any thread that may start processes.
class PrintSystem {
public:
    // Empty when there is no print system or it does not answer.
    static QStringList Printers();
    // Empty for none.
    static QString DefaultPrinter();

    // Both raise kPrinterError with what the print system says against it.
    static void SetDefaultPrinter(const QString& name);
    // Sends a document as one copy.
    static void Send(const QString& printer, const QString& title, const QByteArray& document);
};

}  // namespace sonavex
