// Full disks and read-only folders: the program reports them in its own words, old files stay unchanged, and
// nothing hangs.

#include <gmock/gmock.h>

#include <array>
#include <chrono>

#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/Recordings.h"
#include "system/safety/Account.h"
#include "system/safety/Confined.h"
#include "system/safety/OwnDisk.h"
#include "system/safety/Session.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
namespace fs = std::filesystem;

// Exit status and output of a program.
struct ProgramOutcome {
    int status = -1;
    std::string output;
};

constexpr unsigned long kLittle = 3000;  // bytes
constexpr const char* kOldError = "Quenby Error.txt";

// kRights: write permission is removed. kLimited: file size is limited to kLittle. kFull, kReadOnly: the
// user's folder is a private disk without a free block, or mounted read-only.
enum class Disk { kRights, kLimited, kFull, kReadOnly };

std::string NameOfDisk(const testing::TestParamInfo<Disk>& disk) {
    constexpr std::array kNames{"Rights", "Limited", "OwnDiskFull", "OwnDiskReadOnly"};
    return kNames[static_cast<std::size_t>(disk.param)];
}

std::string Refusal(Disk disk) {
    constexpr std::array kTexts{"Permission denied", "File too large", "No space left on device",
                                "Read-only file system"};
    return kTexts[static_cast<std::size_t>(disk)];
}

const auto kDisks = testing::Values(Disk::kRights, Disk::kLimited, Disk::kFull, Disk::kReadOnly);

class NoRoom : public testing::Test {
protected:
    NoRoom() { WriteSettings(""); }
    ~NoRoom() override {
        for (const auto& folder : Folders()) fs::permissions(folder, fs::perms::owner_all);
    }

    std::vector<fs::path> Folders() const {
        return {account_.SettingsFolder(), account_.Desktop(), account_.Documents()};
    }
    // Writes settings that exceed the limit.
    void WriteSettings(const std::string& more) {
        settings_ = "[Notes]\nLong=" + std::string(5000, 'n') + "\n" + more;
        WriteFile(account_.SettingsFile(), settings_);
    }
    fs::path Report() const { return account_.Documents() / "report.pdf"; }
    static void MakeReadOnly(const fs::path& folder) {
        fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    }

    // File permissions apply on every disk.
    ProgramOutcome Run(Disk disk, const Arguments& command) {
        Confinement confinement;
        if (disk == Disk::kLimited) confinement.fileBytes = kLittle;
        const Arguments confined = Confined(confinement, command);
        if (disk == Disk::kFull) return Ended(OnDiskWithRoom(account_.Home(), 0, confined));
        if (disk == Disk::kReadOnly) return Ended(OnReadOnlyDisk(account_.Home(), confined));
        return Ended(confined);
    }
    ProgramOutcome Ended(const Arguments& command) {
        fs::remove(account_.Output());
        ChildProcess process(command, account_.Variables(), account_.Output());
        EXPECT_TRUE(process.WaitForEnd(60s)) << FileText(account_.Output());
        return {process.Status(), FileText(account_.Output())};
    }

    Account account_;
    std::string settings_;
};

// The program continues and ends normally, and the old settings stay.
class NoRoomForSettings : public NoRoom, public testing::WithParamInterface<Disk> {};

TEST_P(NoRoomForSettings, IsSaidOnceAndKeepsTheOldOnes) {
    const Disk disk = GetParam();
    if (disk == Disk::kRights) MakeReadOnly(account_.SettingsFolder());
    const ProgramOutcome ending = Run(disk, Session({"measure", "settings"}));
    EXPECT_EQ(ending.status, 0) << ending.output;
    const std::string message = "message: The settings cannot be stored in " +
                                account_.SettingsFile().string() + ": " +
                                (disk == Disk::kLimited ? "the file cannot be written" : Refusal(disk)) +
                                ". Changes stay in effect until the program ends.\n";
    EXPECT_THAT(ending.output, HasSubstr(message));
    EXPECT_EQ(ending.output.find("message:"), ending.output.rfind("message:")) << ending.output;
    EXPECT_THAT(ending.output, AllOf(EndsWith("done\n"), Not(HasSubstr("unexpected"))));
    EXPECT_EQ(FileText(account_.SettingsFile()), settings_);
    std::vector<std::string> kept{"Sonavex.ini"};
    if (disk == Disk::kLimited || disk == Disk::kFull) kept.emplace_back("sonavex.lock");  // an empty file
    EXPECT_THAT(NamesIn(account_.SettingsFolder()), ElementsAreArray(kept));
}

