// Readings that the command line stores and lists.

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "support/Files.h"
#include "support/Recordings.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using nlohmann::ordered_json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class HistoryCommand : public testing::Test {
protected:
    std::filesystem::path Folder() const { return data_.Path() / "Sonavex" / "history"; }
    Outcome Run(const Arguments& arguments) const {
        return Measure(arguments, {{"XDG_DATA_HOME", data_.Path().string()}});
    }
    std::vector<ordered_json> Listed(const Arguments& more = {}) const {
        Arguments arguments{"history", "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        return outcome.Json();
    }

    PrivateFolder data_;
    const RecordingFile tone_{
        {8000, 1, SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 40000}, [](std::int64_t frame, int) {
            const double t = 2.0 * std::numbers::pi * 440.3 * static_cast<double>(frame) / 8000.0;
            return 0.5 * (std::sin(t) + 0.01 * std::sin(2.0 * t));
        }};
    const RecordingFile silence_{{8000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 40000}, Silence()};
};

TEST_F(HistoryCommand, ListsWhatAnalyzeHasStored) {
    const Outcome analyzed = Run({"analyze", tone_.Path(), "--history", "--json"});
    ASSERT_EQ(analyzed.status, 0) << analyzed.errors;
    ASSERT_EQ(Run({"analyze", silence_.Path(), "--history"}).status, 2);
    const std::vector<ordered_json> entries = Listed();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0]["state"], "VOID");
    EXPECT_THAT(entries[0]["figures"], IsEmpty());
    EXPECT_EQ(entries[1]["state"], "VALID");
    EXPECT_EQ(entries[1]["recording"], tone_.Path().string());
    EXPECT_EQ(entries[1]["figures"][1]["name"], "thd_db");
    EXPECT_EQ(entries[1]["figures"][1]["value"], analyzed.Json().at(0)["thd_db"]);
    EXPECT_EQ(NamesIn(Folder()).size(), 1U);
    const std::vector<ordered_json> valid = Listed({"--valid"});
    ASSERT_EQ(valid.size(), 1U);
    EXPECT_EQ(valid[0]["id"], entries[1]["id"]);
    EXPECT_EQ(Listed({"--search", "VALID recording"}).size(), 1U);
    EXPECT_THAT(Listed({"--search", "elsewhere"}), IsEmpty());
    const Outcome list = Run({"history"});
    EXPECT_THAT(list.output, AllOf(HasSubstr("  recording  level_dbfs -6.02  thd_db -40.00  "),
                                   HasSubstr("  VALID\n"), HasSubstr("  VOID ")));
}

TEST_F(HistoryCommand, WritesATable) {
    ASSERT_EQ(Run({"analyze", tone_.Path(), "--history"}).status, 0);
    const std::filesystem::path table = data_.Path() / "table.csv";
    ASSERT_EQ(Run({"history", "--csv", table}).status, 0);
    EXPECT_THAT(FileText(table),
                AllOf(StartsWith("time,kind,state,reason,"), HasSubstr(",thd_db (dB),thd_db uncertainty,"),
                      HasSubstr("reading,VALID,")));
    EXPECT_EQ(Run({"history", "--csv", data_.Path() / "none" / "table.csv"}).status, 1);
}

TEST_F(HistoryCommand, IsEmptyAtFirst) {
    const Outcome outcome = Run({"history"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(NamesIn(data_.Path()), IsEmpty());
}

TEST_F(HistoryCommand, ReportsSkippedLines) {
    ASSERT_EQ(Run({"analyze", tone_.Path(), "--history"}).status, 0);
    const std::filesystem::path file = Folder() / NamesIn(Folder()).at(0);
    WriteFile(file, "garbage\n" + FileText(file) + "{\"id\":");
    const Outcome outcome = Run({"history", "--json"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.Json().size(), 1U);
    EXPECT_EQ(
        outcome.errors,
        "sonavex-measure: The history contains 1 damaged line and 1 incomplete line; they are skipped.\n");
    ASSERT_EQ(Run({"analyze", tone_.Path(), "--history"}).status, 0);
    EXPECT_EQ(Run({"history", "--json"}).Json().size(), 2U);
}

// The reading itself is printed.
TEST_F(HistoryCommand, SaysWhenNothingCanBeStored) {
    WriteFile(data_.Path() / "Sonavex", "in the way");
    const Outcome outcome = Run({"analyze", tone_.Path(), "--history", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.Json().size(), 1U);
    EXPECT_EQ(outcome.errors, "sonavex-measure: The history '" + Folder().string() +
                                  "' cannot be created: Not a directory\n");
}

}  // namespace
}  // namespace sonavex
