#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/history/HistoryEntry.h"
#include "core/history/LoadHistory.h"
#include "core/ports/Background.h"
#include "core/ports/HistoryFiles.h"

namespace sonavex {

// The readings and runs of this and earlier sessions, on the user-interface thread. Each change is one line
// that is appended at once and is brought to the disk in the background. The window and the command line may
// use the same files at the same time.
class History {
public:
    // `files` must outlive the background.
    struct Needs {
        HistoryFiles& files;
        Background& background;
        std::function<std::uint64_t()> random;  // for identifiers
    };

    explicit History(Needs needs) : needs_(std::move(needs)) {}
    History(const History&) = delete;
    History& operator=(const History&) = delete;

    // Reads all files in the background, with what other processes have appended, then calls OnChange. The
    // first time it also compacts them.
    void Load();
    bool Loading() const noexcept { return loading_; }

    // Oldest day first, in the order in which they were stored. Valid until the next change or event.
    const std::vector<HistoryEntry>& Entries() const noexcept { return entries_; }
    const HistoryEntry* Find(const std::string& id) const noexcept;
    // Empty if another process has deleted it. Throws FileError.
    std::optional<HistoryDetails> Details(const std::string& id) const;
    // HistoryCsv of some of the entries. Throws FileError.
    std::string Csv(const std::vector<const HistoryEntry*>& shown) const;

    // Stores an entry and returns its identifier. Its time decides the file. The three throw FileError and
    // then leave files and entries as they were. SetNote and Delete do nothing for an unknown entry.
    std::string Add(HistoryEntry entry, std::string_view details, const HistoryCurve& curve);
    void SetNote(const std::string& id, const std::string& note);
    void Delete(const std::string& id);

    // Whether everything that was stored is on the disk.
    bool Synced() const noexcept { return unsynced_.empty(); }

    // Called when Entries has changed.
    std::function<void()> OnChange;
    // Called with sentences about files and lines that were skipped, or that did not reach the disk.
    std::function<void(const std::string& sentences)> OnTrouble;

private:
    void Append(const std::string& day, const std::string& line);
    void Sync();
    void Take(LoadedHistory loaded);
    std::vector<HistoryEntry>::iterator Position(const std::string& id);
    void Changed() const;

    Needs needs_;
    std::vector<HistoryEntry> entries_;
    bool loading_ = false;
    bool compacted_ = false;
    bool changedWhileLoading_ = false;
    std::set<std::string> unsynced_;  // days
    std::uint64_t lastSync_ = 0;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace sonavex
