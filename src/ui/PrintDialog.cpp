#include "ui/PrintDialog.h"

#include <QFileDialog>
#include <QFileInfo>

#include "ui/widgets/Theme.h"
#include "ui_frmPrint.h"

namespace sonavex::ui {
namespace {

constexpr int kCharactersOfAName = 44;

}  // namespace

PrintDialog::PrintDialog(frmPrint& form, HandlerGuard& guard)
    : FormDialog(form.Frame, guard, [&form] { form.cmdCancel_Click(); }),
      form_(form),
      ui_(std::make_unique<Ui::frmPrint>()) {
    ui_->setupUi(this);
    ApplyTheme(*this);
    ui_->txtFile->setMinimumWidth(fontMetrics().averageCharWidth() * kCharactersOfAName);
    form_.lblNote.SetVisible(!form_.lblNote.Caption().empty());
    binder_.Bind(*ui_->cmbPrinter, form_.cmbPrinter);
    binder_.Bind(*ui_->txtFile, form_.txtFile);
    binder_.Bind(*ui_->txtCopies, form_.txtCopies);
    binder_.Bind(*ui_->cmdBrowse, form_.cmdBrowse);
    binder_.Bind(*ui_->cmdOk, form_.cmdOk);
    binder_.Bind(*ui_->cmdCancel, form_.cmdCancel);
    binder_.Bind(*ui_->lblNote, form_.lblNote);
    form_.OnClosed = [this] { Close(); };
    form_.ChooseFile = [this](const std::string& first) { return AskForFile(first); };
    ui_->txtCopies->selectAll();
    ui_->txtCopies->setFocus();
}

PrintDialog::~PrintDialog() {
    form_.OnClosed = {};
    form_.ChooseFile = {};
}

// No overwrite question here, because the form asks it. The desktop's own file dialog runs loops that a
// request to end the program cannot end.
std::string PrintDialog::AskForFile(const std::string& first) {
    const QFileInfo suggested(QString::fromStdString(first));
    QFileDialog dialog(this, tr("PDF file"), suggested.path(), tr("PDF files (*.pdf)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.selectFile(suggested.fileName());
    Wait(dialog);
    return dialog.result() == QDialog::Accepted ? dialog.selectedFiles().value(0).toStdString()
                                                : std::string();
}

}  // namespace sonavex::ui
