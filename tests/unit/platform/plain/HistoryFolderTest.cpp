#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <sstream>
#include <thread>

#include "platform/plain/HistoryFolder.h"
#include "platform/plain/UserFolders.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/ScopedVariable.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr const char* kDay = "2026-11-23";

class HistoryFolderTest : public testing::Test {
protected:
    fs::path Folder() const { return private_.Path() / "data" / "history"; }
    fs::path File() const { return Folder() / "2026-11-23.jsonl"; }
    std::string Text() const { return files_.Read(kDay); }

    // The sentence of the FileError that the call throws.
    template <typename Call>
    static std::string FailureOf(Call call) {
        try {
            call();
        } catch (const FileError& error) {
            return error.what();
        }
        return "no failure";
    }

    PrivateFolder private_;
    HistoryFolder files_{Folder()};
};

// Limits the length of the files that this process writes.
class FileLimit {
public:
    explicit FileLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FileLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileLimit(const FileLimit&) = delete;
    FileLimit& operator=(const FileLimit&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

TEST_F(HistoryFolderTest, IsEmptyBeforeTheFirstLine) {
    EXPECT_THAT(files_.Days(), IsEmpty());
    EXPECT_EQ(Text(), "");
    files_.Sync(kDay);
    EXPECT_FALSE(fs::exists(Folder()));
}

TEST_F(HistoryFolderTest, KeepsLinesByDay) {
    files_.Append(kDay, "one");
    files_.Append("2026-01-02", "older");
    files_.Append(kDay, "two");
    files_.Sync(kDay);
    EXPECT_EQ(Text(), "one\ntwo\n");
    EXPECT_THAT(files_.Days(), ElementsAre("2026-01-02", kDay));
}

TEST_F(HistoryFolderTest, IgnoresOtherFiles) {
    files_.Append(kDay, "one");
    for (const char* const name :
         {"2026-11-23.jsonl~", "notes.txt", ".2026-11-23.jsonl.new", "2026-1-2.jsonl"})
        WriteFile(Folder() / name, "x");
    EXPECT_THAT(files_.Days(), ElementsAre(kDay));
}

TEST_F(HistoryFolderTest, BelongsToTheUserAlone) {
    const mode_t before = umask(0);
    files_.Append(kDay, "one");
    umask(before);
    EXPECT_EQ(fs::status(File()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(Folder()).permissions(), fs::perms::owner_all);
    ASSERT_TRUE(files_.Replace(kDay, "one\n", "two\n"));
    EXPECT_EQ(fs::status(File()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(HistoryFolderTest, EndsTheIncompleteLineOfAKilledProcess) {
    files_.Append(kDay, "one");
    WriteFile(File(), Text() + "incompl");
    files_.Append(kDay, "two");
    EXPECT_EQ(Text(), "one\nincompl\ntwo\n");
}

// A full disk takes the first bytes of a line.
TEST_F(HistoryFolderTest, WithoutRoomStaysAsItWas) {
    files_.Append(kDay, "one");
    {
        const FileLimit limit(100);
        EXPECT_THAT(FailureOf([&] { files_.Append(kDay, std::string(5000, 'n')); }),
                    HasSubstr("2026-11-23.jsonl' cannot be written: File too large"));
        EXPECT_EQ(Text(), "one\n");
        EXPECT_THAT(FailureOf([&] { files_.Replace(kDay, "one\n", std::string(5000, 'n')); }),
                    HasSubstr("cannot be written: File too large"));
    }
    EXPECT_EQ(Text(), "one\n");
    EXPECT_THAT(NamesIn(Folder()), ElementsAre("2026-11-23.jsonl"));
    files_.Append(kDay, "two");
    EXPECT_EQ(Text(), "one\ntwo\n");
}

TEST_F(HistoryFolderTest, NamesWhatIsInTheWay) {
    WriteFile(private_.Path() / "data", "a file");
    EXPECT_THAT(FailureOf([&] { files_.Append(kDay, "one"); }),
                HasSubstr("cannot be created: Not a directory"));
    fs::remove(private_.Path() / "data");
    fs::create_directories(File());
    EXPECT_THAT(FailureOf([&] { files_.Append(kDay, "one"); }),
                HasSubstr("cannot be written: Is a directory"));
    EXPECT_THAT(FailureOf([&] { files_.Read(kDay); }), HasSubstr("cannot be read"));
}

TEST_F(HistoryFolderTest, IsNotReplacedAfterAChange) {
    files_.Append(kDay, "one");
    files_.Append(kDay, "two");
    EXPECT_FALSE(files_.Replace(kDay, "one\n", ""));
    EXPECT_EQ(Text(), "one\ntwo\n");
    EXPECT_TRUE(files_.Replace(kDay, "one\ntwo\n", "two\n"));
    EXPECT_EQ(Text(), "two\n");
    EXPECT_TRUE(files_.Replace(kDay, "two\n", ""));
    EXPECT_THAT(NamesIn(Folder()), IsEmpty());
}

// Each writer and the compaction lock and open the files as separate processes do.
TEST_F(HistoryFolderTest, LosesNoLineToAConcurrentCompaction) {
    constexpr int kWriters = 3;
    constexpr int kLinesOfAWriter = 150;
    files_.Append(kDay, "dead");
    std::atomic<int> replaced{0};
    std::atomic<bool> over{false};
    std::thread compaction([&] {
        while (!over) {
            const std::string before = files_.Read(kDay);
            std::string after = before;
            const std::size_t dead = after.find("dead\n");
            if (dead != std::string::npos) after.erase(dead, 5);
            if (files_.Replace(kDay, before, after)) ++replaced;
        }
    });
    std::vector<std::thread> writers;
    for (int writer = 0; writer < kWriters; ++writer)
        writers.emplace_back([this, writer] {
            HistoryFolder own(Folder());
            for (int line = 0; line < kLinesOfAWriter; ++line) {
                own.Append(kDay, std::to_string(writer) + ' ' + std::to_string(line));
                own.Append(kDay, "dead");
                // Only while all writers pause can a compaction succeed.
                if (line % 10 == 9) std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        });
    for (std::thread& writer : writers) writer.join();
    over = true;
    compaction.join();

    std::vector<int> next(kWriters, 0);
    std::istringstream lines(Text());
    for (std::string line; std::getline(lines, line);) {
        if (line == "dead") continue;
        const auto writer = static_cast<std::size_t>(line.at(0) - '0');
        ASSERT_EQ(line, std::to_string(writer) + ' ' + std::to_string(next.at(writer)++));
    }
    EXPECT_THAT(next, testing::Each(kLinesOfAWriter));
    EXPECT_GT(replaced, 0);
}

TEST_F(HistoryFolderTest, IsInTheDataFolderOfTheUser) {
    const ScopedVariable home("HOME", "/users/a");
    {
        const ScopedVariable data("XDG_DATA_HOME", "/data");
        EXPECT_EQ(HistoryFolder::OfTheUser(), "/data/Sonavex/history");
    }
    const ScopedVariable relative("XDG_DATA_HOME", "data");
    EXPECT_EQ(HistoryFolder::OfTheUser(), "/users/a/.local/share/Sonavex/history");
    const ScopedVariable homeless("HOME", "");
    EXPECT_THAT(FailureOf([] { HistoryFolder::OfTheUser(); }), HasSubstr("HOME is not set"));
}

}  // namespace
}  // namespace sonavex
