#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>

#include "app/sonavex/Program.h"
#include "support/ChildProcess.h"
#include "support/DialogUser.h"
#include "support/QtWait.h"
#include "support/ScopedVariable.h"
#include "ui/HelpWindow.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// The menus of the whole program on the simulated card, in a private account.
class ProgramMenus : public testing::Test {
protected:
    ProgramMenus() { opened_ = !program.Open(); }
    ~ProgramMenus() override {
        if (opened_) program.Form().Form_QueryUnload();
    }
    void SetUp() override { ASSERT_TRUE(opened_); }
    // The step must close the dialog that the entry opens.
    void Choose(const char* action, std::function<void(QDialog&)> step) {
        const DialogSteps driver({std::move(step)});
        Trigger(action);
    }
    void Trigger(const char* action) { program.Window().findChild<QAction*>(action)->trigger(); }
    static ui::HelpWindow* Help() {
        for (QWidget* const window : QApplication::topLevelWidgets())
            if (auto* const help = qobject_cast<ui::HelpWindow*>(window); help != nullptr) return help;
        return nullptr;
    }

private:
    PrivateFolder folder_;
    const ScopedVariable config_{"XDG_CONFIG_HOME", folder_.Path()};
    const ScopedVariable runtime_{"XDG_RUNTIME_DIR", folder_.Path()};
    const ScopedVariable sound_{"SONAVEX_SOUND", "simulated"};
    bool opened_ = false;

protected:
    app::Program program;
};

TEST_F(ProgramMenus, TheAboutBoxShowsTheVersion) {
    Choose("mnuAbout", [&](QDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), &program.Window());
        EXPECT_THAT(Find<QLabel>(dialog, "lblVersion").text().toStdString(),
                    testing::HasSubstr(SONAVEX_VERSION));
        Click(dialog, "cmdOk");
    });
}

TEST_F(ProgramMenus, ClosingTheWindowClosesAnOpenDialogFirst) {
    QTimer::singleShot(0, [&] {
        Choose("mnuAbout", [&](QDialog&) {
            program.Window().close();
            EXPECT_NE(program.Form().Instrument.Engine.SecondaryBuffer(), nullptr);
        });
    });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(program.Form().Instrument.Engine.SecondaryBuffer(), nullptr);
}

// The block meter and the record of the Analyzer go on below a message of the Analyzer.
TEST_F(ProgramMenus, AMessageOfTheAnalyzerInterruptsNothing) {
    Trigger("mnuAnalyzer");
    const StreamEngine& engine = program.Form().Instrument.Engine;
    ASSERT_TRUE(WaitInQt(5s, [&] { return engine.Blocks > 0; }));
    bool shown = false;
    const DialogSteps driver({[&](QDialog& dialog) {
        shown = true;
        auto& box = dynamic_cast<QMessageBox&>(dialog);
        EXPECT_THAT(box.text().toStdString(), testing::HasSubstr("no reading to export"));
        const std::uint64_t before = engine.Blocks;
        EXPECT_TRUE(WaitInQt(5s, [&] { return engine.Blocks > before + 2; }));
        EXPECT_EQ(engine.Restarting(), false);
        box.buttons().front()->click();
    }});
    program.Analyzer().Form().cmdExport.Press();
    EXPECT_TRUE(shown);
    program.Analyzer().Form().Unload();
}

TEST_F(ProgramMenus, PrintingAsksFirst) {
    program.Form().mnuPrint.SetEnabled(true);
    const auto& entry = *program.Window().findChild<QAction*>("mnuPrint");
    ASSERT_TRUE(WaitInQt(std::chrono::seconds(2), [&] { return entry.isEnabled(); }));
    Choose("mnuPrint", [&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Print");
        EXPECT_EQ(
            Find<QComboBox>(dialog, "cmbPrinter").itemText(Find<QComboBox>(dialog, "cmbPrinter").count() - 1),
            "PDF file");
        Click(dialog, "cmdCancel");
    });
}

TEST_F(ProgramMenus, TheHelpIsTheFormsOwnFile) {
    program.Form().HelpFile = "/nowhere/Sonavex.chm";
    Choose("mnuHelpContents", [](QDialog& dialog) {
        EXPECT_THAT(dynamic_cast<QMessageBox&>(dialog).text().toStdString(),
                    testing::StartsWith("The help file '/nowhere/Sonavex.chm' cannot be shown."));
        dialog.close();
    });
    EXPECT_EQ(Help(), nullptr);
    program.Form().HelpFile = SONAVEX_HELP_FILE;
    Trigger("mnuHelpContents");
    ASSERT_NE(Help(), nullptr);
    EXPECT_TRUE(Help()->isVisible());
}

}  // namespace
}  // namespace sonavex
