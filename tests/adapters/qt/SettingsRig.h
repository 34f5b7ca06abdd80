#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "platform/qt/QtSettingsStore.h"
#include "support/ChildProcess.h"

namespace sonavex {

inline std::string FileText(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

inline void WriteFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

// Stores on a settings file in a private folder, and what they report.
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
    // What a store that is opened afresh finds.
    std::string Stored(const std::string& section, const std::string& key) {
        return Open()->Get(section, key, "none");
    }
    std::vector<std::string> FilesInFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Folder()))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    PrivateFolder folder_;
    std::vector<std::string> reports_;
};

}  // namespace sonavex
