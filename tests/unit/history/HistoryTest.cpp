#include <gmock/gmock.h>

#include "core/history/History.h"
#include "support/InlineBackground.h"
#include "support/MemoryHistory.h"
#include "support/VirtualEventLoop.h"
#include "unit/history/StoredEntries.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kStoredDay = "2026-11-23";

class HistoryTest : public testing::Test {
protected:
    HistoryTest() {
        history_.OnChange = [this] { ++changes_; };
        history_.OnTrouble = [this](const std::string& sentences) { troubles_.push_back(sentences); };
    }
    std::string Add(const std::string& time = "2026-11-23 10:58:21") {
        const ExportedMeasurement measurement = LiveReading(time);
        return history_.Add(EntryOf(measurement), DetailsOf(measurement.reading), {});
    }
    void Settle() { loop_.DeliverSignals(); }
    void Load(History& history) {
        history.Load();
        Settle();
    }

    VirtualEventLoop loop_;
    InlineBackground background_{loop_};
    MemoryHistory files_;
    std::uint64_t random_ = 0x9f;
    History history_{{files_, background_, [this] { return random_++; }}};
    int changes_ = 0;
    std::vector<std::string> troubles_;
};

TEST_F(HistoryTest, StoresAReading) {
    const std::string id = Add();
    EXPECT_EQ(id, "2026-11-23-000000000000009f");
    EXPECT_EQ(changes_, 1);
    EXPECT_THAT(history_.Entries(), SizeIs(1));
    History later({files_, background_, [] { return 0; }});
    Load(later);
    ASSERT_THAT(later.Entries(), SizeIs(1));
    EXPECT_EQ(later.Find(id)->figures.size(), 4U);
    EXPECT_EQ(later.Details(id)->json, AnalyzedJson(LiveReading().reading));
    EXPECT_EQ(later.Details("unknown"), std::nullopt);
}

TEST_F(HistoryTest, BringsEachDayToTheDisk) {
    Add("2026-11-22 23:59:59");
    Add("2026-11-23 00:00:01");
    EXPECT_FALSE(history_.Synced());
    Settle();
    EXPECT_TRUE(history_.Synced());
    EXPECT_THAT(files_.synced, ElementsAre("2026-11-22", "2026-11-22", "2026-11-23"));
    EXPECT_THAT(files_.Days(), ElementsAre("2026-11-22", "2026-11-23"));
}

TEST_F(HistoryTest, ChangesEntriesByAppending) {
    const std::string kept = Add();
    const std::string deleted = Add();
    const std::string before = files_.Read(kStoredDay);
    history_.SetNote(kept, "warm");
    history_.Delete(deleted);
    EXPECT_EQ(files_.Read(kStoredDay), before + NoteLine(kept, "warm") + '\n' + DeletionLine(deleted) + '\n');
    EXPECT_EQ(history_.Find(kept)->note, "warm");
    EXPECT_EQ(history_.Find(deleted), nullptr);
    EXPECT_EQ(changes_, 4);
    history_.SetNote(kept, "warm");
    history_.SetNote("unknown", "x");
    history_.Delete("unknown");
    EXPECT_EQ(changes_, 4);
}

// The file of an entry is the one that contains it, whatever its time says.
TEST_F(HistoryTest, ChangesEntriesInTheirFiles) {
    files_.texts["2026-01-01"] = AnyLine("a") + '\n';
    Load(history_);
    history_.SetNote("a", "moved");
    EXPECT_EQ(files_.texts["2026-01-01"], AnyLine("a") + '\n' + NoteLine("a", "moved") + '\n');
    EXPECT_THAT(files_.texts, SizeIs(1));
}

TEST_F(HistoryTest, ShowsWhatOthersHaveAppended) {
    Load(history_);
    files_.Append(kStoredDay, AnyLine("b"));
    EXPECT_THAT(history_.Entries(), IsEmpty());
    Load(history_);
    ASSERT_THAT(history_.Entries(), SizeIs(1));
    EXPECT_EQ(history_.Entries()[0].id, "b");
}

TEST_F(HistoryTest, CompactsOnceOnly) {
    files_.texts[kStoredDay] = AnyLine("a") + '\n' + DeletionLine("a") + '\n';
    Load(history_);
    EXPECT_THAT(files_.texts, IsEmpty());
    const std::string text = AnyLine("b") + '\n' + DeletionLine("b") + '\n';
    files_.texts[kStoredDay] = text;
    Load(history_);
    EXPECT_EQ(files_.texts[kStoredDay], text);
}

// The background has read the files before the change, and delivers after it.
TEST_F(HistoryTest, KeepsAChangeDuringLoading) {
    history_.Load();
    EXPECT_TRUE(history_.Loading());
    const std::string id = Add();
    while (history_.Loading()) Settle();
    ASSERT_THAT(history_.Entries(), SizeIs(1));
    EXPECT_EQ(history_.Entries()[0].id, id);
}

TEST_F(HistoryTest, WithoutRoomStaysAsItWas) {
    const std::string id = Add();
    Settle();
    const auto texts = files_.texts;
    files_.full = true;
    EXPECT_THROW(Add(), FileError);
    EXPECT_THROW(history_.SetNote(id, "x"), FileError);
    EXPECT_THROW(history_.Delete(id), FileError);
    EXPECT_THAT(history_.Entries(), SizeIs(1));
    EXPECT_EQ(history_.Find(id)->note, "");
    EXPECT_EQ(files_.texts, texts);
    EXPECT_TRUE(history_.Synced());
    EXPECT_EQ(changes_, 1);
}

TEST_F(HistoryTest, ReportsWhatWasSkippedAndWhatDidNotReachTheDisk) {
    files_.texts[kStoredDay] = "garbage\n";
    Load(history_);
    EXPECT_THAT(troubles_, ElementsAre("The history contains 1 damaged line; it is skipped."));
    VirtualEventLoop loop;
    InlineBackground background(loop);
    History unlucky({files_, background, [] { return 1; }});
    std::vector<std::string> troubles;
    unlucky.OnTrouble = [&troubles](const std::string& sentence) { troubles.push_back(sentence); };
    files_.syncFails = true;
    unlucky.Add(AnyEntry(), "{}", {});
    loop.Yield();
    EXPECT_THAT(troubles, ElementsAre("The day 2026-11-23 cannot be stored."));
    EXPECT_TRUE(unlucky.Synced());
}

TEST_F(HistoryTest, MayEndBeforeItsResults) {
    {
        History shortLived({files_, background_, [] { return 1; }});
        shortLived.OnChange = [] { FAIL(); };
        shortLived.Load();
    }
    Settle();
}

}  // namespace
}  // namespace sonavex
