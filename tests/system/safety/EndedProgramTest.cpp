// The whole program gets SIGTERM, or its window is closed, while a dialog is open: it ends in time and
// restores the user's levels.

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "support/Files.h"
#include "support/PulseServer.h"
#include "support/Wait.h"
#include "system/safety/Account.h"
#include "system/safety/Display.h"
#include "system/safety/OpenDialog.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kUsersVolumes[] = {"20123", "40111"};
constexpr const char* kProgramsLine = "30,False,0,True,0,True,False,True,0,0,0,55,60,";
// A running program ends within these limits; the second one applies when the server does not answer.
constexpr auto kEndLimit = 2s;
constexpr auto kHungLimit = 5s;

class EndedProgram : public testing::TestWithParam<std::string> {
protected:
    EndedProgram() {
        server_.Control({"set-sink-volume", "card", kUsersVolumes[0], kUsersVolumes[1]});
        StoreOutput("card");
        Fake("lpstat", "exit 0");
        WriteFile(Document(), "");
    }
    // A file that the file dialog lists.
    std::filesystem::path Document() const { return account_.Documents() / "measured.pdf"; }
    void StoreOutput(const std::string& output) {
        WriteFile(account_.SettingsFile(), std::string("[Settings]\nVistaSoundCard=") + kProgramsLine +
                                               "\n[SoundCard]\nOutput=" + output + "\nInput=card.monitor\n");
    }
    // A program that the instrument finds before the installed one.
    void Fake(const std::string& name, const std::string& script) const {
        const auto file = Programs() / name;
        WriteFile(file, "#!/bin/sh\n" + script + '\n');
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }
    // The same, which hangs. Hanging tells whether it runs.
    void FakeThatHangs(const std::string& name) const {
        Fake(name, "echo $$ > " + HangFile().string() + "; exec sleep 600");
    }
    bool Hanging() const {
        const int pid = Number(HangFile());
        return pid > 0 && kill(pid, 0) == 0;
    }
    std::filesystem::path Programs() const { return account_.Home() / "programs"; }
    std::filesystem::path HangFile() const { return account_.Home() / "hanging"; }
    static int Number(const std::filesystem::path& file) {
        int number = 0;
        std::ifstream(file) >> number;
        return number;
    }

    std::unique_ptr<ChildProcess> Start(const Arguments& command, const Environment& more = {}) const {
        Environment variables{{"PULSE_SERVER", server_.Address()},
                              {"SONAVEX_SOUND", ""},
                              {"PATH", Programs().string() + ':' + std::getenv("PATH")}};
        variables.insert(variables.end(), more.begin(), more.end());
        return std::make_unique<ChildProcess>(command, account_.Variables(variables), account_.Output());
    }
    std::string Output() const { return FileText(account_.Output()); }
    std::string Volumes() const { return server_.Control({"get-sink-volume", "card"}); }
    bool UsersVolumes() const {
        const std::string volumes = Volumes();
        return volumes.find(kUsersVolumes[0]) != std::string::npos &&
               volumes.find(kUsersVolumes[1]) != std::string::npos;
    }
    // Whether the dialog is open; then its program.
    bool DialogOpen() {
        const std::string output = Output();
        const auto at = output.find("open ");
        if (at == std::string::npos || output.find('\n', at) == std::string::npos) return false;
        std::istringstream(output.substr(at + 5)) >> program_ >> window_;
        return true;
    }
    // Whether the program's own levels are on the card.
    bool Runs() const { return Volumes().find("30%") != std::string::npos; }
    void ExpectTheUsersLevels() const {
        EXPECT_TRUE(UsersVolumes()) << Volumes();
        EXPECT_FALSE(std::filesystem::exists(account_.Journal()));
    }

    pid_t program_ = 0;
    std::uint32_t window_ = 0;
    Account account_;
    PulseServer server_{{{"card", 48000, "Test-Card"}}};
};

INSTANTIATE_TEST_SUITE_P(Dialogs, EndedProgram,
                         testing::Values("about", "devices", "help", "mixers", "print", "sweep", "question",
                                         "message", "files", "menu", "delete", "printers", "restart",
                                         "diagnostics", "start"),
                         [](const auto& dialog) { return dialog.param; });

TEST_P(EndedProgram, EndsInTimeAndRestoresTheLevels) {
    std::string dialog = GetParam();
    const bool restart = dialog == "restart" || dialog == "diagnostics";
    const bool hangs = dialog == "printers" || dialog == "diagnostics";
    if (restart) dialog += '=' + server_.LoadNullSink({"other", 48000, "Other-Card"});
    if (dialog == "printers") FakeThatHangs("lpstat");
    if (hangs && restart) FakeThatHangs("pactl");
    if (dialog == "start") StoreOutput("gone");
    const auto child = Start(OpenDialog(dialog));
    ASSERT_TRUE(WaitUntil([&] { return DialogOpen(); })) << Output();
    if (dialog != "start") {
        EXPECT_TRUE(WaitUntil([&] { return Runs(); })) << Volumes();
    }
    if (hangs) {
        EXPECT_TRUE(WaitUntil([&] { return Hanging(); }));
    }
    kill(program_, SIGTERM);
    ASSERT_TRUE(child->WaitForEnd(kEndLimit)) << Output();
    EXPECT_EQ(child->Status(), 0);
    ExpectTheUsersLevels();
    EXPECT_FALSE(Hanging());
    EXPECT_TRUE(std::filesystem::exists(Document()));
    EXPECT_THAT(Output(), Not(HasSubstr("the module stays")));
}

