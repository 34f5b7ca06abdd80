#include <gmock/gmock.h>

#include <QDesktopServices>
#include <QObject>
#include <QUrl>
#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include "platform/qt/QtLauncher.h"
#include "support/ChildProcess.h"
#include "support/ScopedVariable.h"
#include "support/Wait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr const char* kInput = "control.exe mmsys.cpl,,1";
constexpr const char* kPlay = "control.exe mmsys.cpl,,0";

// Receives web addresses in place of a browser.
class AddressTaker : public QObject {
    Q_OBJECT
public:
    AddressTaker() { QDesktopServices::setUrlHandler("https", this, "Take"); }
    ~AddressTaker() override { QDesktopServices::unsetUrlHandler("https"); }
    Q_INVOKABLE void Take(const QUrl& address) { taken.push_back(address.toString().toStdString()); }
    std::vector<std::string> taken;
};

// A computer with only the test's programs. Each records how it was called.
class QtLauncherTest : public testing::Test {
protected:
    void Install(const std::string& program) {
        const auto file = programs_.Path() / program;
        std::ofstream(file) << "#!/bin/sh\nfor word in \"$0\" \"$@\"; do echo \"$word\"; done > "
                            << Calls().string() << ".part\nmv " << Calls().string() << ".part "
                            << Calls().string() << '\n';
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
        // The scripts need one program.
        if (!std::filesystem::exists(programs_.Path() / "mv"))
            std::filesystem::create_symlink("/bin/mv", programs_.Path() / "mv");
    }
    // The recorded call, one word per entry, with the program's name without its folder.
    std::vector<std::string> Called() {
        WaitUntil([this] { return std::filesystem::exists(Calls()); }, 10s);
        std::vector<std::string> words;
        std::ifstream file(Calls());
        for (std::string word; std::getline(file, word);) words.push_back(word);
        if (!words.empty()) words[0] = std::filesystem::path(words[0]).filename();
        std::filesystem::remove(Calls());
        return words;
    }
    std::string Path(const std::string& program) const { return programs_.Path() / program; }

    QtLauncher launcher_;

private:
    std::filesystem::path Calls() const { return record_.Path() / "calls"; }

    PrivateFolder programs_;
    PrivateFolder record_;
    ScopedVariable path_{"PATH", programs_.Path()};
    ScopedVariable desktop_{"XDG_CURRENT_DESKTOP", "GNOME"};
};

TEST_F(QtLauncherTest, StartsTheVolumeControlWithThePageOfTheSide) {
    Install("pavucontrol");
    EXPECT_EQ(launcher_.Run(kInput), 0);
    EXPECT_THAT(Called(), ElementsAre("pavucontrol", "--tab=4"));
    EXPECT_EQ(launcher_.Run(kPlay), 0);
    EXPECT_THAT(Called(), ElementsAre("pavucontrol", "--tab=3"));
    EXPECT_EQ(launcher_.Run("sndvol32 -R -D0"), 0);
    EXPECT_THAT(Called(), ElementsAre("pavucontrol", "--tab=4"));
    EXPECT_EQ(launcher_.Run("sndvol32 -P -D12"), 0);
    EXPECT_THAT(Called(), ElementsAre("pavucontrol", "--tab=3"));
}

TEST_F(QtLauncherTest, PrefersTheSettingsOfTheRunningDesktop) {
    Install("pavucontrol");
    Install("systemsettings");
    Install("gnome-control-center");
    EXPECT_EQ(launcher_.Run(kPlay), 0);
    EXPECT_THAT(Called(), ElementsAre("gnome-control-center", "sound"));
    const ScopedVariable desktop("XDG_CURRENT_DESKTOP", "KDE");
    EXPECT_EQ(launcher_.Run(kPlay), 0);
    EXPECT_THAT(Called(), ElementsAre("systemsettings", "kcm_pulseaudio"));
    const ScopedVariable other("XDG_CURRENT_DESKTOP", "XFCE");
    EXPECT_EQ(launcher_.Run(kPlay), 0);
    EXPECT_THAT(Called(), ElementsAre("pavucontrol", "--tab=3"));
}

struct DesktopPanel {
    const char* desktop;
    std::vector<std::string> recording;
    std::vector<std::string> playback;
};

class DesktopPanelTest : public QtLauncherTest, public testing::WithParamInterface<DesktopPanel> {};

TEST_P(DesktopPanelTest, StartsTheDesktopsOwnBeforeAllOthers) {
    const ScopedVariable desktop("XDG_CURRENT_DESKTOP", GetParam().desktop);
    for (const char* other : {"pavucontrol", "alsamixer", "x-terminal-emulator"}) Install(other);
    Install(GetParam().recording[0]);
    EXPECT_EQ(launcher_.Run(kInput), 0);
    EXPECT_EQ(Called(), GetParam().recording);
    EXPECT_EQ(launcher_.Run(kPlay), 0);
    EXPECT_EQ(Called(), GetParam().playback);
}

