#include <gmock/gmock.h>

#include <QCoreApplication>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "platform/qt/QtDiagnostics.h"
#include "support/ChildProcess.h"
#include "support/QtWait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
namespace fs = std::filesystem;

// Fake programs in place of the sound system's.
class DiagnosticsTest : public testing::Test {
protected:
    using Command = QtDiagnostics::Command;

    Command Program(const std::string& name, const std::string& script, const QStringList& arguments = {}) {
        const fs::path path = folder.Path() / name;
        std::ofstream(path) << "#!/bin/sh\n" << script << '\n';
        fs::permissions(path, fs::perms::owner_all);
        return {QString::fromStdString(path.string()), arguments};
    }
    Command Missing() const { return {QString::fromStdString((folder.Path() / "none").string()), {}}; }

    void Start(QtDiagnostics& diagnostics) {
        diagnostics.Start([this](const std::optional<std::string>& text) {
            ++calls;
            report = text;
        });
    }
    void Collect(const std::vector<Command>& commands, std::chrono::milliseconds limit = 5s) {
        QtDiagnostics diagnostics(commands, limit);
        calls = 0;
        Start(diagnostics);
        EXPECT_EQ(calls, 0);
        EXPECT_TRUE(WaitInQt(20s, [this] { return calls > 0; }));
    }

    PrivateFolder folder;
    int calls = 0;
    std::optional<std::string> report;
};

TEST_F(DiagnosticsTest, AreWhatTheProgramsPrint) {
    Collect({Program("first", "echo one; echo complaint >&2"),
             Program("second", "printf '%s|' \"$@\"; echo $LC_ALL; cat", {"a b", "$(echo c)", "*"})});
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(calls, 1);
    EXPECT_THAT(*report, HasSubstr("first ===\none\ncomplaint\n"));
    EXPECT_THAT(*report, HasSubstr("a b|$(echo c)|*|C.UTF-8\n"));
    EXPECT_LT(report->find("complaint"), report->find("C.UTF-8"));
    EXPECT_THAT(*report, testing::StartsWith("Sound devices of this computer, "));
    EXPECT_THAT(*report, HasSubstr("\nSystem: "));
}

TEST_F(DiagnosticsTest, LeaveOutWhatIsNotInstalled) {
    Collect({Missing(), Program("there", "echo yes")});
    ASSERT_TRUE(report.has_value());
    EXPECT_THAT(*report, HasSubstr("none ===\n(cannot be started: "));
    EXPECT_THAT(*report, HasSubstr("\nyes\n"));
}

TEST_F(DiagnosticsTest, AreNoneWithoutAnyProgram) {
    Collect({Missing(), Missing()});
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(report.has_value());
    Collect({});
    EXPECT_FALSE(report.has_value());
}

TEST_F(DiagnosticsTest, ReportHowAProgramFailed) {
    Collect({Program("failing", "echo no server; exit 3"), Program("crashing", "kill -SEGV $$")});
    ASSERT_TRUE(report.has_value());
    EXPECT_THAT(*report, HasSubstr("no server\n(ended with status 3)\n"));
    EXPECT_THAT(*report, HasSubstr("crashing ===\n(ended with status 11)\n"));
}

TEST_F(DiagnosticsTest, DoNotWaitForAProgramThatIsStuck) {
    Command stuck = Program("stuck", "echo begun; exec sleep 60");
    const auto start = std::chrono::steady_clock::now();
    Collect({stuck, stuck, stuck, Program("after", "echo after")}, 300ms);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
    ASSERT_TRUE(report.has_value());
    EXPECT_THAT(*report, HasSubstr("begun\n(gave no answer within 0.3 s)\n"));
    EXPECT_EQ(report->find("begun"), report->rfind("begun"));
    EXPECT_THAT(*report, HasSubstr("\nafter\n"));
}

TEST_F(DiagnosticsTest, KeepSoMuchOfAFlood) {
    Collect({Program("flood", "exec yes flooding"), Program("after", "echo after")});
    ASSERT_TRUE(report.has_value());
    EXPECT_THAT(*report, HasSubstr("(printed more than is kept)\n"));
    EXPECT_THAT(*report, HasSubstr("\nafter\n"));
    EXPECT_LT(report->size(), static_cast<std::size_t>(QtDiagnostics::kMostBytes) + 65536U);
}

TEST_F(DiagnosticsTest, CanBeCancelled) {
    QtDiagnostics diagnostics({Program("slow", "echo begun; exec sleep 60")}, 30s);
    Start(diagnostics);
    WaitInQt(50ms);
    diagnostics.Cancel();
    WaitInQt(100ms);
    EXPECT_EQ(calls, 0);
    QtDiagnostics other({Program("quick", "echo quick")});
    Start(other);
    EXPECT_TRUE(WaitInQt(20s, [this] { return calls > 0; }));
    EXPECT_THAT(*report, HasSubstr("quick\n"));
}

TEST_F(DiagnosticsTest, StartOverWhenStartedAgain) {
    QtDiagnostics diagnostics({Program("counting", "sleep 0.3; echo run")});
    Start(diagnostics);
    WaitInQt(1ms);
    Start(diagnostics);
    EXPECT_TRUE(WaitInQt(20s, [this] { return calls > 0; }));
    WaitInQt(50ms);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(report->find("run\n"), report->rfind("run\n"));
}

TEST_F(DiagnosticsTest, EndTheirProgramWithThemselves) {
    const fs::path number = folder.Path() / "pid";
    {
        QtDiagnostics diagnostics({Program("slow", "echo $$ >" + number.string() + "; exec sleep 60")}, 30s);
        Start(diagnostics);
        ASSERT_TRUE(WaitInQt(10s, [&] { return fs::exists(number) && fs::file_size(number) > 1; }));
    }
    pid_t pid = 0;
    std::ifstream(number) >> pid;
    EXPECT_FALSE(fs::exists("/proc/" + std::to_string(pid) + "/exe"));
}

TEST(DefaultDiagnostics, NameProgramsAndArguments) {
    bool servers = false;
    bool cards = false;
    for (const QtDiagnostics::Command& command : QtDiagnostics::DefaultCommands()) {
        EXPECT_FALSE(command.program.contains(u' '));
        EXPECT_FALSE(command.arguments.isEmpty());
        servers = servers || (command.program == "pactl" && command.arguments == QStringList{"info"});
        cards = cards || (command.program == "aplay" && command.arguments == QStringList{"-l"});
    }
    EXPECT_TRUE(servers);
    EXPECT_TRUE(cards);
}

}  // namespace
}  // namespace sonavex
