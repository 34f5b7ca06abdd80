#pragma once

#include <filesystem>
#include <utility>

#include "core/ports/HistoryFiles.h"

namespace sonavex {

// The history as files that only the user can read: FOLDER/2026-11-23.jsonl. A lock on the folder keeps the
// writes of several processes apart; it is never held while a call waits for the disk. The first line creates
// the folder.
class HistoryFolder : public HistoryFiles {
public:
    explicit HistoryFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}

    // Sonavex/history in the user's data folder. Throws FileError if there is none.
    static std::filesystem::path OfTheUser();

    std::vector<std::string> Days() const override;
    std::string Read(const std::string& day) const override;
    void Append(const std::string& day, const std::string& line) override;
    bool Replace(const std::string& day, const std::string& before, const std::string& after) override;
    void Sync(const std::string& day) override;

private:
    std::filesystem::path FileOf(const std::string& day) const;

    std::filesystem::path folder_;
};

}  // namespace sonavex
