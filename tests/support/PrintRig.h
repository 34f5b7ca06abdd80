#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <type_traits>

#include "core/report/PrintCommand.h"
#include "support/World.h"

namespace sonavex {

// The print command on November 21, 2026, with the dialog driven by the test.
template <class PrinterType>
class PrintRig : public testing::Test, protected World {
protected:
    PrintRig() {
        command.ShowPrintDialog = [this](frmPrint& dialog) {
            DialogOpens(dialog);
            if (user) user(dialog);
        };
    }
    // Called before the user acts.
    virtual void DialogOpens(frmPrint&) {}

    PrinterType printer = Make(log, ending);
    MeasurementControls measurement;
    // User's actions in the dialog.
    std::function<void(frmPrint&)> user;
    CommandButton cmdPrint;
    MenuItem mnuPrint;
    PrintCommand command{{printer, dialogs, desktop,
                          [] {
                              return CalendarDate{2026, 11, 21};
                          }},
                         measurement,
                         cmdPrint,
                         mnuPrint};

private:
    static PrinterType Make(CallLog& log, Ending& ending) {
        if constexpr (std::is_constructible_v<PrinterType, CallLog&>)
            return PrinterType(log);
        else
            return PrinterType(ending);
    }
};

}  // namespace sonavex