INSTANTIATE_TEST_SUITE_P(
    All, DesktopPanelTest,
    testing::Values(
        DesktopPanel{"ubuntu:GNOME", {"gnome-control-center", "sound"}, {"gnome-control-center", "sound"}},
        DesktopPanel{"KDE", {"systemsettings", "kcm_pulseaudio"}, {"systemsettings", "kcm_pulseaudio"}},
        DesktopPanel{"KDE", {"systemsettings5", "kcm_pulseaudio"}, {"systemsettings5", "kcm_pulseaudio"}},
        DesktopPanel{"X-Cinnamon", {"cinnamon-settings", "sound"}, {"cinnamon-settings", "sound"}},
        DesktopPanel{
            "MATE", {"mate-volume-control", "--page=input"}, {"mate-volume-control", "--page=output"}},
        DesktopPanel{"LXQt", {"pavucontrol-qt", "--tab=4"}, {"pavucontrol-qt", "--tab=3"}}));

TEST_F(QtLauncherTest, StartsAnotherDesktopsPanelBeforeATerminal) {
    for (const char* other : {"alsamixer", "x-terminal-emulator", "mate-volume-control"}) Install(other);
    EXPECT_EQ(launcher_.Run(kPlay), 0);
    EXPECT_THAT(Called(), ElementsAre("mate-volume-control", "--page=output"));
}

TEST_F(QtLauncherTest, FallsBackToTheMixerInATerminal) {
    Install("x-terminal-emulator");
    EXPECT_EQ(launcher_.Run(kInput), 2) << "the terminal has nothing to show";
    Install("alsamixer");
    EXPECT_EQ(launcher_.Run(kInput), 0);
    EXPECT_THAT(Called(), ElementsAre("x-terminal-emulator", "-e", "alsamixer", "-V", "capture"));
    EXPECT_EQ(launcher_.Run(kPlay), 0);
    EXPECT_THAT(Called(), ElementsAre("x-terminal-emulator", "-e", "alsamixer", "-V", "playback"));
}

TEST_F(QtLauncherTest, ReportsThatNoPanelIsInstalled) {
    EXPECT_EQ(launcher_.Run(kInput), 2);
    EXPECT_EQ(launcher_.Run(kPlay), 2);
}

TEST_F(QtLauncherTest, RunsAProgramByItsPathAsOneWord) {
    Install("strange tool; exit");
    EXPECT_EQ(launcher_.Run(Path("strange tool; exit")), 0);
    EXPECT_THAT(Called(), ElementsAre("strange tool; exit"));
    EXPECT_EQ(launcher_.Run(Path("missing")), 2);
}

TEST_F(QtLauncherTest, PrefersTheFullestSystemInformationTool) {
    for (const char* tool : {"lshw-gtk", "kinfocenter", "hardinfo", "hardinfo2"}) {
        Install(tool);
        EXPECT_EQ(launcher_.ReadMachineValue(RootKey::kLocalMachine,
                                             "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", "PATH"),
                  MachineValue(Path(tool)));
    }
}

TEST_F(QtLauncherTest, NamesTheInstalledSystemInformationTool) {
    const auto read = [&](RootKey root, const char* key, const char* name) {
        return launcher_.ReadMachineValue(root, key, name);
    };
    constexpr const char* kKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
    EXPECT_EQ(read(RootKey::kLocalMachine, kKey, "PATH"), std::nullopt);
    Install("hardinfo");
    EXPECT_EQ(read(RootKey::kLocalMachine, kKey, "PATH"), MachineValue(Path("hardinfo")));
    EXPECT_EQ(read(RootKey::kCurrentUser, kKey, "PATH"), std::nullopt);
    EXPECT_EQ(read(RootKey::kLocalMachine, kKey, "OTHER"), std::nullopt);
    EXPECT_EQ(read(RootKey::kLocalMachine, "SOFTWARE\\Microsoft\\Shared Tools Location", "MSINFO"),
              std::nullopt);
    EXPECT_TRUE(launcher_.FileExists(Path("hardinfo")));
    EXPECT_FALSE(launcher_.FileExists(Path("hardinfo2")));
}

TEST_F(QtLauncherTest, OpensWebAddressesAsTheyAre) {
    AddressTaker browser;
    constexpr const char* kAddress = "https://sonavex.example/check_sonavex_version.asp?Version=2.1.14";
    EXPECT_EQ(launcher_.Open(kAddress), 0);
    EXPECT_THAT(browser.taken, ElementsAre(kAddress));
}

TEST_F(QtLauncherTest, ReportsWhyNothingOpens) {
    EXPECT_EQ(launcher_.Open(Path("missing.pdf")), 2);
    EXPECT_EQ(launcher_.Open("https://sonavex.example/"), 31) << "no browser is installed";
}

}  // namespace
}  // namespace sonavex

#include "QtLauncherTest.moc"
