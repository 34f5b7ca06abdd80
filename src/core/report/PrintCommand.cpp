#include "core/report/PrintCommand.h"

#include <string>

#include "core/report/PrinterSupport.h"
#include "core/report/Report.h"
#include "core/text/RuntimeError.h"

namespace sonavex {
namespace {

constexpr const char* kNotPrinted = "The report could not be printed.";
// Up to this generation of the system the printer made the copies itself.
constexpr std::int32_t kLastGenerationOfOneCopy = 4;

}  // namespace

PrintCommand::PrintCommand(const World& world, const MeasurementControls& measurement,
                           CommandButton& cmdPrint, MenuItem& mnuPrint)
    : world_(world), measurement_(measurement), cmdPrint_(cmdPrint), mnuPrint_(mnuPrint) {
    cmdPrint_.Click.Handle([this] { cmdPrint_Click(); });
    mnuPrint_.Click.Handle([this] { cmdPrint_.Press(); });
}

PrintCommand::~PrintCommand() {
    cmdPrint_.Click.Handle({});
    mnuPrint_.Click.Handle({});
}

void PrintCommand::cmdPrint_Click() {
    const std::int32_t generation = world_.desktop.OsMajorVersion();
    PrinterSupport support(world_.printer);
    frmPrint dialog(world_.printer, world_.dialogs);
    dialog.Form_Load();
    if (ShowPrintDialog) ShowPrintDialog(dialog);
    if (!dialog.Choice()) return;
    const PrintChoice choice = *dialog.Choice();
    try {
        PrintCopies(choice.destination, generation > kLastGenerationOfOneCopy ? choice.copies : 1);
    } catch (const RuntimeError& error) {
        world_.dialogs.Message(std::string(kNotPrinted) + "\r\r" + error.what(), MessageIcon::kCritical);
    }
    support.RestoreDefault();
}

void PrintCommand::PrintCopies(const PrintDestination& destination, std::int32_t copies) {
    for (std::int32_t number = 1; number <= copies; ++number) {
        world_.printer.Select(frmPrint::DestinationOfCopy(destination, number));
        PrintInformation(measurement_, world_.today(), world_.printer);
        world_.printer.EndDoc();
    }
}

}  // namespace sonavex
