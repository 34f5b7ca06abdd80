#include <gmock/gmock.h>

#include "core/history/HistoryDay.h"
#include "core/history/LoadHistory.h"
#include "support/MemoryHistory.h"
#include "unit/history/StoredEntries.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kReadDay = "2026-11-23";

std::string TextOfLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    return text;
}

// "a: note" of every entry.
std::vector<std::string> NotesIn(const std::vector<HistoryEntry>& entries) {
    std::vector<std::string> notes;
    for (const HistoryEntry& entry : entries)
        notes.push_back(entry.id + (entry.note.empty() ? "" : ": " + entry.note));
    return notes;
}

TEST(HistoryDay, AppliesNotesAndDeletions) {
    const std::string text =
        TextOfLines({AnyLine("a"), AnyLine("b"), NoteLine("a", "first"), DeletionLine("b"), AnyLine("c"),
                     NoteLine("a", "second"), NoteLine("b", "too late"), DeletionLine("unknown")});
    const HistoryDay day = ReadHistoryDay(kReadDay, text);
    EXPECT_THAT(NotesIn(day.entries), ElementsAre("a: second", "c"));
    EXPECT_EQ(day.entries[0].day, kReadDay);
    EXPECT_EQ(day.damaged, 0U);
    EXPECT_FALSE(day.incomplete);
    EXPECT_THAT(day.keptLines, ElementsAre(AnyLine("a"), NoteLine("a", "second"), AnyLine("c")));
    EXPECT_EQ(day.deadBytes, TextOfLines({AnyLine("b"), NoteLine("a", "first"), DeletionLine("b"),
                                          NoteLine("b", "too late"), DeletionLine("unknown")})
                                 .size());
}

TEST(HistoryDay, SkipsAndCountsDamagedLines) {
    std::string damaged = AnyLine("b");
    damaged[40] ^= 1;
    const std::string text =
        TextOfLines({AnyLine("a"), damaged, "garbage", "", std::string(3, '\0'), AnyLine("a"), AnyLine("c")});
    const HistoryDay day = ReadHistoryDay(kReadDay, text);
    EXPECT_THAT(NotesIn(day.entries), ElementsAre("a", "c"));
    EXPECT_EQ(day.damaged, 3U);
    EXPECT_EQ(day.keptLines.size(), 5U);
    EXPECT_EQ(day.deadBytes, AnyLine("a").size() + 2);  // the second "a" and the empty line
}

TEST(HistoryDay, DoesNotRestoreADeletedEntryFromItsCopy) {
    const std::string text = TextOfLines({AnyLine("a"), AnyLine("a"), DeletionLine("a")});
    EXPECT_THAT(ReadHistoryDay(kReadDay, text).entries, IsEmpty());
    EXPECT_EQ(Compacted(ReadHistoryDay(kReadDay, text), text), "");
}

TEST(HistoryDay, ReportsAnIncompleteLastLine) {
    const std::string whole = TextOfLines({AnyLine("a"), AnyLine("b")});
    const std::size_t first = AnyLine("a").size() + 1;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const HistoryDay day = ReadHistoryDay(kReadDay, whole.substr(0, length));
        const bool incomplete =
            length != 0 && length != first - 1 && length != first && length < whole.size() - 1;
        ASSERT_EQ(day.incomplete, incomplete) << length;
        ASSERT_EQ(day.damaged, 0U) << length;
        ASSERT_EQ(day.entries.size(),
                  (length >= first - 1 ? 1U : 0U) + (length >= whole.size() - 1 ? 1U : 0U))
            << length;
    }
}

TEST(HistoryDay, IsCompactedWhenAThirdIsDead) {
    const std::vector<std::string> threeAlive{AnyLine("a"), AnyLine("b"), AnyLine("c"), AnyLine("d")};
    std::string text = TextOfLines(threeAlive) + TextOfLines({DeletionLine("b")});
    EXPECT_EQ(Compacted(ReadHistoryDay(kReadDay, text), text), std::nullopt);
    text += TextOfLines({DeletionLine("c"), NoteLine("d", "kept")});
    const std::string after = Compacted(ReadHistoryDay(kReadDay, text), text).value();
    EXPECT_EQ(after, TextOfLines({AnyLine("a"), AnyLine("d"), NoteLine("d", "kept")}));
    EXPECT_EQ(Compacted(ReadHistoryDay(kReadDay, after), after), std::nullopt);
}

