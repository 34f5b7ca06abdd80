#include "core/history/History.h"

#include <algorithm>
#include <utility>

#include "core/history/HistoryLine.h"
#include "core/history/HistoryTable.h"

namespace sonavex {
namespace {

constexpr std::size_t kDayLength = 10;  // "2026-11-23"

// The sentence of the last failure; empty if there was none.
std::string SyncDays(HistoryFiles& files, const std::set<std::string>& days) {
    std::string failure;
    for (const std::string& day : days) {
        try {
            files.Sync(day);
        } catch (const FileError& error) {
            failure = error.what();
        }
    }
    return failure;
}

}  // namespace

void History::Load() {
    loading_ = true;
    changedWhileLoading_ = false;
    HistoryFiles* const files = &needs_.files;
    needs_.background.Run(
        Background::Line::kHistory,
        [this, alive = std::weak_ptr(alive_), files, compact = !compacted_]() -> Background::Result {
            auto loaded = std::make_shared<LoadedHistory>(compact ? LoadAndCompactHistory(*files)
                                                                  : LoadHistory(*files));
            return [this, alive, loaded] {
                if (!alive.expired()) Take(std::move(*loaded));
            };
        });
}

// A change that was stored meanwhile may be missing in what was read.
void History::Take(LoadedHistory loaded) {
    compacted_ = true;
    if (changedWhileLoading_) return Load();
    loading_ = false;
    entries_ = std::move(loaded.entries);
    Changed();
    const std::string trouble = loaded.Trouble();
    if (!trouble.empty() && OnTrouble) OnTrouble(trouble);
}

const HistoryEntry* History::Find(const std::string& id) const noexcept {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&id](const HistoryEntry& entry) { return entry.id == id; });
    return found == entries_.end() ? nullptr : &*found;
}

std::vector<HistoryEntry>::iterator History::Position(const std::string& id) {
    return std::find_if(entries_.begin(), entries_.end(),
                        [&id](const HistoryEntry& entry) { return entry.id == id; });
}

std::optional<HistoryDetails> History::Details(const std::string& id) const {
    const HistoryEntry* const entry = Find(id);
    if (entry == nullptr) return std::nullopt;
    return DetailsOf(*entry, needs_.files);
}

std::string History::Csv(const std::vector<const HistoryEntry*>& shown) const {
    return HistoryCsv(shown, needs_.files);
}

std::string History::Add(HistoryEntry entry, std::string_view details, const HistoryCurve& curve) {
    entry.day = entry.time.substr(0, kDayLength);
    entry.id = entry.day + '-' + SixteenDigits(needs_.random());
    Append(entry.day, EntryLine(entry, details, curve));
    entries_.push_back(entry);
    Changed();
    return entry.id;
}

void History::SetNote(const std::string& id, const std::string& note) {
    const auto entry = Position(id);
    if (entry == entries_.end() || entry->note == note) return;
    Append(entry->day, NoteLine(id, note));
    entry->note = note;
    Changed();
}

void History::Delete(const std::string& id) {
    const auto entry = Position(id);
    if (entry == entries_.end()) return;
    Append(entry->day, DeletionLine(id));
    entries_.erase(entry);
    Changed();
}

void History::Append(const std::string& day, const std::string& line) {
    needs_.files.Append(day, line);
    changedWhileLoading_ = true;
    unsynced_.insert(day);
    Sync();
}

// A task that still waits is replaced, so each contains all days.
void History::Sync() {
    HistoryFiles* const files = &needs_.files;
    needs_.background.Run(Background::Line::kHistorySync,
                          [this, alive = std::weak_ptr(alive_), files, days = unsynced_,
                           sync = ++lastSync_]() -> Background::Result {
                              const std::string failure = SyncDays(*files, days);
                              return [this, alive, sync, failure] {
                                  if (alive.expired()) return;
                                  if (sync == lastSync_) unsynced_.clear();
                                  if (!failure.empty() && OnTrouble) OnTrouble(failure);
                              };
                          });
}

void History::Changed() const {
    if (OnChange) OnChange();
}

}  // namespace sonavex
