#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/controls/Commands.h"
#include "core/dsp/display/MeasurementControls.h"
#include "core/ports/Desktop.h"
#include "core/ports/Dialogs.h"
#include "core/ports/Printer.h"
#include "core/report/frmPrint.h"
#include "core/text/Dates.h"

namespace sonavex {

// The print button. Asks for destination and copies, prints the report of the measurement on screen and
// restores the user's default printer. Printing stops at the first copy that fails. The pointer is busy while
// the print system is working.
class PrintCommand {
public:
    // All referenced objects must outlive the command.
    struct Needs {
        Printer& printer;
        Dialogs& dialogs;
        Desktop& desktop;
        std::function<CalendarDate()> today;
    };

    // Handles the button from now on; the menu entry presses it. Both must outlive the command.
    PrintCommand(const Needs& needs, const MeasurementControls& measurement, CommandButton& cmdPrint,
                 MenuItem& mnuPrint);
    ~PrintCommand();
    PrintCommand(const PrintCommand&) = delete;
    PrintCommand& operator=(const PrintCommand&) = delete;

    // Shows the loaded dialog and returns when it has closed. If empty, nothing is printed.
    std::function<void(frmPrint&)> ShowPrintDialog;

    // The lines of a second block on the page, of at most 70 characters; may be empty.
    std::function<std::vector<std::string>()> SecondBlock;

    void cmdPrint_Click();
    // Asks like the print button. `draw` draws a page on the selected printer, once for each copy.
    void Print(const std::function<void(Printer& printer)>& draw);

private:
    InstalledPrinters AskForPrinters();
    void Try(const char* failure, const std::function<void()>& action);
    void PrintCopies(const PrintDestination& destination, std::int32_t copies,
                     const std::function<void(Printer& printer)>& draw);

    Needs needs_;
    const MeasurementControls& measurement_;
    CommandButton& cmdPrint_;
    MenuItem& mnuPrint_;
};

}  // namespace sonavex
