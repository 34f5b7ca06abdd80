#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sonavex {

// What is wrong with a help file, for the user.
class HelpFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A help file as a book. Pages are known by their path inside the file without a leading slash
// ("devices.html"); texts are UTF-8. User-interface thread only.
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
        std::string excerpt;  // some words around the first place
    };

    virtual ~HelpBook() = default;

    virtual const std::string& Title() const = 0;
    // The page to begin with.
    virtual const std::string& Home() const = 0;
    virtual const std::vector<Chapter>& Contents() const = 0;

    virtual std::optional<std::string> PageOfTopic(std::int32_t topic) const = 0;

    // Any file of the book, a page or a picture; nothing when there is none or it cannot be read.
    virtual std::optional<std::string> Read(const std::string& path) const = 0;

    // Pages of the contents that hold all the words, in any letter case; those whose title has one of them
    // first, else in the order of the contents. Nothing for no words.
    virtual std::vector<Match> Search(std::string_view words) const = 0;
};

}  // namespace sonavex
