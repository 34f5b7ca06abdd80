// Disks that are full and folders that cannot be written to: said in the instrument's own words, what was
// there stays as it was, and nothing hangs.

#include <gmock/gmock.h>

#include <chrono>

#include "cli/Recordings.h"
#include "safety/Account.h"
#include "safety/Confined.h"
#include "safety/Files.h"
#include "safety/Session.h"
#include "support/ChildProcess.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
namespace fs = std::filesystem;

// How a program ended, and what it printed.
struct Ending {
    int status = -1;
    std::string output;
};

constexpr unsigned long kLittle = 3000;  // bytes
constexpr const char* kOldError = "Quenby Error.txt";

std::string NameOfDisk(const testing::TestParamInfo<bool>& full) {
    return full.param ? "Full" : "ReadOnly";
}

class NoRoom : public testing::Test {
protected:
    NoRoom() { WriteSettings(""); }
    ~NoRoom() override {
        for (const auto& folder : Folders()) fs::permissions(folder, fs::perms::owner_all);
    }

    std::vector<fs::path> Folders() const {
        return {account_.SettingsFolder(), account_.Desktop(), account_.Documents()};
    }
    // More than fits into the little room.
    void WriteSettings(const std::string& more) {
        settings_ = "[Notes]\nLong=" + std::string(5000, 'n') + "\n" + more;
        WriteFile(account_.SettingsFile(), settings_);
    }
    fs::path Report() const { return account_.Documents() / "report.pdf"; }
    static void MakeReadOnly(const fs::path& folder) {
        fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    }

    // In little room when `full`; a folder's rights count in any case.
    Ending Run(bool full, const Arguments& command) {
        Confinement confinement;
        if (full) confinement.fileBytes = kLittle;
        fs::remove(account_.Output());
        ChildProcess process(Confined(confinement, command), account_.Variables(), account_.Output());
        EXPECT_TRUE(process.WaitForEnd(60s)) << FileText(account_.Output());
        return {process.Status(), FileText(account_.Output())};
    }

    Account account_;
    std::string settings_;
};

// The program goes on and ends in order, the old settings stay.
class NoRoomForSettings : public NoRoom, public testing::WithParamInterface<bool> {};

TEST_P(NoRoomForSettings, IsSaidOnceAndKeepsTheOldOnes) {
    const bool full = GetParam();
    if (!full) MakeReadOnly(account_.SettingsFolder());
    const Ending ending = Run(full, Session({"measure", "settings"}));
    EXPECT_EQ(ending.status, 0) << ending.output;
    const std::string message = "message: The settings cannot be stored in " +
                                account_.SettingsFile().string() + ": " +
                                (full ? "the file cannot be written" : "Permission denied") +
                                ". Changes stay in effect until the program ends.\n";
    EXPECT_THAT(ending.output, HasSubstr(message));
    EXPECT_EQ(ending.output.find("message:"), ending.output.rfind("message:")) << ending.output;
    EXPECT_THAT(ending.output, AllOf(EndsWith("done\n"), Not(HasSubstr("unexpected"))));
    EXPECT_EQ(FileText(account_.SettingsFile()), settings_);
    EXPECT_THAT(NamesIn(account_.SettingsFolder()), ElementsAre("Sonavex.ini"));
}

INSTANTIATE_TEST_SUITE_P(Disk, NoRoomForSettings, testing::Bool(), NameOfDisk);

class NoRoomForReports : public NoRoom, public testing::WithParamInterface<bool> {};

