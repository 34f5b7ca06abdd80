#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "platform/plain/FileMixerJournal.h"

namespace sonavex {
namespace {

namespace fs = std::filesystem;

class Journal : public testing::Test {
protected:
    Journal() : folder_(fs::temp_directory_path() / ("sonavex-journal-" + std::to_string(getpid()))) {
        fs::remove_all(folder_);
    }
    ~Journal() override { fs::remove_all(folder_); }
    fs::path File() const { return folder_ / "deep" / "mixer-levels"; }

    fs::path folder_;
};

TEST_F(Journal, KeepsTheLastTextForTheNextRun) {
    FileMixerJournal journal(File());
    EXPECT_EQ(journal.Read(), "");
    journal.Write("first");
    journal.Write(std::string("second\n\xff\0x", 10));
    EXPECT_EQ(FileMixerJournal(File()).Read(), std::string("second\n\xff\0x", 10));
    EXPECT_EQ(fs::status(File()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(std::distance(fs::directory_iterator(File().parent_path()), fs::directory_iterator()), 1);
}

TEST_F(Journal, LeavesNoFileWhenNothingIsKept) {
    FileMixerJournal journal(File());
    journal.Write("text");
    journal.Write("");
    EXPECT_FALSE(fs::exists(File()));
    EXPECT_EQ(journal.Read(), "");
}

TEST_F(Journal, IsTheUsersAloneWhateverTheMask) {
    const mode_t before = umask(0);
    FileMixerJournal(File()).Write("text");
    umask(before);
    EXPECT_EQ(fs::status(File()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    for (const fs::path& made : {File().parent_path(), folder_})
        EXPECT_EQ(fs::status(made).permissions(), fs::perms::owner_all) << made;
}

// The old text stays, and no partial new text occupies the disk.
TEST_F(Journal, OnAFullDiskStaysAsItWas) {
    FileMixerJournal journal(File());
    journal.Write("old");
    {
        void (*const handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit small{100, limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
        journal.Write(std::string(5000, 'n'));
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, handler);
    }
    EXPECT_EQ(journal.Read(), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(File().parent_path()), fs::directory_iterator()), 1);
}

TEST_F(Journal, ThatCannotBeKeptIsNoError) {
    fs::create_directories(folder_);
    std::ofstream(folder_ / "deep") << "in the way";
    FileMixerJournal journal(File());
    journal.Write("text");
    EXPECT_EQ(journal.Read(), "");
}

TEST_F(Journal, OfAbsurdLengthIsNone) {
    fs::create_directories(File().parent_path());
    std::ofstream(File()) << std::string(2 << 20, 'x');
    EXPECT_EQ(FileMixerJournal(File()).Read(), "");
}

}  // namespace
}  // namespace sonavex
