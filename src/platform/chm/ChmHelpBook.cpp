#include "platform/chm/ChmHelpBook.h"

#include <algorithm>
#include <set>

#include "platform/chm/Html.h"

namespace sonavex {
namespace {

constexpr int kMostLevels = 16;
constexpr std::size_t kExcerptBefore = 40;
constexpr std::size_t kExcerptLength = 110;

// Kinds of entries in the file /#SYSTEM.
constexpr std::uint32_t kContentsFile = 0;
constexpr std::uint32_t kHomePage = 2;
constexpr std::uint32_t kTitle = 3;

// The little-endian number at an offset; 0 when the bytes end before it.
std::uint32_t Number(const std::string& bytes, std::size_t at, unsigned width) {
    if (at > bytes.size() || width > bytes.size() - at) return 0;
    std::uint32_t number = 0;
    for (unsigned i = 0; i < width; ++i)
        number |= std::uint32_t{static_cast<unsigned char>(bytes[at + i])} << (8U * i);
    return number;
}

std::string UpToZero(const std::string& text, std::size_t from) {
    if (from >= text.size()) return {};
    return text.substr(from, std::min(text.find('\0', from), text.size()) - from);
}

std::string WithSlash(const std::string& path) {
    return !path.empty() && path.front() == '/' ? path : "/" + path;
}

std::vector<std::string> WordsOf(std::string_view text) {
    std::vector<std::string> words;
    std::string word;
    for (const char c : Lower(text) + " ") {
        if (c != ' ' && c != '\t' && c != '\n') {
            word += c;
        } else if (!word.empty()) {
            words.push_back(word);
            word.clear();
        }
    }
    return words;
}

// Reads the lists of a contents file. Each "object" is a chapter; a nested list holds the subchapters of the
// chapter before it.
class SitemapReader {
public:
    explicit SitemapReader(std::string_view html) : reader_(html) {}

    void Read(std::vector<HelpBook::Chapter>& chapters, int depth) {
        std::string text;
        while (reader_.Next(text, tag_)) {
            if (tag_.name == "ul" && depth < kMostLevels) {
                if (depth == 0 || chapters.empty())
                    Read(chapters, depth + 1);
                else
                    Read(chapters.back().chapters, depth + 1);
            } else if (tag_.name == "/ul" && depth > 0) {
                return;
            } else if (tag_.name == "object") {
                chapters.push_back(ReadChapter());
                if (chapters.back().name.empty()) chapters.pop_back();
            }
        }
    }

private:
    HelpBook::Chapter ReadChapter() {
        HelpBook::Chapter chapter;
        std::string text;
        while (reader_.Next(text, tag_) && tag_.name != "/object") {
            if (tag_.name != "param") continue;
            const std::string name = Lower(tag_.Attribute("name"));
            if (name == "name") chapter.name = tag_.Attribute("value");
            if (name == "local") chapter.page = tag_.Attribute("value");
        }
        return chapter;
    }

