#include <gmock/gmock.h>

#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>

#include "core/report/PrintCommand.h"
#include "support/ChildProcess.h"
#include "support/DialogUser.h"
#include "support/FormRig.h"
#include "support/RecordingPrinter.h"
#include "ui/PrintDialog.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The print command with its real dialog.
class PrintDialogWindow : public testing::Test {
protected:
    PrintDialogWindow() {
        command.ShowPrintDialog = [this](frmPrint& form) { ui::PrintDialog(form, rig.form.Guard).Run(); };
    }
    // Presses the button; the step must close the dialog.
    void With(std::function<void(QDialog&)> step) {
        const DialogSteps driver({std::move(step)});
        rig.form.cmdPrint.Press();
    }

    FormRig rig;
    CallLog& log = rig.log;
    RecordingPrinter printer{log};
    PrintCommand command{{printer, rig.dialogs, rig.desktop,
                          [] {
                              return CalendarDate{2026, 11, 21};
                          }},
                         rig.form.Instrument.Meter.Controls,
                         rig.form.cmdPrint,
                         rig.form.mnuPrint};
};

TEST_F(PrintDialogWindow, PrintsWhatIsChosen) {
    With([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Print");
        EXPECT_EQ(Find<QComboBox>(dialog, "cmbPrinter").currentText(), "Workshop");
        EXPECT_FALSE(Find<QLineEdit>(dialog, "txtFile").isEnabled());
        EXPECT_FALSE(Find<QLabel>(dialog, "lblNote").isVisible());
        QTest::keyClick(&Find<QComboBox>(dialog, "cmbPrinter"), Qt::Key_Up);
        QTest::keyClicks(&Find<QLineEdit>(dialog, "txtCopies"), "2");
        Click(dialog, "cmdOk");
    });
    EXPECT_THAT(log.Of("Select"), ElementsAre("Select Office|", "Select Office|"));
    EXPECT_EQ(log.Count("EndDoc"), 2U);
}

TEST_F(PrintDialogWindow, WritesAFile) {
    printer.printers.clear();
    printer.defaultPrinter.clear();
    With([](QDialog& dialog) {
        EXPECT_TRUE(Find<QLabel>(dialog, "lblNote").isVisible());
        EXPECT_EQ(Find<QLabel>(dialog, "lblNote").text(),
                  "No printer is installed. The report can be written to a PDF file.");
        EXPECT_TRUE(Find<QLineEdit>(dialog, "txtFile").isEnabled());
        EXPECT_TRUE(Find<QPushButton>(dialog, "cmdBrowse").isEnabled());
        Click(dialog, "cmdOk");
    });
    EXPECT_THAT(log.Of("Select"), ElementsAre("Select |/documents/Sonavex report.pdf"));
}

TEST_F(PrintDialogWindow, TakesTheFileThatIsBrowsed) {
    printer.printers.clear();
    const PrivateFolder folder;
    const QString file = QString::fromStdString((folder.Path() / "loop.pdf").string());
    const DialogSteps driver({[&](QDialog& dialog) {
                                  auto& name = Find<QLineEdit>(dialog, "txtFile");
                                  name.clear();
                                  QTest::keyClicks(&name, file);
                                  Click(dialog, "cmdBrowse");
                                  EXPECT_EQ(name.text(), file);
                                  Click(dialog, "cmdOk");
                              },
                              [&](QDialog& dialog) {
                                  const auto& files = dynamic_cast<QFileDialog&>(dialog);
                                  EXPECT_EQ(files.selectedFiles(), QStringList(file));
                                  EXPECT_TRUE(files.testOption(QFileDialog::DontUseNativeDialog));
                                  dialog.accept();
                              }});
    rig.form.cmdPrint.Press();
    EXPECT_THAT(log.Of("Select"), ElementsAre("Select |" + file.toStdString()));
}

TEST_F(PrintDialogWindow, ARequestToEndClosesTheBrowserToo) {
    printer.printers.clear();
    int ended = 0;
    rig.form.OnClosed = [&](int) { ++ended; };
    const DialogSteps driver(
        {[](QDialog& dialog) { Click(dialog, "cmdBrowse"); }, [this](QDialog&) { rig.form.Unload(); }});
    rig.form.Guard.Run([this] { rig.form.cmdPrint.Press(); });
    EXPECT_EQ(ended, 1);
    EXPECT_THAT(log.Of("Select"), IsEmpty());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(PrintDialogWindow, PrintsNothingHoweverItIsCancelled) {
    With([](QDialog& dialog) { Click(dialog, "cmdCancel"); });
    With([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    With([](QDialog& dialog) { dialog.close(); });
    EXPECT_THAT(log.Of("Select"), IsEmpty());
    EXPECT_THAT(log.Of("EndDoc"), IsEmpty());
}

TEST_F(PrintDialogWindow, PrintsWithReturn) {
    With([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); });
    EXPECT_EQ(log.Count("EndDoc"), 1U);
}

TEST_F(PrintDialogWindow, StaysOpenAfterAnEntryThatCannotBe) {
    With([this](QDialog& dialog) {
        QTest::keyClicks(&Find<QLineEdit>(dialog, "txtCopies"), "0");
        Click(dialog, "cmdOk");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(log.Count("Message"), 1U);
        Click(dialog, "cmdCancel");
    });
    EXPECT_THAT(log.Of("Select"), IsEmpty());
}

}  // namespace
}  // namespace sonavex
