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

// What the user wants printed where.
struct PrintChoice {
    PrintDestination destination;
    std::int32_t copies = 1;
};

// The print dialog: which printer, or a PDF file, and how many copies. User-interface thread only.
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
    Label lblNote;  // why there is nothing but the PDF file to choose

    // Before the dialog is shown, with the printers to choose from: the default printer is selected, else the
    // first one, else the PDF file; one copy.
    void Form_Load(const InstalledPrinters& present);
    void cmbPrinter_Click();
    void cmdBrowse_Click();
    void cmdOk_Click();
    void cmdCancel_Click();

    // Lets the user choose a file, beginning with the one given; empty when the user thought better.
    std::function<std::string(const std::string&)> ChooseFile;
    // The dialog is to close.
    std::function<void()> OnUnload;

    // After the dialog: empty when the user cancelled.
    const std::optional<PrintChoice>& Choice() const noexcept { return choice_; }

    // Where copy `number` (from 1) of a choice goes. Every copy is a document of its own, so in a file of
    // its own: "report.pdf", "report-2.pdf", ...
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
