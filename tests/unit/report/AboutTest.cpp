#include <gmock/gmock.h>

#include "core/report/SystemInfo.h"
#include "core/report/frmAbout.h"
#include "support/Recorders.h"
#include "support/RecordingLauncher.h"

namespace sonavex {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::Optional;

constexpr const char* kTool = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO|PATH";
constexpr const char* kFolder = "SOFTWARE\\Microsoft\\Shared Tools Location|MSINFO";
constexpr const char* kUnavailable = "Message plain System Information Is Unavailable At This Time";

class AboutTest : public testing::Test {
protected:
    CallLog log;
    RecordingLauncher launcher{log};
    RecordingDialogs dialogs{log};
    frmAbout about{launcher, dialogs, "Sonavex", {2, 1, 14, "Distortion meter"}};
};

TEST_F(AboutTest, ShowsTitleVersionAndBuild) {
    about.Form_Load();
    EXPECT_EQ(about.Frame.Caption(), "About Sonavex");
    EXPECT_EQ(about.lblTitle.Caption(), "Sonavex");
    EXPECT_EQ(about.lblVersion.Caption(), "Version 2.1.14");
    EXPECT_EQ(about.lblBuild.Caption(), "Build Distortion meter");
    EXPECT_EQ(about.lblWeb.Caption(), "https://sonavex.example/");
}

TEST_F(AboutTest, ClosesWithItsButton) {
    about.cmdOk.Press();  // no handler is set
    about.OnClosed = [this] { log.Call("Unload"); };
    about.cmdOk.Press();
    EXPECT_THAT(log.Lines(), ElementsAre("Unload"));
}

TEST_F(AboutTest, OpensTheHomePage) {
    about.lblWeb_Click();
    launcher.error = 5;
    about.lblWeb_Click();
    EXPECT_THAT(log.Lines(), ElementsAre("Open https://sonavex.example/", "Open https://sonavex.example/",
                                         "Message plain Unable to execute command Error: 5"));
}

TEST_F(AboutTest, RunsTheToolThatTheMachineNames) {
    launcher.values[kTool] = "C:\\Tools\\info.exe\0"s;
    launcher.values[kFolder] = "C:\\Other"s;
    launcher.files = {"C:\\Other\\MSINFO32.EXE"};
    about.cmdSysInfo.Press();
    EXPECT_THAT(log.Lines(), ElementsAre("Run C:\\Tools\\info.exe"));
}

TEST_F(AboutTest, RunsTheToolInTheFolderThatTheMachineNames) {
    launcher.values[kFolder] = "C:\\Other\0"s;
    launcher.files = {"C:\\Other\\MSINFO32.EXE"};
    about.cmdSysInfo.Press();
    EXPECT_THAT(log.Lines(), ElementsAre("Run C:\\Other\\MSINFO32.EXE"));
}

TEST_F(AboutTest, SaysThatThereIsNoTool) {
    about.cmdSysInfo.Press();
    launcher.values[kFolder] = "C:\\Other"s;  // without the file
    about.cmdSysInfo.Press();
    EXPECT_THAT(log.Lines(), ElementsAre(kUnavailable, kUnavailable));
}

TEST_F(AboutTest, SaysThatTheToolDoesNotStart) {
    launcher.values[kTool] = "/usr/bin/gone"s;
    launcher.error = 2;
    about.cmdSysInfo.Press();
    EXPECT_THAT(log.Lines(), ElementsAre("Run /usr/bin/gone", kUnavailable));
}

TEST_F(AboutTest, ReadsValuesAsText) {
    launcher.values["Key|Text"] = "value\0"s;
    launcher.values["Key|Plain"] = "value"s;
    launcher.values["Key|Empty"] = ""s;
    launcher.values["Key|Number"] = std::uint32_t{0xBEEF01};
    launcher.values["Key|Zero"] = std::uint32_t{0};
    launcher.values["Key|Largest"] = std::uint32_t{0xFFFFFFFF};
    const auto read = [&](const char* name) {
        return GetKeyValue(launcher, RootKey::kLocalMachine, "Key", name);
    };
    EXPECT_THAT(read("Text"), Optional("value"s));
    EXPECT_THAT(read("Plain"), Optional("value"s));
    EXPECT_THAT(read("Empty"), Optional(""s));
    EXPECT_THAT(read("Number"), Optional("&hBEEF01"s));
    EXPECT_THAT(read("Zero"), Optional("&h0"s));
    EXPECT_THAT(read("Largest"), Optional("&hFFFFFFFF"s));
    EXPECT_EQ(read("Missing"), std::nullopt);
    EXPECT_EQ(GetKeyValue(launcher, RootKey::kCurrentUser, "Key", "Text"), std::nullopt);
}

}  // namespace
}  // namespace sonavex