TEST(HistoryDay, IsEmptyWhenEverythingIsDeleted) {
    const std::string text = TextOfLines({AnyLine("a"), DeletionLine("a")});
    EXPECT_EQ(Compacted(ReadHistoryDay(kReadDay, text), text), "");
    EXPECT_EQ(Compacted(ReadHistoryDay(kReadDay, ""), ""), std::nullopt);
}

TEST(HistoryDay, FindsTheLineOfAnEntry) {
    const std::string text =
        TextOfLines({NoteLine("b", "early"), AnyLine("a"), AnyLine("b"), NoteLine("b", "x")});
    EXPECT_EQ(LineOf("b", text), AnyLine("b"));
    EXPECT_EQ(LineOf("c", text), "");
    const std::string quoted = AnyLine("\"d\"");
    EXPECT_EQ(LineOf("\"d\"", quoted + '\n'), quoted);
}

TEST(LoadedHistory, ReadsAllDays) {
    MemoryHistory files;
    files.texts = {{"2026-11-23", TextOfLines({AnyLine("b")})},
                   {"2026-11-22", TextOfLines({AnyLine("a"), "garbage"}) + "incompl"}};
    const LoadedHistory loaded = LoadHistory(files);
    EXPECT_THAT(NotesIn(loaded.entries), ElementsAre("a", "b"));
    EXPECT_EQ(loaded.entries[0].day, "2026-11-22");
    EXPECT_EQ(loaded.Trouble(),
              "The history contains 1 damaged line and 1 incomplete line; they are skipped.");
}

TEST(LoadedHistory, NamesADayThatCannotBeRead) {
    MemoryHistory files;
    files.texts = {{"2026-11-22", ""}, {"2026-11-23", TextOfLines({AnyLine("b")}) + "x"}};
    files.unreadable = "2026-11-22";
    const LoadedHistory loaded = LoadHistory(files);
    EXPECT_THAT(NotesIn(loaded.entries), ElementsAre("b"));
    EXPECT_EQ(loaded.Trouble(),
              "The day 2026-11-22 cannot be read. The history contains 1 incomplete line; it is skipped.");
    EXPECT_EQ(LoadedHistory().Trouble(), "");
}

TEST(LoadedHistory, IsCompactedAtTheStartOnly) {
    MemoryHistory files;
    const std::string text = TextOfLines({AnyLine("a"), AnyLine("b"), DeletionLine("a")});
    files.texts["2026-11-23"] = text;
    EXPECT_THAT(NotesIn(LoadHistory(files).entries), ElementsAre("b"));
    EXPECT_EQ(files.texts["2026-11-23"], text);
    EXPECT_THAT(NotesIn(LoadAndCompactHistory(files).entries), ElementsAre("b"));
    EXPECT_EQ(files.texts["2026-11-23"], TextOfLines({AnyLine("b")}));
}

TEST(LoadedHistory, KeepsWhatAnotherProcessAppendsDuringACompaction) {
    MemoryHistory files;
    const std::string text = TextOfLines({AnyLine("a"), DeletionLine("a")});
    files.texts["2026-11-23"] = text;
    files.afterRead = [&files] { files.Append("2026-11-23", AnyLine("c")); };
    EXPECT_THAT(LoadAndCompactHistory(files).entries, IsEmpty());
    EXPECT_EQ(files.texts["2026-11-23"], text + TextOfLines({AnyLine("c")}));
}

TEST(LoadedHistory, StaysAsItIsOnAFullDisk) {
    MemoryHistory files;
    const std::string text = TextOfLines({AnyLine("a"), AnyLine("b"), DeletionLine("a")});
    files.texts["2026-11-23"] = text;
    files.full = true;
    const LoadedHistory loaded = LoadAndCompactHistory(files);
    EXPECT_THAT(NotesIn(loaded.entries), ElementsAre("b"));
    EXPECT_EQ(loaded.Trouble(), "");
    EXPECT_EQ(files.texts["2026-11-23"], text);
}

}  // namespace
}  // namespace sonavex
