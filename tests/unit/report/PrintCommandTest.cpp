#include <gmock/gmock.h>

#include "support/PrintRig.h"
#include "support/RecordingPrinter.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PrintCommandTest : public PrintRig<RecordingPrinter> {
protected:
    void DialogOpens(frmPrint&) override { log.Call("ShowPrintDialog"); }
    void Press() { cmdPrint.Press(); }
};

TEST_F(PrintCommandTest, PrintsOnceOnTheDefaultPrinter) {
    user = [](frmPrint& dialog) { dialog.cmdOk.Press(); };
    Press();
    EXPECT_THAT(log.Lines(),
                ElementsAre("OsMajorVersion", "SetBusyPointer on", "Printers", "SetBusyPointer off",
                            "ShowPrintDialog", "SetBusyPointer on", "Select Workshop|",
                            "BeginPage courier new 12 8.5x11", "EndDoc", "SetBusyPointer off",
                            "SetBusyPointer on", "Printers", "SetBusyPointer off"));
    ASSERT_EQ(printer.documents.size(), 1U);
    EXPECT_EQ(printer.documents[0][1], "0.80 0.69 Date : Nov 21, 2026");
}

TEST_F(PrintCommandTest, IsPressedByTheMenuEntry) {
    user = [](frmPrint& dialog) { dialog.cmdOk.Press(); };
    mnuPrint.UserChooses();
    EXPECT_EQ(log.Count("EndDoc"), 1U);
    mnuPrint.SetEnabled(false);
    mnuPrint.UserChooses();
    EXPECT_EQ(log.Count("EndDoc"), 1U);
}

TEST_F(PrintCommandTest, PrintsEachCopyAsADocument) {
    user = [](frmPrint& dialog) {
        dialog.cmbPrinter.UserSelects(0);
        dialog.txtCopies.UserTypes("3");
        dialog.cmdOk.Press();
    };
    Press();
    EXPECT_THAT(log.Of("EndDoc"), testing::SizeIs(3));
    EXPECT_THAT(log.Of("Select"), ElementsAre("Select Office|", "Select Office|", "Select Office|"));
    ASSERT_EQ(printer.documents.size(), 3U);
    EXPECT_EQ(printer.documents[0], printer.documents[2]);
}

TEST_F(PrintCommandTest, PrintsTheSecondBlockOnEachCopy) {
    command.SecondBlock = [] { return std::vector<std::string>{"Analyzer"}; };
    user = [](frmPrint& dialog) {
        dialog.txtCopies.UserTypes("2");
        dialog.cmdOk.Press();
    };
    cmdPrint.Press();
    ASSERT_EQ(printer.documents.size(), 2U);
    for (const auto& document : printer.documents) EXPECT_EQ(document.back(), "0.80 5.20 Analyzer");
}

TEST_F(PrintCommandTest, LeavesTheCopiesToThePrinterOnSystemsUpToTheFourth) {
    desktop.majorVersion = 4;
    user = [](frmPrint& dialog) {
        dialog.txtCopies.UserTypes("3");
        dialog.cmdOk.Press();
    };
    Press();
    EXPECT_EQ(log.Count("EndDoc"), 1U);
    desktop.majorVersion = 5;
    Press();
    EXPECT_EQ(log.Count("EndDoc"), 4U);
}

TEST_F(PrintCommandTest, PrintsNothingWhenTheUserCancels) {
    user = [](frmPrint& dialog) { dialog.cmdCancel.Press(); };
    Press();
    user = nullptr;  // closed with the window's close button
    Press();
    EXPECT_EQ(log.Count("ShowPrintDialog"), 2U);
    for (const char* call : {"Select", "BeginPage", "EndDoc", "Message"})
        EXPECT_THAT(log.Of(call), IsEmpty()) << call;
}

// The print system is asked before the dialog; it may not answer.
TEST_F(PrintCommandTest, AsksForThePrintersOnceBeforeTheDialog) {
    user = [this](frmPrint&) { EXPECT_EQ(log.Count("Printers"), 1U); };
    Press();
    printer.printers.clear();
    printer.defaultPrinter.clear();
    printer.trouble = "The print system does not answer.";
    log.Clear();
    Press();
    EXPECT_EQ(log.Count("Printers"), 1U) << "nothing to restore, nothing to ask for";
}

TEST_F(PrintCommandTest, DoesNotRepeatTheLastChoiceAfterACancelledDialog) {
    user = [](frmPrint& dialog) { dialog.cmdOk.Press(); };
    Press();
    user = nullptr;
    Press();
    EXPECT_EQ(log.Count("EndDoc"), 1U);
}

TEST_F(PrintCommandTest, GivesTheDefaultPrinterBackThatTheDialogChanged) {
    user = [this](frmPrint& dialog) {
        printer.defaultPrinter = "Office";
        dialog.cmdOk.Press();
    };
    Press();
    EXPECT_THAT(log.Of("SetDefaultPrinter"), ElementsAre("SetDefaultPrinter Workshop"));
    EXPECT_THAT(log.Of("EndDoc"), testing::SizeIs(1));
}

