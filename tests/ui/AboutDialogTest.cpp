#include <gmock/gmock.h>

#include <QLabel>

#include "support/DialogUser.h"
#include "support/FormRig.h"
#include "support/RecordingLauncher.h"
#include "ui/AboutDialog.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

class AboutDialogWindow : public testing::Test {
protected:
    void With(std::function<void(QDialog&)> step) {
        const DialogSteps driver({std::move(step)});
        ui::AboutDialog(about, rig.form.Guard).Run();
    }

    FormRig rig;
    CallLog log;
    RecordingLauncher launcher{log};
    RecordingDialogs dialogs{log};
    frmAbout about{launcher, dialogs, "Sonavex", {2, 1, 14, "Distortion meter"}};
};

TEST_F(AboutDialogWindow, StatesWhatTheProgramIs) {
    With([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "About Sonavex");
        EXPECT_EQ(Find<QLabel>(dialog, "lblTitle").text(), "Sonavex");
        EXPECT_EQ(Find<QLabel>(dialog, "lblVersion").text(), "Version 2.1.14");
        EXPECT_EQ(Find<QLabel>(dialog, "lblBuild").text(), "Build Distortion meter");
        EXPECT_FALSE(Find<QLabel>(dialog, "icon").pixmap().isNull());
        Click(dialog, "cmdOk");
    });
}

TEST_F(AboutDialogWindow, OpensTheHomePageAndTheSystemsInformation) {
    With([](QDialog& dialog) {
        Q_EMIT Find<QLabel>(dialog, "lblWeb").linkActivated("");
        Click(dialog, "cmdSysInfo");
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    EXPECT_THAT(log.Lines(), ElementsAre("Open https://sonavex.example/",
                                         "Message plain System Information Is Unavailable At This Time"));
}

}  // namespace
}  // namespace sonavex