    HtmlReader reader_;
    HtmlTag tag_;
};

// Every page once, in the order of the contents.
void CollectPages(const std::vector<HelpBook::Chapter>& chapters, std::vector<std::string>& pages,
                  std::set<std::string>& seen) {
    for (const auto& chapter : chapters) {
        const std::string page = chapter.page.substr(0, chapter.page.find('#'));
        if (!page.empty() && seen.insert(page).second) pages.push_back(page);
        CollectPages(chapter.chapters, pages, seen);
    }
}

// A search result shows the title separately, so the text must not begin with it.
PageText WithoutHeading(PageText page) {
    if (page.text.starts_with(page.title + " ")) page.text.erase(0, page.title.size() + 1);
    return page;
}

// The text around a match, cut between words.
std::string Excerpt(const std::string& text, std::size_t place) {
    std::size_t begin = place > kExcerptBefore ? text.find(' ', place - kExcerptBefore) : 0;
    if (begin == std::string::npos || begin > place) begin = place;
    std::size_t end = text.size();
    if (text.size() - begin > kExcerptLength) end = std::min(text.rfind(' ', begin + kExcerptLength), end);
    if (end <= begin) end = text.size();
    std::string excerpt = text.substr(begin, end - begin);
    if (!excerpt.empty() && excerpt.front() == ' ') excerpt.erase(0, 1);
    if (begin > 0) excerpt = "... " + excerpt;
    if (end < text.size()) excerpt += " ...";
    return excerpt;
}

}  // namespace

ChmHelpBook::ChmHelpBook(const std::string& file) : archive_(file) {
    ReadSystem();
    ReadContents();
    ReadTopics();
    if (home_.empty() && !contents_.empty()) home_ = contents_.front().page;
    if (!Read(home_)) throw HelpFileError("The file is damaged or is no help file.");
}

// The file holds a version, then entries of kind, length and text.
void ChmHelpBook::ReadSystem() {
    const auto system = archive_.Read("/#SYSTEM");
    if (!system) return;
    for (std::size_t at = 4; at + 4 <= system->size();) {
        const std::uint32_t kind = Number(*system, at, 2);
        const std::uint32_t length = Number(*system, at + 2, 2);
        const std::string text = UpToZero(system->substr(at + 4, length), 0);
        if (kind == kContentsFile) contentsFile_ = text;
        if (kind == kHomePage) home_ = text;
        if (kind == kTitle) title_ = text;
        at += 4 + std::size_t{length};
    }
}

void ChmHelpBook::ReadContents() {
    if (const auto html = archive_.Read(WithSlash(contentsFile_))) SitemapReader(*html).Read(contents_, 0);
}

// The file holds pairs of a topic's number and the offset of its page in the string table.
void ChmHelpBook::ReadTopics() {
    const auto pairs = archive_.Read("/#IVB");
    const auto strings = archive_.Read("/#STRINGS");
    if (!pairs || !strings) return;
    for (std::size_t at = 4; at + 8 <= pairs->size(); at += 8) {
        const std::string page = LongestSuffix(UpToZero(*strings, Number(*pairs, at + 4, 4)));
        if (!page.empty()) topics_.insert_or_assign(static_cast<std::int32_t>(Number(*pairs, at, 4)), page);
    }
}

// The compiler stores the paths that the pages had on the machine that ran it. The path of a page in the book
// is the end of such a path.
std::string ChmHelpBook::LongestSuffix(const std::string& path) const {
    for (std::size_t from = 0; from < path.size();) {
        std::string suffix = path.substr(path[from] == '/' ? from + 1 : from);
        if (!suffix.empty() && archive_.Exists("/" + suffix)) return suffix;
        from = path.find('/', from + 1);
    }
    return {};
}

std::optional<std::string> ChmHelpBook::PageOfTopic(std::int32_t topic) const {
    const auto found = topics_.find(topic);
    if (found == topics_.end()) return std::nullopt;
    return found->second;
}

std::optional<std::string> ChmHelpBook::Read(const std::string& path) const {
    // A path that ends with a slash is a folder.
    if (path.empty() || path.back() == '/') return std::nullopt;
    return archive_.Read(WithSlash(path));
}

std::vector<HelpBook::Match> ChmHelpBook::Search(std::string_view words) const {
    const std::vector<std::string> wanted = WordsOf(words);
    std::vector<Match> inTitle;
    std::vector<Match> inText;
    if (wanted.empty()) return inTitle;
    std::vector<std::string> pages;
    std::set<std::string> seen;
    CollectPages(contents_, pages, seen);
    for (const std::string& page : pages) {
        const auto html = Read(page);
        if (!html) continue;
        const PageText content = WithoutHeading(TextOfPage(*html));
        const std::string text = Lower(content.text);
        const std::string title = Lower(content.title);
        const auto ofTitle = [&](const std::string& word) { return title.find(word) != std::string::npos; };
        const auto anywhere = [&](const std::string& word) {
            return ofTitle(word) || text.find(word) != std::string::npos;
        };
        if (!std::all_of(wanted.begin(), wanted.end(), anywhere)) continue;
        const std::size_t place = std::min(text.find(wanted.front()), text.size());
        Match match{page, content.title, Excerpt(content.text, place == text.size() ? 0 : place)};
        (std::any_of(wanted.begin(), wanted.end(), ofTitle) ? inTitle : inText).push_back(match);
    }
    inTitle.insert(inTitle.end(), inText.begin(), inText.end());
    return inTitle;
}

}  // namespace sonavex
