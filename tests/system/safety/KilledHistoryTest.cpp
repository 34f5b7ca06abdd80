// Two processes that store entries, delete them and compact the file, and are killed at any moment: every
// entry that was stored is intact, and nothing that was deleted returns.

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <set>
#include <sstream>
#include <thread>

#include "core/history/LoadHistory.h"
#include "platform/plain/HistoryFolder.h"
#include "support/Files.h"
#include "support/Wait.h"
#include "system/safety/Account.h"
#include "system/safety/Amount.h"
#include "system/safety/Writers.h"

namespace sonavex {
namespace {

constexpr std::size_t kWriters = 2;

class KilledHistory : public testing::Test {
protected:
    std::filesystem::path Folder() const { return account_.Home() / "history"; }
    std::filesystem::path Output(std::size_t writer) const {
        return account_.Home() / ("output" + std::to_string(writer));
    }

    // Kills the writers at a random moment: mostly after the first has stored an entry, otherwise also while
    // they start and compact.
    void RunAndKill(Chance& chance) {
        std::vector<std::unique_ptr<ChildProcess>> writers;
        for (std::size_t i = 0; i < kWriters; ++i) {
            std::filesystem::remove(Output(i));
            writers.push_back(
                std::make_unique<ChildProcess>(HistoryWriter(Folder()), account_.Variables(), Output(i)));
        }
        if (chance.Below(4) != 0) {
            ASSERT_TRUE(WaitUntil([&] { return FileText(Output(0)).find("stored") != std::string::npos; }));
        }
        std::this_thread::sleep_for(std::chrono::microseconds(chance.Below(20000)));
        for (const auto& writer : writers) writer->Kill();
        for (const auto& writer : writers) ASSERT_EQ(writer->Status(), 128 + SIGKILL);
    }

    // What the writers have said in complete lines.
    void TakeOutput(std::size_t writer) {
        std::string text = FileText(Output(writer));
        text.resize(text.rfind('\n') == std::string::npos ? 0 : text.rfind('\n') + 1);
        std::istringstream words(text);
        for (std::string word, id; words >> word >> id;) {
            if (word == "stored") stored_.insert(id);
            if (word == "deleting") deleting_.insert(id);
            if (word == "deleted") deleted_.insert(id);
        }
    }

    void ExpectIntact(const HistoryEntry& entry) const {
        EXPECT_EQ(entry.input, WrittenEntry(entry.id).input);
        const std::optional<HistoryDetails> details = DetailsOf(entry, HistoryFolder(Folder()));
        ASSERT_TRUE(details) << entry.id;
        EXPECT_EQ(details->json, kWrittenDetails);
        EXPECT_EQ(details->curve.levelsDbfs, WrittenCurve().levelsDbfs);
    }

    void Check(const LoadedHistory& loaded) const {
        std::set<std::string> found;
        for (const HistoryEntry& entry : loaded.entries) {
            ExpectIntact(entry);
            EXPECT_EQ(deleted_.count(entry.id), 0U) << entry.id << " was deleted";
            EXPECT_TRUE(found.insert(entry.id).second) << entry.id << " occurs twice";
        }
        for (const std::string& id : stored_)
            EXPECT_TRUE(found.count(id) != 0 || deleting_.count(id) != 0) << id << " is lost";
        EXPECT_EQ(loaded.failures, std::vector<std::string>());
    }

    Account account_;
    std::set<std::string> stored_;
    std::set<std::string> deleting_;
    std::set<std::string> deleted_;
};

TEST_F(KilledHistory, KeepsEveryStoredEntry) {
    Chance chance("history");
    const unsigned long kills = Kills(200);
    LoadedHistory loaded;
    for (unsigned long kill = 0; kill < kills && !HasFailure(); ++kill) {
        RunAndKill(chance);
        for (std::size_t i = 0; i < kWriters; ++i) TakeOutput(i);
        loaded = LoadHistory(HistoryFolder(Folder()));
        Check(loaded);
        // A killed process leaves at most one incomplete line.
        EXPECT_LE(loaded.damaged + loaded.incomplete, kWriters * (kill + 1));
    }
    std::cout << kills << " kills: " << stored_.size() << " entries stored, " << deleted_.size()
              << " deleted, " << loaded.entries.size() << " left, " << loaded.damaged
              << " incomplete lines\n";
    EXPECT_GT(stored_.size(), kills);
    // Compactions have removed what was deleted.
    EXPECT_LT(std::filesystem::file_size(Folder() / "2026-11-23.jsonl"), 4000 * stored_.size() / 2);
}

}  // namespace
}  // namespace sonavex