// The window is closed as by a window manager. Qt alone drops the request while a dialog is open.
class ClosedProgram : public EndedProgram {
protected:
    void OpenAndClose(const std::string& dialog) {
        const auto child =
            Start(OpenDialog(dialog), {{"QT_QPA_PLATFORM", "xcb"}, {"DISPLAY", display_.Name()}});
        const bool hangs = dialog == "printers";
        ASSERT_TRUE(WaitUntil([&] { return DialogOpen() && Runs() && Hanging() == hangs; })) << Output();
        display_.AskToClose(window_);
        ASSERT_TRUE(child->WaitForEnd(kEndLimit)) << Output();
        EXPECT_EQ(child->Status(), 0) << Output();
        EXPECT_FALSE(Hanging());
        ExpectTheUsersLevels();
    }

private:
    Display display_;
};

TEST_F(ClosedProgram, EndsInTimeOverADialog) {
    OpenAndClose("about");
}

TEST_F(ClosedProgram, EndsInTimeOverAMessageInADialog) {
    OpenAndClose("message");
}

TEST_F(ClosedProgram, EndsInTimeOverTheErrorInsideARestart) {
    OpenAndClose("restart=" + server_.LoadNullSink({"other", 48000, "Other-Card"}));
}

TEST_F(ClosedProgram, EndsInTimeOverADialogInsideATickOfASweep) {
    OpenAndClose("sweep");
}

TEST_F(ClosedProgram, EndsInTimeOverTheFileDialog) {
    OpenAndClose("files");
}

TEST_F(ClosedProgram, EndsInTimeOverTheMenuOfTheFileDialog) {
    OpenAndClose("menu");
}

TEST_F(ClosedProgram, EndsInTimeOverTheQuestionOfTheFileDialog) {
    OpenAndClose("delete");
    EXPECT_TRUE(std::filesystem::exists(Document()));
}

TEST_F(ClosedProgram, EndsInTimeWhileThePrintSystemIsWaitedFor) {
    FakeThatHangs("lpstat");
    OpenAndClose("printers");
}

TEST_F(ClosedProgram, KeepsWhatWasTypedBeforeTheDialogOpened) {
    OpenAndClose("entry");
    EXPECT_THAT(FileText(account_.SettingsFile()), HasSubstr("\nCurrent Signal Start=440\n"));
}

class EndedProgramAlone : public EndedProgram {
protected:
    void EndWhileTheServerHangs(ChildProcess& child) {
        server_.Pause();
        child.Send(SIGTERM);
        EXPECT_TRUE(child.WaitForEnd(kHungLimit)) << Output();
        server_.Continue();
        EXPECT_EQ(child.Status(), 0);
        EXPECT_TRUE(std::filesystem::exists(account_.Journal())) << "the next start restores the levels";
    }
};

TEST_F(EndedProgramAlone, EndsInTimeWhileTheServerHangs) {
    const auto child = Start({SONAVEX_PROGRAM});
    ASSERT_TRUE(WaitUntil([&] { return Runs(); })) << Output();
    EndWhileTheServerHangs(*child);
}

TEST_F(EndedProgramAlone, EndsInTimeOverADialogWhileTheServerHangs) {
    const auto child = Start(OpenDialog("about"));
    ASSERT_TRUE(WaitUntil([&] { return DialogOpen() && Runs(); })) << Output();
    EndWhileTheServerHangs(*child);
}

// The settings cannot be written, because a file has the place of their folder.
TEST_F(EndedProgramAlone, ReportsAFailureOfTheShutdownOnStandardErrorAfterASignal) {
    const auto child = Start({SONAVEX_PROGRAM});
    ASSERT_TRUE(WaitUntil([&] { return Runs(); })) << Output();
    std::filesystem::rename(account_.SettingsFolder(), account_.Config() / "moved");
    WriteFile(account_.SettingsFolder(), "");
    child->Send(SIGTERM);
    ASSERT_TRUE(child->WaitForEnd(kEndLimit)) << Output();
    EXPECT_THAT(Output(), HasSubstr("sonavex: The settings cannot be stored in "));
    EXPECT_TRUE(UsersVolumes()) << Volumes();
}

TEST_F(EndedProgramAlone, WritesTheTraceOfTheStreamWhereAsked) {
    const auto child = Start({SONAVEX_PROGRAM}, {{"SONAVEX_TRACE", "1"}});
    EXPECT_TRUE(WaitUntil([&] { return Output().find(" ms RESTARTING 0\n") != std::string::npos; }));
    child->Send(SIGTERM);
    EXPECT_TRUE(child->WaitForEnd(kEndLimit));
}

}  // namespace
}  // namespace sonavex