INSTANTIATE_TEST_SUITE_P(Disk, NoRoomForSettings, kDisks, NameOfDisk);

class NoRoomForReports : public NoRoom, public testing::WithParamInterface<Disk> {};

TEST_P(NoRoomForReports, IsSaidAndKeepsTheOldOne) {
    const Disk disk = GetParam();
    for (const char* const old : {"old", ""}) {
        if (*old != '\0') WriteFile(Report(), old);
        if (disk == Disk::kRights) MakeReadOnly(account_.Documents());
        const ProgramOutcome ending = Run(disk, Session({"file=" + Report().string()}));
        fs::permissions(account_.Documents(), fs::perms::owner_all);
        EXPECT_EQ(ending.status, 0) << ending.output;
        // The question whether to replace the old report came first.
        EXPECT_THAT(ending.output, HasSubstr("message: The report could not be printed.  " +
                                             Report().string() + ": " + Refusal(disk) + "\n"));
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

INSTANTIATE_TEST_SUITE_P(Disk, NoRoomForReports, kDisks, NameOfDisk);

class NoRoomForTheErrorLog : public NoRoom, public testing::WithParamInterface<Disk> {};

TEST_P(NoRoomForTheErrorLog, IsSaidInTheErrorItself) {
    const Disk disk = GetParam();
    WriteSettings("[SoundCard]\nOutput=gone\n");
    const fs::path log = account_.Desktop() / kOldError;
    const std::string old(4000, 'o');
    WriteFile(log, old);
    if (disk == Disk::kRights) fs::permissions(log, fs::perms::owner_read);
    const ProgramOutcome ending = Run(disk, Session({}));
    EXPECT_EQ(ending.status, 1) << ending.output;
    EXPECT_THAT(ending.output, HasSubstr("The file 'Quenby Error.txt' cannot be written on your desktop:"));
    EXPECT_THAT(ending.output, HasSubstr(Refusal(disk)));
    EXPECT_THAT(ending.output, AllOf(EndsWith("done\n"), Not(HasSubstr("unexpected"))));
    if (disk == Disk::kFull) {
        // The last block of the old text has room left.
        EXPECT_THAT(FileText(log), StartsWith(old + "\n+++"));
    } else {
        EXPECT_EQ(FileText(log), old);
    }
    EXPECT_THAT(FileText(account_.SettingsFile()),
                AllOf(HasSubstr(std::string(5000, 'n')), HasSubstr("Output=gone\n")));
}

INSTANTIATE_TEST_SUITE_P(Disk, NoRoomForTheErrorLog, kDisks, NameOfDisk);

class NoRoomForOutput : public NoRoom {
protected:
    NoRoomForOutput() { WriteRecording(Input(), {32000, 2}, Sine(1000.0, 32000, 0.5)); }
    fs::path Input() const { return account_.Home() / "recording.wav"; }
    fs::path Output() const { return account_.Documents() / "output.wav"; }

    void ExpectRefusal(Disk disk, const std::string& why) {
        const ProgramOutcome ending = Run(disk, {SONAVEX_MEASURE, "file", Input(), "--write", Output()});
        EXPECT_EQ(ending.status, 1);
        EXPECT_EQ(ending.output, "sonavex-measure: The output file '" + Output().string() +
                                     "' cannot be written: " + why + "\n");
    }
    static constexpr unsigned long kAll = 44 + 37 * 2048 * 4;  // bytes of a complete file
};

// With every amount of room below the complete size.
TEST_F(NoRoomForOutput, IsCompleteOrNotThere) {
    for (const unsigned long room :
         {1UL, 43UL, 44UL, 45UL, 8192UL + 44UL, kAll / 2, kAll - 8192UL, kAll - 1UL, kAll}) {
        Confinement confinement;
        confinement.fileBytes = room;
        // Standard output does not fit either.
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
    ExpectRefusal(Disk::kRights, "Permission denied");
    fs::permissions(account_.Documents(), fs::perms::owner_all);
    EXPECT_THAT(NamesIn(account_.Documents()), IsEmpty());
    WriteFile(Output(), "old");
    fs::permissions(Output(), fs::perms::owner_read);
    ExpectRefusal(Disk::kRights, "Permission denied");
    EXPECT_EQ(FileText(Output()), "old");
}

class NoRoomForOutputOnDisk : public NoRoomForOutput, public testing::WithParamInterface<Disk> {};

TEST_P(NoRoomForOutputOnDisk, KeepsTheOldFile) {
    const Disk disk = GetParam();
    // A failure after the start of writing is reported by the library that writes recordings.
    const std::string why = Refusal(disk) + (disk == Disk::kReadOnly ? "" : ".");
    ExpectRefusal(disk, why);
    EXPECT_THAT(NamesIn(account_.Documents()), IsEmpty());
    WriteFile(Output(), "old");
    ExpectRefusal(disk, why);
    EXPECT_EQ(FileText(Output()), "old");
    EXPECT_THAT(NamesIn(account_.Documents()), ElementsAre("output.wav"));
}

INSTANTIATE_TEST_SUITE_P(Disk, NoRoomForOutputOnDisk,
                         testing::Values(Disk::kLimited, Disk::kFull, Disk::kReadOnly), NameOfDisk);

// Free blocks of a disk while a file is written that needs all of them.
TEST_F(NoRoomForOutput, OwnDiskAlmostFullHoldsTheCompleteFileOrNone) {
    constexpr std::uint32_t kBlocks = (kAll + 4095) / 4096;
    for (const std::uint32_t room : {1U, 2U, kBlocks / 2, kBlocks - 1, kBlocks}) {
        const ProgramOutcome ending = Ended(
            OnDiskWithRoom(account_.Home(), room, {SONAVEX_MEASURE, "file", Input(), "--write", Output()}));
        const std::string refusal = "cannot be written: " + Refusal(Disk::kFull);
        EXPECT_EQ(ending.output.find(refusal) == std::string::npos, room == kBlocks) << ending.output;
        EXPECT_EQ(ending.status, room == kBlocks ? 0 : 1) << room;
        EXPECT_EQ(fs::exists(Output()), room == kBlocks) << room;
    }
    EXPECT_EQ(fs::file_size(Output()), kAll);
    EXPECT_THAT(NamesIn(account_.Documents()), ElementsAre("output.wav"));
}

// A reading that cannot be stored is printed, and what was stored stays.
class NoRoomForHistory : public NoRoomForOutput, public testing::WithParamInterface<Disk> {};

TEST_P(NoRoomForHistory, KeepsWhatWasStored) {
    const Disk disk = GetParam();
    const fs::path folder = account_.Home() / ".local/share/Sonavex/history";
    const Arguments store{SONAVEX_MEASURE, "analyze", Input(), "--history"};
    ASSERT_EQ(Ended(store).status, 0);
    const fs::path file = folder / NamesIn(folder).at(0);
    const std::string stored = FileText(file);
    if (disk == Disk::kRights) fs::permissions(file, fs::perms::owner_read);
    const ProgramOutcome ending = Run(disk, store);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(ending.status, 1);
    EXPECT_THAT(ending.output, HasSubstr("THD+N "));
    EXPECT_THAT(ending.output, HasSubstr("sonavex-measure: The history '" + file.string() +
                                         "' cannot be written: " + Refusal(disk) + "\n"));
    EXPECT_EQ(FileText(file), stored);
    ASSERT_EQ(Ended(store).status, 0);
    EXPECT_THAT(FileText(file), AllOf(StartsWith(stored), EndsWith("\"}\n")));
    EXPECT_GT(fs::file_size(file), stored.size());
}

INSTANTIATE_TEST_SUITE_P(Disk, NoRoomForHistory, kDisks, NameOfDisk);

// A journal that cannot be written must not stop the instrument.
TEST_F(NoRoom, ForTheJournalDoesNotKeepTheProgramFromRunning) {
    WriteFile(account_.SettingsFile(), "");
    fs::create_directory(account_.Journal());
    fs::create_directory(account_.Journal().string() + ".new");
    const ProgramOutcome ending = Ended(Confined({}, Session({"measure"})));
    EXPECT_EQ(ending.status, 0) << ending.output;
    EXPECT_THAT(ending.output, AllOf(EndsWith("done\n"), Not(HasSubstr("message"))));
}

}  // namespace
}  // namespace sonavex