TEST_F(PrintCommandTest, GivesTheDefaultPrinterBackAfterACancelledDialog) {
    user = [this](frmPrint& dialog) {
        printer.defaultPrinter = "Office";
        dialog.cmdCancel.Press();
    };
    Press();
    EXPECT_THAT(log.Of("SetDefaultPrinter"), ElementsAre("SetDefaultPrinter Workshop"));
    EXPECT_THAT(log.Of("EndDoc"), IsEmpty());
}

TEST_F(PrintCommandTest, SaysWhyTheDefaultPrinterIsNotTheOldOne) {
    log.Fail("SetDefaultPrinter", RuntimeError(kPrinterError, "Not allowed."));
    user = [this](frmPrint&) { printer.defaultPrinter = "Office"; };
    Press();
    EXPECT_THAT(log.Of("Message"),
                ElementsAre("Message critical The default printer could not be set back.\r\rNot allowed."));
    EXPECT_EQ(log.Lines()[log.Lines().size() - 2], "SetBusyPointer off");
}

TEST_F(PrintCommandTest, SetsNoDefaultPrinterWhereNoneWas) {
    printer.defaultPrinter.clear();
    user = [this](frmPrint& dialog) {
        printer.defaultPrinter = "Office";
        dialog.cmdOk.Press();
    };
    Press();
    EXPECT_THAT(log.Of("SetDefaultPrinter"), IsEmpty());
}

TEST_F(PrintCommandTest, DoesNotBringBackAPrinterThatIsGone) {
    user = [this](frmPrint& dialog) {
        printer.printers = {"Office"};
        printer.defaultPrinter = "Office";
        dialog.cmdOk.Press();
    };
    Press();
    EXPECT_THAT(log.Of("SetDefaultPrinter"), IsEmpty());
}

TEST_F(PrintCommandTest, SaysWhyADocumentWasNotPrintedAndStopsThere) {
    log.Fail("EndDoc", RuntimeError(kPrinterError, "The printer is not accepting jobs."));
    user = [this](frmPrint& dialog) {
        printer.defaultPrinter = "Office";
        dialog.txtCopies.UserTypes("2");
        dialog.cmdOk.Press();
    };
    Press();
    EXPECT_THAT(log.Of("Message"), ElementsAre("Message critical The report could not be printed.\r\r"
                                               "The printer is not accepting jobs."));
    EXPECT_EQ(log.Count("EndDoc"), 1U);
    EXPECT_EQ(printer.defaultPrinter, "Workshop");
}

TEST_F(PrintCommandTest, EndsThePageOfABrokenPrinterAndSaysSoAtTheEndOfTheDocument) {
    printer.failAtItem = 2;
    user = [](frmPrint& dialog) {
        dialog.txtCopies.UserTypes("2");
        dialog.cmdOk.Press();
    };
    Press();
    EXPECT_EQ(printer.items.size(), 2U);
    EXPECT_EQ(log.Count("EndDoc"), 1U);
    EXPECT_THAT(log.Of("Message"),
                ElementsAre("Message critical The report could not be printed.\r\rOut of paper"));
}

TEST_F(PrintCommandTest, WritesEachCopyIntoAFileOfItsOwn) {
    user = [](frmPrint& dialog) {
        dialog.cmbPrinter.UserSelects(2);
        dialog.txtFile.UserTypes("/tmp/amplifier");
        dialog.txtCopies.UserTypes(" 2 ");
        dialog.cmdOk.Press();
    };
    Press();
    EXPECT_THAT(log.Of("Select"), ElementsAre("Select |/tmp/amplifier.pdf", "Select |/tmp/amplifier-2.pdf"));
}

class PrintDialogTest : public PrintCommandTest {
protected:
    PrintDialogTest() {
        dialog.OnClosed = [this] { log.Call("Unload"); };
        dialog.Form_Load(printer.Printers());
        log.Clear();
    }
    frmPrint dialog{printer, dialogs};
};

TEST_F(PrintDialogTest, OffersThePrintersAndTheFileWithTheDefaultOneSelected) {
    EXPECT_THAT(dialog.cmbPrinter.Items(), ElementsAre("Office", "Workshop", "PDF file"));
    EXPECT_EQ(dialog.cmbPrinter.Text(), "Workshop");
    EXPECT_EQ(dialog.txtCopies.Text(), "1");
    EXPECT_EQ(dialog.txtFile.Text(), "/documents/Sonavex report.pdf");
    EXPECT_FALSE(dialog.txtFile.Enabled());
    EXPECT_FALSE(dialog.cmdBrowse.Enabled());
    EXPECT_EQ(dialog.lblNote.Caption(), "");
}

