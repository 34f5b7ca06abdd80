#pragma once

#include <functional>

#include "core/controls/Commands.h"
#include "core/dsp/MeasurementControls.h"
#include "core/ports/Desktop.h"
#include "core/ports/Dialogs.h"
#include "core/ports/Printer.h"
#include "core/report/frmPrint.h"
#include "core/text/Dates.h"

namespace sonavex {

// The print button: asks where to and how often, prints the report of the measurement on screen, leaves
// the user's default printer as it was. The first copy that fails is the last one. The pointer is busy while
// the print system is waited for. User-interface thread only.
class PrintCommand {
public:
    // Everything must outlive the command.
    struct World {
        Printer& printer;
        Dialogs& dialogs;
        Desktop& desktop;
        std::function<CalendarDate()> today;
    };

    // Handles the button, which the menu entry presses, from now on. Both must outlive the command.
    PrintCommand(const World& world, const MeasurementControls& measurement, CommandButton& cmdPrint,
                 MenuItem& mnuPrint);
    ~PrintCommand();
    PrintCommand(const PrintCommand&) = delete;
    PrintCommand& operator=(const PrintCommand&) = delete;

    // Shows the dialog, loaded, and returns when it has closed. Without it nothing can be chosen and
    // nothing is printed.
    std::function<void(frmPrint&)> ShowPrintDialog;

    void cmdPrint_Click();

private:
    InstalledPrinters AskForPrinters();
    void Try(const char* failure, const std::function<void()>& action);
    void PrintCopies(const PrintDestination& destination, std::int32_t copies);

    World world_;
    const MeasurementControls& measurement_;
    CommandButton& cmdPrint_;
    MenuItem& mnuPrint_;
};

}  // namespace sonavex
