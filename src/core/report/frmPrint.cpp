#include "core/report/frmPrint.h"

#include <algorithm>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kNoPrinter = "No printer is installed.";
constexpr const char* kFileInstead = " The report can be written to a PDF file.";
constexpr const char* kInvalidCopies = "Invalid number of copies. Please enter 1 to 99.";
constexpr const char* kNoFile = "Please enter the name of the PDF file.";
constexpr std::string_view kSuffix = ".pdf";

// Explains why the PDF file is the only choice.
std::string NoteOf(const InstalledPrinters& present) {
    if (!present.names.empty()) return {};
    return (present.trouble.empty() ? std::string(kNoPrinter) : present.trouble) + kFileInstead;
}

bool EndsWithSuffix(std::string_view file) {
    if (file.size() < kSuffix.size()) return false;
    const std::string_view end = file.substr(file.size() - kSuffix.size());
    return end == kSuffix || end == ".PDF";
}

}  // namespace

frmPrint::frmPrint(Printer& printer, Dialogs& dialogs) : printer_(printer), dialogs_(dialogs) {
    cmbPrinter.Click.Handle([this] { cmbPrinter_Click(); });
    cmdBrowse.Click.Handle([this] { cmdBrowse_Click(); });
    cmdOk.Click.Handle([this] { cmdOk_Click(); });
    cmdCancel.Click.Handle([this] { cmdCancel_Click(); });
}

void frmPrint::Form_Load(const InstalledPrinters& present) {
    choice_.reset();
    Frame.SetCaption("Print");
    std::vector<std::string> items = present.names;
    const auto found = std::find(items.begin(), items.end(), present.preferred);
    const auto selected = found == items.end() ? 0 : found - items.begin();
    lblNote.SetCaption(NoteOf(present));
    items.emplace_back(kPdfFile);
    cmbPrinter.SetItems(std::move(items));
    cmbPrinter.SetListIndex(static_cast<std::int32_t>(selected));
    txtCopies.SetText("1");
    txtFile.SetText(printer_.SuggestedFile());
    cmbPrinter_Click();
}

void frmPrint::cmbPrinter_Click() {
    txtFile.SetEnabled(ToFile());
    cmdBrowse.SetEnabled(ToFile());
}

void frmPrint::cmdBrowse_Click() {
    if (!ChooseFile) return;
    const std::string file = ChooseFile(txtFile.Text());
    if (!file.empty()) txtFile.SetText(file);
}

std::optional<std::int32_t> frmPrint::Copies() const {
    if (!IsNumeric(txtCopies.Text())) return std::nullopt;
    const double copies = CDbl(txtCopies.Text());
    if (copies != RoundHalfEven(copies) || copies < 1.0 || copies > kMaxCopies) return std::nullopt;
    return CLng(copies);
}

void frmPrint::cmdOk_Click() {
    const auto copies = Copies();
    if (!copies) {
        dialogs_.Message(kInvalidCopies, MessageIcon::kInformation);
        txtCopies.SetFocus();
        return;
    }
    PrintChoice choice{{}, *copies};
    if (ToFile()) {
        choice.destination.file = Trim(txtFile.Text());
        if (choice.destination.file.empty()) {
            dialogs_.Message(kNoFile, MessageIcon::kInformation);
            txtFile.SetFocus();
            return;
        }
        if (!EndsWithSuffix(choice.destination.file)) choice.destination.file += kSuffix;
        if (!MayWrite(choice)) return;
    } else {
        choice.destination.printer = cmbPrinter.Text();
    }
    choice_ = choice;
    Unload();
}

// Asks once before existing files are replaced.
bool frmPrint::MayWrite(const PrintChoice& choice) {
    for (std::int32_t number = 1; number <= choice.copies; ++number) {
        const std::string file = DestinationOfCopy(choice.destination, number).file;
        if (!printer_.FileExists(file)) continue;
        return dialogs_.AskOkCancel("'" + file + "' exists already.\r\rReplace it?");
    }
    return true;
}

void frmPrint::cmdCancel_Click() {
    choice_.reset();
    Unload();
}

void frmPrint::Unload() {
    if (OnClosed) OnClosed();
}

PrintDestination frmPrint::DestinationOfCopy(const PrintDestination& chosen, std::int32_t number) {
    PrintDestination destination = chosen;
    if (destination.file.empty() || number == 1) return destination;
    const std::size_t stem =
        destination.file.size() - (EndsWithSuffix(destination.file) ? kSuffix.size() : 0);
    destination.file.insert(stem, "-" + CStr(number));
    return destination;
}

}  // namespace sonavex
