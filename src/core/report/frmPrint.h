#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/ports/Dialogs.h"
#include "core/ports/Printer.h"

namespace sonavex {

// Destination and number of copies.
struct PrintChoice {
    PrintDestination destination;
    std::int32_t copies = 1;
};

// The print dialog: printer or PDF file, and number of copies.
class frmPrint {
public:
    static constexpr std::int32_t kMaxCopies = 99;
    static constexpr const char* kPdfFile = "PDF file";

    // Both must outlive the form.
    frmPrint(Printer& printer, Dialogs& dialogs);

    Window Frame{"frmPrint"};
    ComboBox cmbPrinter;  // the printers, then the PDF file
    TextBox txtCopies;
    TextBox txtFile;
    CommandButton cmdBrowse;
    CommandButton cmdOk;
    CommandButton cmdCancel;
    Label lblNote;  // explains why the PDF file is the only choice

    // Call before the dialog is shown, with the available printers. Selects the default printer, else the
    // first printer, else the PDF file, and one copy.
    void Form_Load(const InstalledPrinters& present);
    void cmbPrinter_Click();
    void cmdBrowse_Click();
    void cmdOk_Click();
    void cmdCancel_Click();

    // Lets the user choose a file, starting with the suggested one; returns an empty text if the user
    // cancels.
    std::function<std::string(const std::string&)> ChooseFile;
    // Called when the dialog must close.
    std::function<void()> OnClosed;

    // Result of the dialog; nothing if the user cancelled.
    const std::optional<PrintChoice>& Choice() const noexcept { return choice_; }

    // Destination of copy `number` (from 1). Each copy is a separate document, so copies in files are
    // numbered: "report.pdf", "report-2.pdf", ...
    static PrintDestination DestinationOfCopy(const PrintDestination& chosen, std::int32_t number);

private:
    bool ToFile() const { return cmbPrinter.ListIndex() == cmbPrinter.Count() - 1; }
    std::optional<std::int32_t> Copies() const;
    bool MayWrite(const PrintChoice& choice);
    void Unload();

    Printer& printer_;
    Dialogs& dialogs_;
    std::optional<PrintChoice> choice_;
};

}  // namespace sonavex
