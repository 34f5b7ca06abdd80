#include <gmock/gmock.h>

#include <chrono>

#include "adapters/print/PdfText.h"
#include "platform/qt/QtPrinter.h"
#include "support/PrintRig.h"
#include "support/PrintServer.h"
#include "support/ScopedVariable.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// The print command with a real print system.
class PrintServerTest : public PrintRig<QtPrinter> {
protected:
    PrintServerTest() {
        server.Control({"lpoptions", "-d", "Workshop"});
        measurement.txtFreq.SetText("1000");
    }
    void DialogOpens(frmPrint& dialog) override {
        offered = dialog.cmbPrinter.Items();
        preferred = dialog.cmbPrinter.Text();
    }

    PrintServer server{{"Office", "Workshop"}};
    std::vector<std::string> offered;
    std::string preferred;
};

TEST_F(PrintServerTest, PrintsTwoCopiesAsTwoJobs) {
    user = [](frmPrint& dialog) {
        dialog.txtCopies.UserTypes("2");
        dialog.cmdOk.Press();
    };
    cmdPrint.Press();
    const auto jobs = server.Jobs("Workshop", 2);
    ASSERT_THAT(jobs, SizeIs(2));
    for (const auto& job : jobs) EXPECT_THAT(TextOfPdf(job), HasSubstr("Frequency : 1000 Hz"));
    EXPECT_THAT(log.Of("Message"), IsEmpty());
}

TEST_F(PrintServerTest, OffersThePrintersAndPrintsOnTheOneChosen) {
    user = [](frmPrint& dialog) {
        dialog.cmbPrinter.UserSelects(0);
        dialog.cmdOk.Press();
    };
    cmdPrint.Press();
    EXPECT_THAT(offered, ElementsAre("Office", "Workshop", "PDF file"));
    EXPECT_EQ(preferred, "Workshop");
    EXPECT_THAT(server.Jobs("Office", 1), SizeIs(1));
    EXPECT_THAT(server.Jobs("Workshop", 0), IsEmpty());
}

TEST_F(PrintServerTest, PrintsNothingAfterACancelledDialog) {
    user = [](frmPrint& dialog) { dialog.cmdCancel.Press(); };
    cmdPrint.Press();
    EXPECT_THAT(server.Jobs("Office", 0), IsEmpty());
    EXPECT_THAT(server.Jobs("Workshop", 0), IsEmpty());
    EXPECT_THAT(server.Control({"lpstat", "-W", "all", "-o"}), IsEmpty());
}

TEST_F(PrintServerTest, GivesTheDefaultPrinterBack) {
    user = [this](frmPrint& dialog) {
        server.Control({"lpoptions", "-d", "Office"});
        dialog.cmdOk.Press();
    };
    cmdPrint.Press();
    EXPECT_EQ(printer.Printers().preferred, "Workshop");
}

TEST_F(PrintServerTest, PassesOnThatThePrinterTakesNoJobs) {
    server.Control({"cupsreject", "Workshop"});
    user = [](frmPrint& dialog) { dialog.cmdOk.Press(); };
    cmdPrint.Press();
    ASSERT_THAT(log.Of("Message"), SizeIs(1));
    EXPECT_THAT(log.Of("Message")[0], HasSubstr("The report could not be printed.\r\r"));
    EXPECT_THAT(log.Of("Message")[0], HasSubstr("not accepting jobs"));
    EXPECT_THAT(server.Jobs("Workshop", 0), IsEmpty());
}

TEST_F(PrintServerTest, PassesOnThatThePrinterIsGone) {
    user = [this](frmPrint& dialog) {
        server.Control({"lpadmin", "-x", "Workshop"});
        dialog.cmdOk.Press();
    };
    cmdPrint.Press();
    ASSERT_THAT(log.Of("Message"), SizeIs(1));
    EXPECT_THAT(log.Of("Message")[0], HasSubstr("does not exist"));
}

TEST_F(PrintServerTest, OffersTheFileSoonWhileThePrintSystemDoesNotAnswer) {
    server.Pause();
    const auto begin = std::chrono::steady_clock::now();
    std::string note;
    user = [&](frmPrint& dialog) { note = dialog.lblNote.Caption(); };
    cmdPrint.Press();
    const auto took = std::chrono::steady_clock::now() - begin;
    server.Continue();
    EXPECT_LT(took, 4500ms);
    EXPECT_EQ(note, "The print system does not answer. The report can be written to a PDF file.");
    EXPECT_THAT(offered, ElementsAre("PDF file"));
    EXPECT_THAT(printer.Printers().names, ElementsAre("Office", "Workshop"));
    EXPECT_EQ(printer.Printers().trouble, "");
}

TEST(NoPrinterTest, SaysSoAndOffersTheFile) {
    const PrintServer server({});
    CallLog log;
    RecordingDialogs dialogs(log);
    Ending ending;
    QtPrinter printer(ending);
    frmPrint dialog(printer, dialogs);
    dialog.Form_Load(printer.Printers());
    EXPECT_THAT(dialog.cmbPrinter.Items(), ElementsAre("PDF file"));
    EXPECT_EQ(dialog.lblNote.Caption(), "No printer is installed. The report can be written to a PDF file.");
    EXPECT_EQ(printer.Printers().preferred, "");
}

TEST(NoPrintServerTest, DiffersFromNoPrinter) {
    const PrivateFolder folder;
    const ScopedVariable nobody("CUPS_SERVER", folder.Path() / "sock");
    Ending ending;
    const InstalledPrinters present = QtPrinter(ending).Printers();
    EXPECT_THAT(present.names, IsEmpty());
    EXPECT_EQ(present.trouble, "The print system is not running.");
}

TEST(NoPrintSystemTest, DiffersFromNoPrinter) {
    const PrivateFolder folder;
    const ScopedVariable path("PATH", folder.Path());
    Ending ending;
    QtPrinter printer(ending);
    const InstalledPrinters present = printer.Printers();
    std::string error;
    try {
        printer.Select({"Office", ""});
        printer.BeginPage({});
        printer.EndDoc();
    } catch (const RuntimeError& raised) {
        error = raised.what();
    }
    EXPECT_THAT(present.names, IsEmpty());
    EXPECT_EQ(present.preferred, "");
    EXPECT_EQ(present.trouble, "The print system is not installed.");
    EXPECT_EQ(error, "The print system is not installed.");
}

}  // namespace
}  // namespace sonavex
