#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/ports/HelpBook.h"
#include "platform/chm/ChmArchive.h"

namespace sonavex {

// A compiled help file (CHM).
class ChmHelpBook : public HelpBook {
public:
    // Throws HelpFileError when the file cannot be read, is not a help file or has no page.
    explicit ChmHelpBook(const std::string& file);

    const std::string& Title() const override { return title_; }
    const std::string& Home() const override { return home_; }
    const std::vector<Chapter>& Contents() const override { return contents_; }
    std::optional<std::string> PageOfTopic(std::int32_t topic) const override;
    std::optional<std::string> Read(const std::string& path) const override;
    std::vector<Match> Search(std::string_view words) const override;

private:
    void ReadSystem();
    void ReadContents();
    void ReadTopics();
    std::string LongestSuffix(const std::string& path) const;

    ChmArchive archive_;
    std::string title_;
    std::string home_;
    std::string contentsFile_;
    std::vector<Chapter> contents_;
    std::map<std::int32_t, std::string> topics_;
};

}  // namespace sonavex
