// Use of the system by the programs: no network, no shell, no private file that others can read or write.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <cstdlib>

#include "support/Files.h"
#include "support/PulseServer.h"
#include "support/Recordings.h"
#include "support/Wait.h"
#include "system/safety/Account.h"
#include "system/safety/Confined.h"
#include "system/safety/Session.h"
#include "system/safety/Trace.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
namespace fs = std::filesystem;

// Names with characters that a shell interprets.
constexpr const char* kPrinter = "p;touch$IFS$HOME/broken;\"'`touch$IFS$HOME/broken`";
constexpr const char* kReport = "re port;$(touch broken)'\"`touch broken`&|.pdf";
constexpr const char* kRunnable = "a program;$(touch broken)";

class LeastPrivilege : public testing::Test {
protected:
    LeastPrivilege() {
        fs::create_directories(Temporary());
        // A fake print system whose programs record their arguments, one per line.
        Script("lpstat", "printf '%s\\n' 'scheduler is running' \"$PRINTER\"");
        Script("lp", kNote + "while read -r line; do :; done");
        Script("lpoptions", kNote);
        Script(kRunnable, kNote);
    }

    fs::path Programs() const { return account_.Home() / "bin"; }
    fs::path Temporary() const { return account_.Home() / "temporary"; }
    fs::path TraceFile() const { return account_.Home() / "trace"; }
    std::string Started(const std::string& program) const {
        return FileText(account_.Home() / ("arguments of " + program));
    }
    void Script(const std::string& name, const std::string& body) const {
        WriteFile(Programs() / name, "#!/bin/sh\n" + body + "\n");
        fs::permissions(Programs() / name, fs::perms::owner_all);
    }
    Environment Variables(const Environment& more = {}) const {
        const char* const sanitizer = std::getenv("ASAN_OPTIONS");
        // The leak sanitizer does not work under a tracer.
        Environment variables{
            {"PATH", Programs().string() + ":" + std::getenv("PATH")},
            {"TMPDIR", Temporary()},
            {"PRINTER", kPrinter},
            {"ASAN_OPTIONS", std::string(sanitizer != nullptr ? sanitizer : "") + ":detect_leaks=0"}};
        variables.insert(variables.end(), more.begin(), more.end());
        return account_.Variables(variables);
    }
    std::string Run(const Arguments& command, const Environment& more = {}) {
        fs::remove(account_.Output());
        ChildProcess process(command, Variables(more), account_.Output());
        EXPECT_TRUE(process.WaitForEnd(60s));
        const std::string output = FileText(account_.Output());
        EXPECT_EQ(process.Status(), 0) << output;
        EXPECT_THAT(output, Not(HasSubstr("unexpected")));
        return output;
    }
    static Confinement WithoutInternet() {
        Confinement confinement;
        confinement.noInternet = true;
        return confinement;
    }
    static mode_t ModeOf(const fs::path& path) {
        struct stat status = {};
        EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }
    fs::path Input() const { return account_.Home() / "recording.wav"; }
    Arguments MeasureAFile(const fs::path& output) const {
        WriteRecording(Input(), {32000, 2}, Sine(1000.0, 32000, 0.5));
        return {SONAVEX_MEASURE, "file", Input().string(), "--write", output.string()};
    }

    Account account_;

private:
    // Not `echo`, which could interpret an argument as an option.
    const std::string kNote = "printf '%s\\n' \"$@\" >>\"$HOME/arguments of ${0##*/}\"\n";
};

// Proves that the tests without the Internet can fail.
TEST_F(LeastPrivilege, TheInternetIsForbiddenHere) {
    ChildProcess process(Confined(WithoutInternet(), {"bash", "-c", "exec 3<>/dev/tcp/127.0.0.1/9"}), {},
                         account_.Output());
    ASSERT_TRUE(process.WaitForEnd(20s));
    EXPECT_EQ(process.Status(), 128 + SIGSYS) << FileText(account_.Output());
}

TEST_F(LeastPrivilege, TheWindowNeedsNoInternet) {
    const std::string output = Run(Confined(
        WithoutInternet(), Session({"measure", "help", "file=" + (account_.Documents() / "a.pdf").string(),
                                    std::string("print=") + kPrinter, "settings"})));
    EXPECT_THAT(output, EndsWith("done\n"));
    EXPECT_TRUE(fs::exists(account_.Documents() / "a.pdf"));
}

