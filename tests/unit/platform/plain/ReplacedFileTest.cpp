#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <sstream>

#include "platform/plain/ReplacedFile.h"

namespace sonavex {
namespace {

namespace fs = std::filesystem;

class ReplacedFileTest : public testing::Test {
protected:
    ReplacedFileTest() {
        std::string pattern = (fs::temp_directory_path() / "sonavex-").string() + std::string(6, 'X');
        folder_ = mkdtemp(pattern.data());
    }
    ~ReplacedFileTest() override { fs::remove_all(folder_); }

    fs::path File() const { return folder_ / "output.wav"; }
    static std::string Text(const fs::path& file) {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }
    static fs::perms Rights(const fs::path& file) { return fs::status(file).permissions(); }
    std::ptrdiff_t Files() const {
        return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
    }
    static void Replace(const fs::path& path, const std::string& text) {
        ReplacedFile file(path);
        ASSERT_FALSE(file.Write(text));
        ASSERT_FALSE(file.Commit());
    }

    fs::path folder_;
};

TEST_F(ReplacedFileTest, HasItsNameOnceItIsComplete) {
    std::ofstream(File()) << "old";
    {
        ReplacedFile file(File());
        ASSERT_FALSE(file.Write("new "));
        ASSERT_FALSE(file.Write("text"));
        EXPECT_EQ(Text(File()), "old");
        ASSERT_FALSE(file.Commit());
        EXPECT_EQ(Text(File()), "new text");
    }
    EXPECT_EQ(Text(File()), "new text");
    EXPECT_EQ(Files(), 1);
}

TEST_F(ReplacedFileTest, NeverHasItOtherwise) {
    {
        ReplacedFile file(File());
        ASSERT_FALSE(file.Write("half"));
    }
    EXPECT_EQ(Files(), 0);
}

TEST_F(ReplacedFileTest, KeepsTheRightsOfTheOldOneAndGoesByTheMaskElse) {
    const mode_t before = umask(027);
    Replace(File(), "text");
    umask(before);
    EXPECT_EQ(Rights(File()), static_cast<fs::perms>(0640));
    fs::permissions(File(), static_cast<fs::perms>(0604));
    Replace(File(), "other");
    EXPECT_EQ(Rights(File()), static_cast<fs::perms>(0604));
}

TEST_F(ReplacedFileTest, FollowsALink) {
    fs::create_directory(folder_ / "deep");
    std::ofstream(folder_ / "deep" / "target") << "old";
    fs::create_symlink("deep/target", File());
    Replace(File(), "new");
    EXPECT_TRUE(fs::is_symlink(File()));
    EXPECT_EQ(Text(folder_ / "deep" / "target"), "new");
}

// A file left by a process that was killed just before the rename.
TEST_F(ReplacedFileTest, IsNotStoppedByWhatWasLeft) {
    std::ofstream(folder_ / ".output.wav.new") << "left";
    Replace(File(), "new");
    EXPECT_EQ(Text(File()), "new");
    EXPECT_EQ(Files(), 1);
}

TEST_F(ReplacedFileTest, WritesIntoWhatIsNoFileOfADisk) {
    ReplacedFile full("/dev/full");
    EXPECT_FALSE(full.Error());
    EXPECT_EQ(full.Write("text"), std::errc::no_space_on_device);
    ReplacedFile none("/dev/null");
    EXPECT_FALSE(none.Write("text"));
    EXPECT_FALSE(none.Commit());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(ReplacedFileTest, SaysWhyItCannotBeWritten) {
    EXPECT_EQ(ReplacedFile(folder_).Error(), std::errc::is_a_directory);
    EXPECT_EQ(ReplacedFile(folder_ / "missing" / "file").Error(), std::errc::no_such_file_or_directory);
    std::ofstream(File()) << "old";
    EXPECT_EQ(ReplacedFile(File() / "file").Error(), std::errc::not_a_directory);
    ReplacedFile refused(folder_ / "missing" / "file");
    EXPECT_TRUE(refused.Write("text"));
    EXPECT_TRUE(refused.Commit());
}

TEST_F(ReplacedFileTest, StaysAsItWasOnAFullDisk) {
    std::ofstream(File()) << "old";
    void (*const handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{1000, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    {
        ReplacedFile file(File());
        EXPECT_EQ(file.Write(std::string(5000, 'n')), std::errc::file_too_large);
        EXPECT_TRUE(file.Commit());
    }
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(Text(File()), "old");
    EXPECT_EQ(Files(), 1);
}

}  // namespace
}  // namespace sonavex
