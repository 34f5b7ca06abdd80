#include <gmock/gmock.h>

#include "core/report/MenuCommands.h"
#include "core/report/WebPages.h"
#include "support/FormRig.h"
#include "support/RecordingLauncher.h"
#include "support/ReportFakes.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

class MenuCommandsTest : public testing::Test, protected World {
protected:
    RecordingLauncher launcher{log};
    SharedState shared;
    MenuControls menus;
    MenuCommands commands{{launcher, dialogs, help, shared, mixers, {2, 1, 14, "Comment"}}, menus};
};

TEST_F(MenuCommandsTest, ChecksTheVersionAfterAYes) {
    menus.mnuCheckVersion.UserChooses();
    EXPECT_THAT(log.Lines(),
                ElementsAre("AskYesNo You must be connected to the Internet to continue.\r\r"
                            "Proceed with update check ?",
                            "Open https://sonavex.example/check_sonavex_version.asp?Version=2.1.14"));
}

TEST_F(MenuCommandsTest, OpensTheContactFormAfterAYes) {
    menus.mnuemail.UserChooses();
    EXPECT_THAT(log.Lines(),
                ElementsAre("AskYesNo You must be connected to the Internet to continue.\r\rContinue ?",
                            "Open https://sonavex.example/sendemail/contactform.asp"));
}

TEST_F(MenuCommandsTest, OpensNothingAfterANo) {
    dialogs.Answer = false;
    menus.mnuCheckVersion.UserChooses();
    menus.mnuemail.UserChooses();
    EXPECT_EQ(log.Count("AskYesNo"), 2U);
    EXPECT_EQ(log.Lines().size(), 2U);
}

TEST_F(MenuCommandsTest, ReportsTheNumberWhenThePageDoesNotOpen) {
    launcher.error = 31;
    menus.mnuCheckVersion.UserChooses();
    menus.mnuemail.UserChooses();
    EXPECT_THAT(log.Of("Message"), ElementsAre("Message plain Unable to execute command Error: 31",
                                               "Message plain Unable to execute command Error: 31"));
}

TEST_F(MenuCommandsTest, StartsThePanelsOfTheNewerSystems) {
    mixers.numbers.MixerDeviceNumber = 3;
    for (const std::int32_t generation : {6, 10}) {
        log.Clear();
        shared.OsMajorVersion = generation;
        menus.mnuInputControl.UserChooses();
        menus.mnuPlayControl.UserChooses();
        EXPECT_THAT(log.Lines(), ElementsAre("Run control.exe mmsys.cpl,,1", "Run control.exe mmsys.cpl,,0"));
    }
}

TEST_F(MenuCommandsTest, StartsThePanelsOfTheOlderSystemsWithTheMixersNumbers) {
    shared.OsMajorVersion = 5;
    mixers.numbers.MixerDeviceNumber = 0;
    mixers.numbers.PlayMixerDeviceNumber = 0;
    menus.mnuInputControl.UserChooses();
    menus.mnuPlayControl.UserChooses();
    mixers.numbers.MixerDeviceNumber = 2;
    mixers.numbers.PlayMixerDeviceNumber = 11;
    menus.mnuInputControl.UserChooses();
    menus.mnuPlayControl.UserChooses();
    EXPECT_THAT(log.Lines(), ElementsAre("Run sndvol32 -R -D0", "Run sndvol32 -P -D0", "Run sndvol32 -R -D2",
                                         "Run sndvol32 -P -D11"));
}

TEST_F(MenuCommandsTest, ReportsTheNumberWhenAPanelDoesNotStart) {
    launcher.error = 2;
    menus.mnuInputControl.UserChooses();
    menus.mnuPlayControl.UserChooses();
    EXPECT_THAT(log.Of("Message"), ElementsAre("Message plain Unable to execute command Error: 2",
                                               "Message plain Unable to execute command Error: 2"));
}

TEST_F(MenuCommandsTest, ShowsTheContentsOfTheHelpFile) {
    menus.mnuHelpContents.UserChooses();
    EXPECT_THAT(log.Lines(), ElementsAre("ShowContents"));
}

TEST_F(MenuCommandsTest, ShowsTheAboutBox) {
    menus.mnuAbout.UserChooses();  // no handler is set
    commands.ShowAbout = [this] { log.Call("ShowAbout"); };
    menus.mnuAbout.UserChooses();
    EXPECT_THAT(log.Lines(), ElementsAre("ShowAbout"));
}

TEST(MenuCommandsEndTest, LeavesEntriesThatDoNothing) {
    CallLog log;
    RecordingLauncher launcher(log);
    RecordingDialogs dialogs(log);
    RecordingHelp help(log);
    const SharedState shared;
    const RecordingMixerSession mixers(log);
    MenuControls menus;
    { const MenuCommands commands({launcher, dialogs, help, shared, mixers, {}}, menus); }
    menus.mnuHelpContents.UserChooses();
    menus.mnuCheckVersion.UserChooses();
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

TEST(WebPagesTest, AreAllOnTheOneHost) {
    std::string start = "https://";
    start.append(web_page::kHost).append("/");
    for (const std::string& page : {web_page::UpdateCheck({}), web_page::Contact(), web_page::Home()})
        EXPECT_THAT(page, testing::StartsWith(start));
    EXPECT_EQ(web_page::Home(), "https://sonavex.example/");
}

}  // namespace
}  // namespace sonavex
