#include <gmock/gmock.h>

#include <QApplication>
#include <QMainWindow>
#include <QTest>

#include "platform/chm/ChmHelpBook.h"
#include "support/DialogUser.h"
#include "support/FormRig.h"
#include "support/ReportFakes.h"
#include "ui/ErrorDialog.h"
#include "ui/HelpViewer.h"
#include "ui/HelpWindow.h"

namespace sonavex {
namespace {

// The dialog about a failed device, opened while the help window is open.
class HelpOverDialog : public testing::Test {
protected:
    void ReadHelp() {
        viewer.ShowContents();
        ASSERT_TRUE(QTest::qWaitForWindowActive(viewer.Open(), 5000));
    }
    // The step must close the dialog, which lives as long as in the program.
    void Fail(std::function<void(QDialog&)> step) {
        const DialogSteps driver({std::move(step)});
        frmError error({state, rig.form.Instrument.Shared, rig.form.Instrument.Settings, rig.dialogs,
                        rig.files, diagnostics, viewer, "in-b", "out-a"});
        ui::ErrorDialog dialog(error, rig.form.Guard);
        dialog.Run();
    }

    FormRig rig;
    ErrorState state;
    ScriptedDiagnostics diagnostics{rig.log};
    ui::HelpViewer viewer{rig.dialogs, [] { return std::string(SONAVEX_HELP_FILE); },
                          [](const std::string& file) { return std::make_unique<ChmHelpBook>(file); }};
};

TEST_F(HelpOverDialog, MovesToTheDialogThatAsksForIt) {
    ReadHelp();
    const ui::HelpWindow* const help = viewer.Open();
    Fail([&](QDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), nullptr) << "not the help's own";
        Click(dialog, "Command2");
        EXPECT_EQ(viewer.Open(), help);
        EXPECT_EQ(help->parentWidget(), &dialog);
        EXPECT_TRUE(help->isVisible());
        EXPECT_TRUE(help->isWindow());
        dialog.close();
    });
    EXPECT_EQ(viewer.Open(), nullptr);
    viewer.ShowContents();
    EXPECT_TRUE(viewer.Open()->isVisible());
}

TEST_F(HelpOverDialog, LeavesTheDialogToTheMainWindow) {
    QMainWindow main;
    main.show();
    ReadHelp();
    Fail([&](QDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), &main);
        Click(dialog, "Command2");
        EXPECT_EQ(viewer.Open()->parentWidget(), &dialog);
        dialog.close();
    });
    EXPECT_TRUE(main.isVisible());
}

TEST_F(HelpOverDialog, StaysWhereItIsForADialogOfItsOwn) {
    ReadHelp();
    const ui::HelpWindow* const help = viewer.Open();
    {
        QDialog own(viewer.Open());
        own.setModal(true);
        own.show();
        viewer.ShowTopic(305);
        EXPECT_EQ(viewer.Open(), help);
        EXPECT_EQ(help->parentWidget(), nullptr);
    }
    EXPECT_EQ(viewer.Open(), help);
}

}  // namespace
}  // namespace sonavex
