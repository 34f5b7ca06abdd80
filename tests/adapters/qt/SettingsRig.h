#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/qt/QtSettingsStore.h"
#include "support/ChildProcess.h"
#include "support/Files.h"

namespace sonavex {

// Stores on a settings file in a private folder, and their reports.
class SettingsRig : public testing::Test {
protected:
    SettingsRig() { std::filesystem::create_directory(File().parent_path()); }

    std::filesystem::path Folder() const { return folder_.Path() / "Sonavex"; }
    std::filesystem::path File() const { return Folder() / "Sonavex.ini"; }

    std::unique_ptr<QtSettingsStore> Open() { return Open(File()); }
    std::unique_ptr<QtSettingsStore> Open(const std::filesystem::path& file) {
        return std::make_unique<QtSettingsStore>(
            file, [this](const std::string& text) { reports_.push_back(text); });
    }
    // The value that a newly opened store reads.
    std::string Stored(const std::string& section, const std::string& key) {
        return Open()->Get(section, key, "none");
    }
    std::vector<std::string> FilesInFolder() const { return NamesIn(Folder()); }

    PrivateFolder folder_;
    std::vector<std::string> reports_;
};

}  // namespace sonavex
