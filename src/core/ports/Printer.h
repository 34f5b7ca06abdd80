#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sonavex {

// Number of every failure to print; the text says what kept the document from being printed.
inline constexpr std::int32_t kPrinterError = 482;

// Where a document goes: to a printer, or, when `file` is not empty, into a PDF file (UTF-8 path).
struct PrintDestination {
    std::string printer;
    std::string file;
    friend bool operator==(const PrintDestination&, const PrintDestination&) = default;
};

// A page and its fixed-pitch type. All lengths in inches.
struct PageSetUp {
    std::string fontName = "courier new";
    double width = 8.5;
    double height = 11.0;
    int fontSizePoints = 12;
    double characterWidth = 0.1;  // of every character: a 12 point fixed-pitch type has ten to the inch
    double lineHeight = 0.19;
};

// What the print system says when it is asked.
struct InstalledPrinters {
    std::vector<std::string> names;
    std::string preferred;  // the user's default printer, empty for none
    std::string trouble;    // why there may be printers all the same: a sentence, empty when it answered
};

// Finished pages, and the printers that take them. Failures are a RuntimeError with kPrinterError.
// User-interface thread only.
class Printer {
public:
    virtual ~Printer() = default;

    // Asks the print system once, and waits for some seconds at most. Notifications and timers go on
    // meanwhile, as in all the calls that wait for the print system; the user's input waits.
    virtual InstalledPrinters Printers() = 0;

    virtual void SetDefaultPrinter(const std::string& name) = 0;

    // Path of a PDF file for a report that does not exist yet, in the user's folder of documents.
    virtual std::string SuggestedFile() = 0;
    virtual bool FileExists(const std::string& file) = 0;

    // Where the documents go that are begun from now on.
    virtual void Select(const PrintDestination& destination) = 0;

    // Begins a document of one page.
    virtual void BeginPage(const PageSetUp& page) = 0;

    // Writes UTF-8 text; x is its left edge, y the top of its line, both from the top left of the paper.
    virtual void Text(double x, double y, std::string_view text) = 0;

    // Ends the document and sends it off, as one copy. Raises what kept the document from being printed,
    // also when that was raised by a call before.
    virtual void EndDoc() = 0;
};

}  // namespace sonavex
