#include <gmock/gmock.h>
#include <sys/resource.h>

#include <QStandardPaths>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "core/support/RuntimeError.h"
#include "platform/qt/QtDesktopFiles.h"
#include "support/ChildProcess.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

// Limits the size of this process's files during its lifetime, like a full disk.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit small{bytes, limit_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() {
        setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, handler_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    rlimit limit_{};
    void (*handler_)(int);
};

class DesktopFolder : public testing::Test {
protected:
    DesktopFolder() { setenv("userprofile", folder.Path().c_str(), 1); }
    ~DesktopFolder() override { unsetenv("userprofile"); }

    fs::path Path() const { return folder.Path() / "desktop" / "Quenby Error.txt"; }
    std::string Content() const {
        std::ifstream file(Path(), std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    PrivateFolder folder;
    QtDesktopFiles files;
    const std::string name = "Quenby Error.txt";
};

TEST_F(DesktopFolder, IsMadeBelowTheUsersProfile) {
    files.Append(name, "one\n");
    files.Append(name, "two \xC3\xA4\r\n");
    EXPECT_EQ(Content(), "one\ntwo \xC3\xA4\r\n");
}

TEST_F(DesktopFolder, IsThatOfThePlatformWithoutAProfile) {
    setenv("userprofile", "", 1);
    EXPECT_EQ(QtDesktopFiles::Folder(), QStandardPaths::writableLocation(QStandardPaths::DesktopLocation));
}

TEST_F(DesktopFolder, OfThePlatformFollowsTheUsersChoice) {
    unsetenv("userprofile");
    const fs::path config = folder.Path() / "config";
    fs::create_directories(config);
    const fs::path desktop = folder.Path() / "My Desk";
    std::ofstream(config / "user-dirs.dirs") << "XDG_DESKTOP_DIR=\"" << desktop.string() << "\"\n";
    setenv("XDG_CONFIG_HOME", config.c_str(), 1);
    files.Append(name, "there\n");
    unsetenv("XDG_CONFIG_HOME");
    EXPECT_TRUE(fs::exists(desktop / name));
}

TEST_F(DesktopFolder, KeepsOneContentWhereTheFileIsReplaced) {
    files.Replace(name, "a longer text\n");
    files.Replace(name, "short\n");
    EXPECT_EQ(Content(), "short\n");
}

TEST_F(DesktopFolder, LosesAFileThatIsDeletedAndForgivesOneThatIsNotThere) {
    files.Append(name, "text");
    files.Delete(name);
    EXPECT_FALSE(fs::exists(Path()));
    EXPECT_NO_THROW(files.Delete(name));
}

TEST_F(DesktopFolder, ThatCannotBeMadeIsAnError) {
    std::ofstream(folder.Path() / "desktop") << "in the way";
    const RuntimeError error = Raised([&] { files.Append(name, "text"); }).value();
    EXPECT_EQ(error.Number(), 75);
    EXPECT_THAT(error.what(), HasSubstr((folder.Path() / "desktop").string()));
    EXPECT_NE(ErrorOf([&] { files.Replace(name, "text"); }), 0);
}

TEST_F(DesktopFolder, WithAFolderInPlaceOfTheFileIsAnError) {
    fs::create_directories(Path() / "inside");
    const RuntimeError error = Raised([&] { files.Append(name, "text"); }).value();
    EXPECT_THAT(error.what(), HasSubstr(Path().string()));
    EXPECT_NE(ErrorOf([&] { files.Replace(name, "text"); }), 0);
    EXPECT_NE(ErrorOf([&] { files.Delete(name); }), 0);
}

TEST_F(DesktopFolder, OnAFullDiskKeepsWhatWasThere) {
    files.Append(name, "first\n");
    {
        const SmallDisk disk(16);
        const RuntimeError error = Raised([&] { files.Append(name, std::string(100, 'x')); }).value();
        EXPECT_EQ(error.Number(), 61);
        EXPECT_THAT(error.what(), HasSubstr(name));
    }
    EXPECT_THAT(Content(), testing::StartsWith("first\n"));
    files.Append(name, "\nsecond\n");
    EXPECT_THAT(Content(), HasSubstr("\nsecond\n"));
}

TEST_F(DesktopFolder, OnAFullDiskKeepsTheOldReport) {
    files.Replace(name, "old\n");
    const SmallDisk disk(4);
    EXPECT_NE(ErrorOf([&] { files.Replace(name, std::string(100, 'x')); }), 0);
    EXPECT_EQ(Content(), "old\n");
}

}  // namespace
}  // namespace sonavex