TEST_P(NoRoomForReports, IsSaidAndKeepsTheOldOne) {
    const bool full = GetParam();
    for (const char* const old : {"old", ""}) {
        if (*old != '\0') WriteFile(Report(), old);
        if (!full) MakeReadOnly(account_.Documents());
        const Ending ending = Run(full, Session({"file=" + Report().string()}));
        fs::permissions(account_.Documents(), fs::perms::owner_all);
        EXPECT_EQ(ending.status, 0) << ending.output;
        // Whether an old report is to be replaced was asked before.
        EXPECT_THAT(ending.output,
                    HasSubstr("message: The report could not be printed.  " + Report().string() + ": " +
                              (full ? "File too large" : "Permission denied") + "\n"));
        EXPECT_THAT(ending.output, AllOf(EndsWith("done\n"), Not(HasSubstr("unexpected"))));
        if (*old != '\0') {
            EXPECT_EQ(FileText(Report()), old);
            EXPECT_THAT(NamesIn(account_.Documents()), ElementsAre("report.pdf"));
            fs::remove(Report());
        } else {
            EXPECT_THAT(NamesIn(account_.Documents()), IsEmpty());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Disk, NoRoomForReports, testing::Bool(), NameOfDisk);

class NoRoomForTheErrorLog : public NoRoom, public testing::WithParamInterface<bool> {};

TEST_P(NoRoomForTheErrorLog, IsSaidInTheErrorItself) {
    const bool full = GetParam();
    WriteSettings("[SoundCard]\nOutput=gone\n");
    const fs::path log = account_.Desktop() / kOldError;
    const std::string old(4000, 'o');
    WriteFile(log, old);
    if (!full) fs::permissions(log, fs::perms::owner_read);
    const Ending ending = Run(full, Session({}));
    EXPECT_EQ(ending.status, 1) << ending.output;
    EXPECT_THAT(ending.output, HasSubstr("The file 'Quenby Error.txt' cannot be written on your desktop:"));
    EXPECT_THAT(ending.output, HasSubstr(full ? "File too large" : "Permission denied"));
    EXPECT_THAT(ending.output, AllOf(EndsWith("done\n"), Not(HasSubstr("unexpected"))));
    EXPECT_EQ(FileText(log), old);
    EXPECT_THAT(FileText(account_.SettingsFile()),
                AllOf(HasSubstr(std::string(5000, 'n')), HasSubstr("Output=gone\n")));
}

INSTANTIATE_TEST_SUITE_P(Disk, NoRoomForTheErrorLog, testing::Bool(), NameOfDisk);

class NoRoomForOutput : public NoRoom {
protected:
    NoRoomForOutput() { WriteRecording(Input(), {32000, 2}, Sine(1000.0, 32000, 0.5)); }
    fs::path Input() const { return account_.Home() / "recording.wav"; }
    fs::path Output() const { return account_.Documents() / "output.wav"; }

    void ExpectRefusal(bool full, const std::string& why) {
        const Ending ending = Run(full, {SONAVEX_MEASURE, "file", Input(), "--write", Output()});
        EXPECT_EQ(ending.status, 1);
        EXPECT_EQ(ending.output, "sonavex-measure: The output file '" + Output().string() +
                                     "' cannot be written: " + why + "\n");
    }
};

TEST_F(NoRoomForOutput, OnAFullDiskKeepsTheOldFile) {
    ExpectRefusal(true, "File too large.");
    EXPECT_THAT(NamesIn(account_.Documents()), IsEmpty());
    WriteFile(Output(), "old");
    ExpectRefusal(true, "File too large.");
    EXPECT_EQ(FileText(Output()), "old");
    EXPECT_THAT(NamesIn(account_.Documents()), ElementsAre("output.wav"));
}

// With every amount of room less than all of it.
TEST_F(NoRoomForOutput, IsCompleteOrNotThere) {
    constexpr unsigned long kAll = 44 + 37 * 2048 * 4;
    for (const unsigned long room :
         {1UL, 43UL, 44UL, 45UL, 8192UL + 44UL, kAll / 2, kAll - 8192UL, kAll - 1UL, kAll}) {
        Confinement confinement;
        confinement.fileBytes = room;
        // What it prints does not fit either.
        ChildProcess process(Confined(confinement, {SONAVEX_MEASURE, "file", Input(), "--write", Output()}),
                             account_.Variables(), "/dev/null");
        ASSERT_TRUE(process.WaitForEnd(60s));
        EXPECT_EQ(process.Status(), room == kAll ? 0 : 1) << room;
        EXPECT_EQ(fs::exists(Output()), room == kAll) << room;
    }
    EXPECT_EQ(fs::file_size(Output()), kAll);
    EXPECT_THAT(NamesIn(account_.Documents()), ElementsAre("output.wav"));
}

TEST_F(NoRoomForOutput, InAFolderOrAFileThatCannotBeWrittenIsRefused) {
    MakeReadOnly(account_.Documents());
    ExpectRefusal(false, "Permission denied");
    fs::permissions(account_.Documents(), fs::perms::owner_all);
    EXPECT_THAT(NamesIn(account_.Documents()), IsEmpty());
    WriteFile(Output(), "old");
    fs::permissions(Output(), fs::perms::owner_read);
    ExpectRefusal(false, "Permission denied");
    EXPECT_EQ(FileText(Output()), "old");
}

// The journal is no reason to keep the instrument from running.
TEST_F(NoRoom, ForTheJournalDoesNotKeepTheProgramFromRunning) {
    WriteFile(account_.SettingsFile(), "");
    fs::create_directory(account_.Journal());
    fs::create_directory(account_.Journal().string() + ".new");
    const Ending ending = Run(false, Session({"measure"}));
    EXPECT_EQ(ending.status, 0) << ending.output;
    EXPECT_THAT(ending.output, AllOf(EndsWith("done\n"), Not(HasSubstr("message"))));
}

}  // namespace
}  // namespace sonavex