TEST_F(LeastPrivilege, TheHeadlessMeterNeedsNoInternet) {
    Run(Confined(WithoutInternet(), {SONAVEX_MEASURE, "run", "--tone", "sine:1000", "--seconds", "1"}));
    Run(Confined(WithoutInternet(), {SONAVEX_MEASURE, "devices"}));
    Run(Confined(WithoutInternet(), MeasureAFile(account_.Documents() / "output.wav")));
}

// The program itself, with a umask of 0: it measures, and ends when asked.
TEST_F(LeastPrivilege, TheProgramOnASoundServerNeedsNoInternet) {
    fs::remove_all(account_.Config());
    const PulseServer server({{"card", 48000, "Test-Card"}});
    Confinement confinement = WithoutInternet();
    confinement.mask = 0000;
    ChildProcess program(Confined(confinement, {SONAVEX_PROGRAM}),
                         Variables({{"PULSE_SERVER", server.Address()}, {"SONAVEX_SOUND", ""}}),
                         account_.Output());
    ASSERT_TRUE(WaitUntil([&] {
        return !server.Control({"list", "short", "source-outputs"}).empty();
    })) << FileText(account_.Output());
    EXPECT_EQ(ModeOf(account_.SettingsFolder() / "sonavex.lock"), 0600U);
    program.Send(SIGTERM);
    ASSERT_TRUE(program.WaitForEnd(60s));
    EXPECT_EQ(program.Status(), 0) << FileText(account_.Output());
    EXPECT_EQ(ModeOf(account_.SettingsFolder()), 0700U);
    EXPECT_EQ(ModeOf(account_.SettingsFile()), 0600U);
}

// Proves that the traces of the next test can show a call.
TEST_F(LeastPrivilege, ATraceShowsACallToTheInternet) {
    ChildProcess process(Trace::Of({"bash", "-c", "exec 3<>/dev/tcp/127.0.0.1/9"}, "%network", TraceFile()),
                         Variables(), account_.Output());
    ASSERT_TRUE(process.WaitForEnd(20s));
    const Trace shell(TraceFile());
    EXPECT_THAT(shell.Calls("socket"), Contains(HasSubstr("(AF_INET, ")));
    EXPECT_THAT(shell.Calls("connect"), Contains(HasSubstr("sa_family=AF_INET")));
}

TEST_F(LeastPrivilege, OnlyLocalSocketsAreRequested) {
    Run(Trace::Of(Session({"measure", "help", "settings"}), "%network", TraceFile()));
    const Trace window(TraceFile());
    for (const char* const call : {"socket", "connect", "bind", "sendto"})
        EXPECT_THAT(window.Calls(call), Each(Not(HasSubstr("AF_INET")))) << call;
    EXPECT_THAT(window.Calls("socket"), Each(AnyOf(HasSubstr("(AF_UNIX, "), HasSubstr("(AF_NETLINK, "))));
    EXPECT_THAT(window.Calls("connect"), Each(HasSubstr("sa_family=AF_UNIX")));
    // The programs do not listen on any socket.
    EXPECT_THAT(window.Calls("listen"), IsEmpty());
    Run(Trace::Of({SONAVEX_MEASURE, "run", "--tone", "sine:1000", "--seconds", "1"}, "%network",
                  TraceFile()));
    EXPECT_THAT(Trace(TraceFile()).Calls("socket"), IsEmpty());
}

// Only the intended programs are started, and each gets the name as one argument, whatever it contains.
TEST_F(LeastPrivilege, ProgramsAreStartedWithoutAShell) {
    const fs::path report = account_.Documents() / kReport;
    Run(Trace::Of(Session({"file=" + report.string(), std::string("print=") + kPrinter,
                           "run=" + (Programs() / kRunnable).string()}),
                  "execve,execveat", TraceFile()));
    const std::set<std::string> programs = Trace(TraceFile()).Programs();
    const std::string bin = Programs().string() + "/";
    EXPECT_EQ(programs, (std::set<std::string>{ThisProgram(), bin + "lpstat", bin + "lp", bin + kRunnable}));
    EXPECT_EQ(Started("lp"), std::string("-d\n") + kPrinter + "\n-n\n1\n-t\nSonavex report\n");
    EXPECT_EQ(Started(kRunnable), "\n");
    EXPECT_TRUE(fs::exists(report));
    for (const auto& folder : {account_.Home(), account_.Documents(), fs::current_path()})
        EXPECT_FALSE(fs::exists(folder / "broken")) << folder;
}

