#include "core/report/PrintCommand.h"

#include <string>

#include "core/ports/BusyPointer.h"
#include "core/report/PrinterSupport.h"
#include "core/report/Report.h"
#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

constexpr const char* kNotPrinted = "The report could not be printed.";
constexpr const char* kNotRestored = "The default printer could not be set back.";
// Up to this major version of the operating system the printer makes the copies itself.
constexpr std::int32_t kLastGenerationOfOneCopy = 4;

}  // namespace

PrintCommand::PrintCommand(const Needs& needs, const MeasurementControls& measurement,
                           CommandButton& cmdPrint, MenuItem& mnuPrint)
    : needs_(needs), measurement_(measurement), cmdPrint_(cmdPrint), mnuPrint_(mnuPrint) {
    cmdPrint_.Click.Handle([this] { cmdPrint_Click(); });
    mnuPrint_.Click.Handle([this] { cmdPrint_.Press(); });
}

PrintCommand::~PrintCommand() {
    cmdPrint_.Click.Handle({});
    mnuPrint_.Click.Handle({});
}

void PrintCommand::cmdPrint_Click() {
    Print([this](Printer& printer) {
        PrintInformation(measurement_, needs_.today(), printer,
                         SecondBlock ? SecondBlock() : std::vector<std::string>());
    });
}

void PrintCommand::Print(const std::function<void(Printer& printer)>& draw) {
    const bool severalCopies = needs_.desktop.OsMajorVersion() > kLastGenerationOfOneCopy;
    const InstalledPrinters present = AskForPrinters();
    PrinterSupport support(needs_.printer, present);
    frmPrint dialog(needs_.printer, needs_.dialogs);
    dialog.Form_Load(present);
    if (ShowPrintDialog) ShowPrintDialog(dialog);
    if (const auto choice = dialog.Choice(); choice)
        Try(kNotPrinted, [&] { PrintCopies(choice->destination, severalCopies ? choice->copies : 1, draw); });
    Try(kNotRestored, [&] { support.RestoreDefault(); });
}

InstalledPrinters PrintCommand::AskForPrinters() {
    const BusyPointer busy(needs_.dialogs);
    return needs_.printer.Printers();
}

// Restores the pointer before the message.
void PrintCommand::Try(const char* failure, const std::function<void()>& action) {
    try {
        const BusyPointer busy(needs_.dialogs);
        action();
    } catch (const RuntimeError& error) {
        needs_.dialogs.Message(std::string(failure) + "\r\r" + error.what(), MessageIcon::kCritical);
    }
}

void PrintCommand::PrintCopies(const PrintDestination& destination, std::int32_t copies,
                               const std::function<void(Printer& printer)>& draw) {
    for (std::int32_t number = 1; number <= copies; ++number) {
        needs_.printer.Select(frmPrint::DestinationOfCopy(destination, number));
        draw(needs_.printer);
        needs_.printer.EndDoc();
    }
}

}  // namespace sonavex
