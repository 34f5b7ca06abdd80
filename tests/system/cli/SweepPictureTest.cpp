// Pictures of runs, which another program draws.

#include <gmock/gmock.h>

#include "core/run/StoredRun.h"
#include "support/Files.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::StartsWith;

Arguments PicturedSweep(const Arguments& more) {
    Arguments arguments{"sweep", "--rate", "8000", "--length", "4096", "--over",  "frequency", "--from",
                        "250",   "--to",   "1000", "--points", "3",    "--limit", "thdn:-60"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

TEST(SweepPicture, IsDrawnAfterTheRun) {
    const PrivateFolder folder;
    const std::string picture = folder.Path() / "run.png";
    const std::string saved = folder.Path() / "run.json";
    MeasureProgram program(PicturedSweep({"--png", picture, "--save", saved}), kSimulated);
    const Outcome outcome = program.End(60s);
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.Json().size(), 3U);
    EXPECT_EQ(FileText(picture).substr(0, 6), "\x89PNG\r\n");
    EXPECT_GT(std::filesystem::file_size(picture), 20000U);

    const MeasuredRun run = ParseStoredRun(FileText(saved));
    EXPECT_EQ(run.results.size(), 3U);
    const std::string page = folder.Path() / "run.pdf";
    RunProgram({SONAVEX_PLOT, page, saved}, {}, 30s);
    EXPECT_EQ(FileText(page).substr(0, 5), "%PDF-");
}

TEST(SweepPicture, ARunThatIsNoneLeavesThePicture) {
    const PrivateFolder folder;
    const std::string picture = folder.Path() / "run.png";
    const std::string run = folder.Path() / "run.json";
    WriteFile(picture, "before");
    WriteFile(run, "[]");
    ChildProcess program({SONAVEX_PLOT, picture, run}, {}, folder.Path() / "output");
    ASSERT_TRUE(program.WaitForEnd(30s));
    EXPECT_EQ(program.Status(), 1);
    EXPECT_THAT(FileText(folder.Path() / "output"),
                HasSubstr("sonavex-plot: The stored run: it is not an object.\n"));
    EXPECT_EQ(FileText(picture), "before");
}

TEST(SweepPicture, WithoutTheProgramNothingSounds) {
    const PrivateFolder folder;
    const std::filesystem::path alone = folder.Path() / "sonavex-measure";
    std::filesystem::copy_file(SONAVEX_MEASURE, alone);
    Arguments command = PicturedSweep({"--png", folder.Path() / "run.png"});
    command.insert(command.begin(), alone);
    ChildProcess program(command, kSimulated, folder.Path() / "output", folder.Path() / "errors");
    ASSERT_TRUE(program.WaitForEnd(30s));
    EXPECT_EQ(program.Status(), 1);
    EXPECT_EQ(FileText(folder.Path() / "output"), "");
    EXPECT_EQ(FileText(folder.Path() / "errors"),
              "sonavex-measure: sonavex-plot is not installed beside sonavex-measure; --png needs it.\n");
}

TEST(SweepPicture, AnUnwritablePictureKeepsTheResults) {
    MeasureProgram program(PicturedSweep({"--png", "/proc/none/run.png"}), kSimulated);
    const Outcome outcome = program.End(60s);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.Json().size(), 3U);
    EXPECT_THAT(outcome.errors, HasSubstr("sonavex-plot: The file '/proc/none/run.png' cannot be written"));
    EXPECT_THAT(outcome.errors, HasSubstr("sonavex-plot failed; the picture was not drawn."));
}

TEST(SweepPicture, AnUnwritableFileLeavesTheOthers) {
    const PrivateFolder folder;
    const std::string saved = folder.Path() / "run.json";
    MeasureProgram program(PicturedSweep({"--csv", "/proc/none/run.csv", "--save", saved}), kSimulated);
    const Outcome outcome = program.End(60s);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.Json().size(), 3U);
    EXPECT_THAT(outcome.errors,
                HasSubstr("sonavex-measure: The file '/proc/none/run.csv' cannot be written"));
    EXPECT_THAT(FileText(saved), StartsWith("{"));
}

}  // namespace
}  // namespace sonavex
