#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sonavex {

// Describes for the user what is wrong with a help file.
class HelpFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A help file. Pages are identified by their path inside the file without a leading slash ("devices.html").
// Texts are UTF-8.
class HelpBook {
public:
    struct Chapter {
        std::string name;
        std::string page;  // empty for a heading only
        std::vector<Chapter> chapters;
    };
    struct Match {
        std::string page;
        std::string title;
        std::string excerpt;  // some words around the first match
    };

    virtual ~HelpBook() = default;

    virtual const std::string& Title() const = 0;
    // The start page.
    virtual const std::string& Home() const = 0;
    virtual const std::vector<Chapter>& Contents() const = 0;

    virtual std::optional<std::string> PageOfTopic(std::int32_t topic) const = 0;

    // Content of a file in the book, a page or a picture; nothing if it is missing or unreadable.
    virtual std::optional<std::string> Read(const std::string& path) const = 0;

    // Pages of the contents that contain all the words, ignoring letter case. Pages with a word in the title
    // come first, the others in the order of the contents. No words find nothing.
    virtual std::vector<Match> Search(std::string_view words) const = 0;
};

}  // namespace sonavex
