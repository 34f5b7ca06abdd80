// An installed copy in a private folder.

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/ports/Help.h"
#include "core/shell/frmMain.h"
#include "platform/chm/ChmHelpBook.h"
#include "support/ChildProcess.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Optional;
namespace fs = std::filesystem;

class InstalledCopyTest : public testing::Test {
protected:
    InstalledCopyTest() {
        RunProgram({"cmake", "--install", SONAVEX_BUILD_FOLDER, "--prefix", folder.Path() / "usr", "--strip"},
                   {}, 60s);
    }
    fs::path Installed(const std::string& path) const { return folder.Path() / "usr" / path; }
    static std::string Content(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    PrivateFolder folder;
};

TEST_F(InstalledCopyTest, HasTheHelpFileWhereTheProgramLooksForIt) {
    const fs::path program = fs::canonical(Installed("bin/sonavex"));
    const ChmHelpBook book(frmMain::HelpFileIn(program.parent_path()));
    for (const auto& [topic, page] : {std::pair{help_topic::kSoundDeviceError, "error.html"},
                                      std::pair{help_topic::kSoundDevices, "devices.html"}}) {
        EXPECT_THAT(book.PageOfTopic(topic), Optional(std::string(page)));
        EXPECT_THAT(book.Read(page), Optional(HasSubstr("<h1>")));
    }
}

TEST_F(InstalledCopyTest, HasEverythingThatADesktopLooksFor) {
    for (const char* file :
         {"bin/sonavex-measure", "bin/sonavex-plot", "lib/sonavex/sonavex",
          "share/applications/sonavex.desktop", "share/metainfo/example.sonavex.Sonavex.metainfo.xml",
          "share/man/man1/sonavex.1.gz", "share/man/man1/sonavex-measure.1.gz",
          "share/man/man1/sonavex-plot.1.gz", "share/doc/sonavex/copyright",
          "share/icons/hicolor/scalable/apps/sonavex.svg", "share/icons/hicolor/16x16/apps/sonavex.png",
          "share/icons/hicolor/512x512/apps/sonavex.png"})
        EXPECT_GT(fs::file_size(Installed(file)), 100U) << file;
    EXPECT_THAT(Content(Installed("share/applications/sonavex.desktop")), HasSubstr("\nExec=sonavex\n"));
}

// The version is defined in one place.
TEST_F(InstalledCopyTest, AgreesOnTheVersion) {
    const std::string version = SONAVEX_VERSION;
    EXPECT_THAT(RunProgram({Installed("bin/sonavex-measure"), "--version"}, {}, 20s), HasSubstr(version));
    EXPECT_THAT(RunProgram({Installed("bin/sonavex-plot"), "--version"}, {}, 20s), HasSubstr(version));
    EXPECT_THAT(Content(Installed("share/metainfo/example.sonavex.Sonavex.metainfo.xml")),
                HasSubstr("<release version=\"" + version + "\""));
    for (const char* page : {"share/man/man1/sonavex.1.gz", "share/man/man1/sonavex-measure.1.gz",
                             "share/man/man1/sonavex-plot.1.gz"})
        EXPECT_THAT(RunProgram({"gzip", "--decompress", "--stdout", Installed(page)}, {}, 20s),
                    HasSubstr("\"Sonavex " + version + "\""));
}

TEST_F(InstalledCopyTest, HoldsNoPathOfTheMachineThatBuiltIt) {
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder.Path())) {
        if (!entry.is_regular_file()) continue;
        ++files;
        const std::string content = Content(entry.path());
        for (const char* path : {SONAVEX_SOURCE_FOLDER, SONAVEX_BUILD_FOLDER})
            EXPECT_EQ(content.find(path), std::string::npos) << entry.path() << " holds " << path;
    }
    EXPECT_GT(files, 15);
}

}  // namespace
}  // namespace sonavex