class Rights : public LeastPrivilege, public testing::WithParamInterface<mode_t> {
protected:
    // Permissions of a document: as the umask says, but never world-writable.
    static mode_t Document() { return 0666 & ~GetParam() & ~mode_t{S_IWOTH}; }
    Arguments WithMask(const Arguments& command) const {
        Confinement confinement;
        confinement.mask = GetParam();
        return Confined(confinement, command);
    }
};

TEST_P(Rights, OfWhatTheProgramsCreate) {
    fs::remove_all(account_.Config());
    const fs::path report = account_.Documents() / "report.pdf";
    {
        fs::remove(account_.Output());
        ChildProcess process(WithMask(Session({"measure", "file=" + report.string()})), Variables(),
                             account_.Output());
        ASSERT_TRUE(WaitUntil([&] { return fs::exists(account_.Journal()); })) << FileText(account_.Output());
        EXPECT_EQ(ModeOf(account_.Journal()), 0600U);
        EXPECT_EQ(ModeOf(account_.SettingsFolder() / "sonavex.lock"), 0600U);
        ASSERT_TRUE(process.WaitForEnd(60s));
        EXPECT_EQ(process.Status(), 0) << FileText(account_.Output());
    }
    EXPECT_EQ(ModeOf(account_.Config()), 0700U);
    EXPECT_EQ(ModeOf(account_.SettingsFolder()), 0700U);
    EXPECT_EQ(ModeOf(account_.SettingsFile()), 0600U);
    EXPECT_EQ(ModeOf(report), Document());
    Run(WithMask(MeasureAFile(account_.Documents() / "output.wav")));
    EXPECT_EQ(ModeOf(account_.Documents() / "output.wav"), Document());
    WriteFile(account_.SettingsFile(), "[SoundCard]\nOutput=gone\n");
    ChildProcess failing(WithMask(Session({})), Variables(), account_.Output());
    ASSERT_TRUE(failing.WaitForEnd(60s));
    EXPECT_EQ(ModeOf(account_.Desktop() / "Quenby Error.txt"), Document());
    for (const auto& entry : fs::recursive_directory_iterator(account_.Home())) {
        EXPECT_EQ(ModeOf(entry.path()) & (S_IWOTH | S_ISUID | S_ISGID), 0U) << entry.path();
    }
    EXPECT_THAT(NamesIn(account_.Runtime()), IsEmpty());
    EXPECT_THAT(NamesIn(Temporary()), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Masks, Rights, testing::Values(0000, 0022, 0077));

// A runtime folder that others can write to, or a link to another user's folder, is not used.
TEST_F(LeastPrivilege, ARuntimeFolderOpenToOthersIsNotUsed) {
    const fs::path open = account_.Home() / "open";
    fs::create_directory(open);
    fs::permissions(open, fs::perms::all);
    const fs::path precious = account_.Home() / "precious";
    for (const char* const name : {"sonavex.lock", "sonavex-mixer-levels", "sonavex-mixer-levels.new"})
        fs::create_symlink(precious, open / name);
    ChildProcess process(Session({"measure"}), Variables({{"XDG_RUNTIME_DIR", open}}), account_.Output());
    const fs::path journal = account_.SettingsFolder() / "sonavex-mixer-levels";
    EXPECT_TRUE(WaitUntil([&] { return fs::exists(journal); })) << FileText(account_.Output());
    ASSERT_TRUE(process.WaitForEnd(60s));
    EXPECT_EQ(process.Status(), 0) << FileText(account_.Output());
    EXPECT_THAT(NamesIn(account_.SettingsFolder()), ElementsAre("Sonavex.ini", "sonavex.lock"));
    EXPECT_EQ(fs::status(account_.SettingsFolder()).permissions(), fs::perms::owner_all);
    EXPECT_FALSE(fs::exists(precious));
    for (const auto& entry : fs::directory_iterator(open))
        EXPECT_TRUE(fs::is_symlink(entry.symlink_status()));
}

// Links in the user's own folders are not followed either.
TEST_F(LeastPrivilege, LinksInPlaceOfLockAndJournalAreNotFollowed) {
    const fs::path precious = account_.Home() / "precious";
    for (const char* const name : {"sonavex.lock", "sonavex-mixer-levels", "sonavex-mixer-levels.new"})
        fs::create_symlink(precious, account_.Runtime() / name);
    fs::create_directories(account_.SettingsFolder());
    fs::create_symlink(precious, account_.SettingsFolder() / "sonavex.lock");
    Run(Session({"measure"}));
    EXPECT_FALSE(fs::exists(precious));
}

}  // namespace
}  // namespace sonavex
