#include "core/history/LoadHistory.h"

#include <iterator>
#include <utility>

#include "core/history/HistoryDay.h"

namespace sonavex {
namespace {

void IncludeDay(HistoryDay day, LoadedHistory& loaded) {
    loaded.damaged += day.damaged;
    loaded.incomplete += day.incomplete ? 1 : 0;
    std::move(day.entries.begin(), day.entries.end(), std::back_inserter(loaded.entries));
}

// A file that cannot be compacted stays as it is, and is compacted by a later start.
void TryToReplace(HistoryFiles& files, const std::string& day, const std::string& before,
                  const std::string& after) {
    try {
        files.Replace(day, before, after);
    } catch (const FileError&) {
    }
}

// compacting: null for none.
LoadedHistory LoadDays(const HistoryFiles& files, HistoryFiles* compacting) {
    LoadedHistory loaded;
    const auto tryTo = [&loaded](const auto& read) {
        try {
            read();
        } catch (const FileError& error) {
            loaded.failures.emplace_back(error.what());
        }
    };
    std::vector<std::string> days;
    tryTo([&] { days = files.Days(); });
    for (const std::string& name : days)
        tryTo([&] {
            const std::string text = files.Read(name);
            HistoryDay day = ReadHistoryDay(name, text);
            if (compacting != nullptr)
                if (const std::optional<std::string> after = Compacted(day, text))
                    TryToReplace(*compacting, name, text, *after);
            IncludeDay(std::move(day), loaded);
        });
    return loaded;
}

std::string CountedLines(std::size_t count, const char* what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

}  // namespace

std::string LoadedHistory::Trouble() const {
    std::string text;
    for (const std::string& failure : failures) text += (text.empty() ? "" : " ") + failure;
    if (damaged + incomplete == 0) return text;
    text += (text.empty() ? "" : " ") + std::string("The history contains ");
    if (damaged > 0) text += CountedLines(damaged, "damaged line");
    if (damaged > 0 && incomplete > 0) text += " and ";
    if (incomplete > 0) text += CountedLines(incomplete, "incomplete line");
    return text + (damaged + incomplete == 1 ? "; it is skipped." : "; they are skipped.");
}

LoadedHistory LoadHistory(const HistoryFiles& files) {
    return LoadDays(files, nullptr);
}

LoadedHistory LoadAndCompactHistory(HistoryFiles& files) {
    return LoadDays(files, &files);
}

std::optional<HistoryDetails> DetailsOf(const HistoryEntry& entry, const HistoryFiles& files) {
    const std::string text = files.Read(entry.day);
    return ReadDetails(LineOf(entry.id, text));
}

}  // namespace sonavex