TEST_F(PrintDialogTest, SelectsTheFirstPrinterWithoutADefaultOne) {
    printer.defaultPrinter.clear();
    dialog.Form_Load(printer.Printers());
    EXPECT_EQ(dialog.cmbPrinter.Text(), "Office");
}

TEST_F(PrintDialogTest, SaysSoWhereNoPrinterIsInstalledAndOffersTheFile) {
    printer.printers.clear();
    printer.defaultPrinter.clear();
    dialog.Form_Load(printer.Printers());
    EXPECT_EQ(dialog.lblNote.Caption(), "No printer is installed. The report can be written to a PDF file.");
    EXPECT_EQ(dialog.cmbPrinter.Text(), "PDF file");
    EXPECT_TRUE(dialog.txtFile.Enabled());
    EXPECT_TRUE(dialog.cmdBrowse.Enabled());
}

TEST_F(PrintDialogTest, SaysWhatIsTheMatterWithThePrintSystem) {
    dialog.Form_Load({{}, "", "The print system does not answer."});
    EXPECT_EQ(dialog.lblNote.Caption(),
              "The print system does not answer. The report can be written to a PDF file.");
    EXPECT_THAT(dialog.cmbPrinter.Items(), ElementsAre("PDF file"));
    dialog.Form_Load({{"Office"}, "", "The print system is not running."});
    EXPECT_EQ(dialog.lblNote.Caption(), "");
    EXPECT_EQ(dialog.cmbPrinter.Text(), "Office");
}

TEST_F(PrintDialogTest, AsksForAFileNameOnlyForTheFile) {
    dialog.txtFile.UserTypes("  ");
    dialog.cmbPrinter.UserSelects(2);
    dialog.cmdOk.Press();
    EXPECT_THAT(log.Lines(), ElementsAre("Message information Please enter the name of the PDF file."));
    EXPECT_FALSE(dialog.Choice());
    dialog.cmbPrinter.UserSelects(0);
    dialog.cmdOk.Press();
    EXPECT_TRUE(dialog.Choice());
}

TEST_F(PrintDialogTest, TakesTheFileThatTheUserChose) {
    dialog.cmbPrinter.UserSelects(2);
    dialog.ChooseFile = [](const std::string& first) { return first + "!"; };
    dialog.cmdBrowse.Press();
    EXPECT_EQ(dialog.txtFile.Text(), "/documents/Sonavex report.pdf!");
    dialog.ChooseFile = [](const std::string&) { return std::string(); };
    dialog.cmdBrowse.Press();
    EXPECT_EQ(dialog.txtFile.Text(), "/documents/Sonavex report.pdf!");
}

TEST_F(PrintDialogTest, AsksBeforeItReplacesAFileOfAnyCopy) {
    printer.files = {"/tmp/a-2.pdf"};
    dialogs.Answer = false;
    dialog.cmbPrinter.UserSelects(2);
    dialog.txtFile.UserTypes("/tmp/a.pdf");
    dialog.cmdOk.Press();
    EXPECT_TRUE(dialog.Choice());
    dialog.Form_Load(printer.Printers());
    dialog.cmbPrinter.UserSelects(2);
    dialog.txtFile.UserTypes("/tmp/a.pdf");
    dialog.txtCopies.UserTypes("2");
    dialog.cmdOk.Press();
    EXPECT_FALSE(dialog.Choice());
    dialogs.Answer = true;
    dialog.cmdOk.Press();
    EXPECT_TRUE(dialog.Choice());
    EXPECT_THAT(log.Lines(),
                ElementsAre("Unload", "Printers", "AskOkCancel '/tmp/a-2.pdf' exists already.\r\rReplace it?",
                            "AskOkCancel '/tmp/a-2.pdf' exists already.\r\rReplace it?", "Unload"));
}

class CopiesTest : public PrintDialogTest, public testing::WithParamInterface<const char*> {};

TEST_P(CopiesTest, AreRefused) {
    dialog.txtCopies.UserTypes(GetParam());
    dialog.cmdOk.Press();
    EXPECT_THAT(log.Lines(),
                ElementsAre("Message information Invalid number of copies. Please enter 1 to 99."));
    EXPECT_FALSE(dialog.Choice());
    EXPECT_TRUE(dialog.txtCopies.TakeFocusRequest());
}

INSTANTIATE_TEST_SUITE_P(Invalid, CopiesTest,
                         testing::Values("", "0", "100", "-1", "1.5", "two", "1e9", "9999999999999"));

TEST_F(PrintDialogTest, TakesOneToNinetyNineCopies) {
    for (const std::int32_t copies : {1, 99}) {
        dialog.txtCopies.UserTypes(std::to_string(copies));
        dialog.cmdOk.Press();
        ASSERT_TRUE(dialog.Choice());
        EXPECT_EQ(dialog.Choice()->copies, copies);
    }
}

}  // namespace
}  // namespace sonavex
