#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <csignal>
#include <random>

#include "adapters/qt/SettingsRig.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

// Limits the size of this process's files during its lifetime, like a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t room = 0) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit little{room, limit_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &little);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit limit_{};
    void (*handler_)(int);
};

std::string RandomBytes(unsigned seed, std::size_t size) {
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

class QtSettingsStoreFailure : public SettingsRig {
protected:
    static double SecondsOf(const std::function<void()>& action) {
        const auto start = std::chrono::steady_clock::now();
        action();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
};

TEST_F(QtSettingsStoreFailure, AnImpossibleFolderIsReportedOnceAndTheRunContinues) {
    WriteFile(folder_.Path() / "file", "");
    {
        const auto store = Open(folder_.Path() / "file" / "Sonavex" / "Sonavex.ini");
        EXPECT_EQ(store->Get("Settings", "Auto", "1"), "1");
        EXPECT_TRUE(reports_.empty());
        for (int i = 0; i < 3; ++i) {
            store->Save("Settings", "Auto", std::to_string(i));
            QCoreApplication::processEvents();
            EXPECT_EQ(store->Get("Settings", "Auto", "none"), std::to_string(i));
        }
        store->Save("SoundCard", "Input", "x");
        store->DeleteSection("SoundCard");
        EXPECT_FALSE(store->Write());
        EXPECT_EQ(store->Get("SoundCard", "Input", "none"), "none");
        EXPECT_EQ(store->Get("Settings", "Auto", "none"), "2");
    }
    ASSERT_THAT(reports_, SizeIs(1));
    EXPECT_THAT(reports_[0], HasSubstr("file/Sonavex/Sonavex.ini"));
    EXPECT_THAT(reports_[0], HasSubstr("Not a directory"));
}

TEST_F(QtSettingsStoreFailure, AFullDiskKeepsTheOldFileAndTheNewValues) {
    const auto store = Open();
    store->Save("Settings", "Auto", "old");
    ASSERT_TRUE(store->Write());
    const std::string text = FileText(File());
    {
        const FullDisk full;
        store->Save("Settings", "Auto", "new");
        store->Save("Settings", "Baseline", "1");
        EXPECT_FALSE(store->Write());
        store->Save("Windows", "LastTab", "1");
        EXPECT_FALSE(store->Write());
        EXPECT_EQ(store->Get("Settings", "Auto", "none"), "new");
    }
    EXPECT_EQ(FileText(File()), text);
    EXPECT_THAT(reports_, SizeIs(1));
    // With room again, the next write includes everything.
    store->Save("Windows", "LastTab", "2");
    EXPECT_TRUE(store->Write());
    EXPECT_EQ(Stored("Settings", "Auto"), "new");
    EXPECT_EQ(Stored("Settings", "Baseline"), "1");
    EXPECT_EQ(Stored("Windows", "LastTab"), "2");
    EXPECT_THAT(reports_, SizeIs(1));
    EXPECT_THAT(FilesInFolder(), ElementsAre("Sonavex.ini"));
}

TEST_F(QtSettingsStoreFailure, ADiskWithRoomForAPartTakesNone) {
    const auto store = Open();
    store->Save("Settings", "Auto", "old");
    ASSERT_TRUE(store->Write());
    const std::string text = FileText(File());
    for (const std::size_t length : {2000U, 10000U, 20000U, 60000U}) {
        const FullDisk full(1000);
        store->Save("Settings", "Auto", std::string(length, 'n'));
        EXPECT_FALSE(store->Write()) << length;
        EXPECT_EQ(FileText(File()), text) << length;
    }
    EXPECT_THAT(reports_, SizeIs(1));
    EXPECT_THAT(FilesInFolder(), ElementsAre("Sonavex.ini"));
}

TEST_F(QtSettingsStoreFailure, AFolderInPlaceOfTheFileIsLeftAlone) {
    std::filesystem::create_directories(File() / "inside");
    const auto store = Open();
    store->Save("Settings", "Auto", "0");
    EXPECT_FALSE(store->Write());
    EXPECT_EQ(store->Get("Settings", "Auto", "none"), "0");
    EXPECT_TRUE(std::filesystem::is_directory(File() / "inside"));
    ASSERT_THAT(reports_, SizeIs(1));
    EXPECT_THAT(reports_[0], HasSubstr("it is not a file"));
}

TEST_F(QtSettingsStoreFailure, APipeInPlaceOfTheFileBlocksNothing) {
    ASSERT_EQ(mkfifo(File().c_str(), 0600), 0);
    EXPECT_LT(SecondsOf([&] {
                  const auto store = Open();
                  store->Save("Settings", "Auto", "0");
                  EXPECT_EQ(store->Get("Settings", "Auto", "none"), "0");
                  EXPECT_FALSE(store->Write());
              }),
              5);
    EXPECT_THAT(reports_, SizeIs(1));
}

TEST_F(QtSettingsStoreFailure, RandomBytesAreKeptAsideBeforeANewFileIsWritten) {
    std::vector<std::string> names{"Sonavex.ini", "Sonavex.ini.damaged"};
    for (unsigned seed = 0; seed < 5; ++seed) {
        const std::string bytes = RandomBytes(seed, 4096);
        WriteFile(File(), bytes);
        reports_.clear();
        {
            const auto store = Open();
            EXPECT_EQ(store->Get("Settings", "Auto", "1"), "1");
            // Reading changes nothing.
            EXPECT_EQ(FileText(File()), bytes);
            EXPECT_TRUE(reports_.empty());
            store->Save("Settings", "Auto", std::to_string(seed));
            EXPECT_TRUE(store->Write());
            store->Save("Settings", "Auto", "again");
            EXPECT_TRUE(store->Write());
        }
        const std::string name = "Sonavex.ini.damaged" + (seed == 0 ? "" : "-" + std::to_string(seed));
        EXPECT_EQ(FileText(Folder() / name), bytes);
        EXPECT_EQ(Stored("Settings", "Auto"), "again");
        ASSERT_THAT(reports_, SizeIs(1));
        EXPECT_THAT(reports_[0], HasSubstr("is damaged"));
        EXPECT_THAT(reports_[0], HasSubstr((Folder() / name).string()));
    }
    EXPECT_EQ(FileText(Folder() / "Sonavex.ini.damaged"), RandomBytes(0, 4096));
    EXPECT_THAT(FilesInFolder(), SizeIs(6));
}

TEST_F(QtSettingsStoreFailure, TheCopiesOfDamagedFilesHaveALimit) {
    for (int i = 0; i < 110; ++i) {
        WriteFile(File(), std::string(1, '\0') + std::to_string(i));
        Open()->Save("Settings", "Auto", "1");
    }
    EXPECT_THAT(FilesInFolder(), SizeIs(101));
    EXPECT_EQ(FileText(Folder() / "Sonavex.ini.damaged-98"), std::string(1, '\0') + "98");
    EXPECT_EQ(FileText(Folder() / "Sonavex.ini.damaged-99"), std::string(1, '\0') + "109");
}

TEST_F(QtSettingsStoreFailure, ALineThatCannotBeUnderstoodCostsNoOtherValue) {
    const std::string text = "[Settings]\nAuto=0\nthis line has no sign\n[Windo";
    WriteFile(File(), text);
    Open()->Save("Settings", "Baseline", "1");
    EXPECT_EQ(FileText(Folder() / "Sonavex.ini.damaged"), text);
    EXPECT_EQ(Stored("Settings", "Auto"), "0");
    EXPECT_EQ(Stored("Settings", "Baseline"), "1");
    EXPECT_THAT(reports_, SizeIs(1));
}

TEST_F(QtSettingsStoreFailure, DamageDuringTheRunCostsNoValue) {
    const auto store = Open();
    store->Save("Settings", "Auto", "0");
    ASSERT_TRUE(store->Write());
    const std::string bytes = RandomBytes(7, 300);
    WriteFile(File(), bytes);
    EXPECT_EQ(store->Get("Settings", "Auto", "none"), "0");
    store->Save("Settings", "Baseline", "1");
    EXPECT_TRUE(store->Write());
    EXPECT_EQ(Stored("Settings", "Auto"), "0");
    EXPECT_EQ(Stored("Settings", "Baseline"), "1");
    EXPECT_EQ(FileText(Folder() / "Sonavex.ini.damaged"), bytes);
}

TEST_F(QtSettingsStoreFailure, ADamagedFileOnAFullDiskIsKeptOnce) {
    const std::string bytes = RandomBytes(8, 300);
    WriteFile(File(), bytes);
    const auto store = Open();
    {
        const FullDisk full;
        for (int i = 0; i < 4; ++i) {
            store->Save("Settings", "Auto", std::to_string(i));
            EXPECT_FALSE(store->Write());
        }
        EXPECT_EQ(FileText(File()), bytes);
    }
    EXPECT_TRUE(store->Write());
    EXPECT_THAT(FilesInFolder(), ElementsAre("Sonavex.ini", "Sonavex.ini.damaged"));
    EXPECT_EQ(FileText(Folder() / "Sonavex.ini.damaged"), bytes);
    EXPECT_EQ(Stored("Settings", "Auto"), "3");
}

TEST_F(QtSettingsStoreFailure, AHugeFileIsNotRead) {
    WriteFile(File(), "[Settings]\nAuto=0\n");
    std::filesystem::resize_file(File(), std::uintmax_t{1} << 40);
    EXPECT_LT(SecondsOf([&] { Open()->Save("Settings", "Baseline", "1"); }), 5);
    EXPECT_EQ(std::filesystem::file_size(Folder() / "Sonavex.ini.damaged"), std::uintmax_t{1} << 40);
    EXPECT_EQ(Stored("Settings", "Baseline"), "1");
}

// Qt's lock file of a process killed at the worst moment names no owner.
TEST_F(QtSettingsStoreFailure, ALockThatWasLeftBehindDelaysNothing) {
    WriteFile(File().string() + ".lock", "");
    WriteFile(File().string() + ".new.lock", "");
    EXPECT_LT(SecondsOf([&] {
                  const auto store = Open();
                  store->Save("Settings", "Auto", "0");
                  EXPECT_TRUE(store->Write());
              }),
              5);
    EXPECT_EQ(Stored("Settings", "Auto"), "0");
    EXPECT_THAT(FilesInFolder(), ElementsAre("Sonavex.ini"));
}

// Temporary files have random names on disks without unnamed files.
TEST_F(QtSettingsStoreFailure, FilesOfProcessesThatWereKilledDoNotPileUp) {
    for (const char* const left : {".new", ".new.lock", ".new.aBcDeF", ".new.ZZZZZZ"})
        WriteFile(File().string() + left, "[Settings]\nAuto=9\n");
    for (const char* const kept : {".backup", ".damaged", "~"}) WriteFile(File().string() + kept, "kept");
    Open()->Save("Settings", "Auto", "0");
    EXPECT_EQ(Stored("Settings", "Auto"), "0");
    EXPECT_THAT(FilesInFolder(),
                ElementsAre("Sonavex.ini", "Sonavex.ini.backup", "Sonavex.ini.damaged", "Sonavex.ini~"));
}

TEST_F(QtSettingsStoreFailure, AStalledProcessIsNotWaitedForTwice) {
    const int other = open(Folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    const auto store = Open();
    const auto saveAndWrite = [&](const std::string& value) {
        store->Save("Settings", "Auto", value);
        EXPECT_TRUE(store->Write());
        EXPECT_EQ(Stored("Settings", "Auto"), value);
    };
    EXPECT_LT(SecondsOf([&] { saveAndWrite("0"); }), 8);
    EXPECT_LT(SecondsOf([&] {
                  for (int i = 1; i <= 5; ++i) saveAndWrite(std::to_string(i));
              }),
              8);
    close(other);
    EXPECT_TRUE(reports_.empty());
}

// A message box runs an event loop, in which settings may be saved again.
TEST_F(QtSettingsStoreFailure, AReportMaySaveAndRunTheEventLoop) {
    WriteFile(File(), RandomBytes(9, 300));
    std::unique_ptr<QtSettingsStore> store;
    int reports = 0;
    store = std::make_unique<QtSettingsStore>(File(), [&](const std::string&) {
        ++reports;
        store->Save("Settings", "Baseline", "1");
        QCoreApplication::processEvents();
        EXPECT_EQ(Stored("Settings", "Baseline"), "1");
    });
    store->Save("Settings", "Auto", "0");
    EXPECT_TRUE(store->Write());
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(Stored("Settings", "Auto"), "0");
    EXPECT_EQ(Stored("Settings", "Baseline"), "1");
}

}  // namespace
}  // namespace sonavex
