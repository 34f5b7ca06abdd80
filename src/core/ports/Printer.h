#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sonavex {

// Error number of every printing failure. The text gives the cause.
inline constexpr std::int32_t kPrinterError = 482;

// Target of a document: a printer or, if `file` is not empty, a PDF file (UTF-8 path).
struct PrintDestination {
    std::string printer;
    std::string file;
    friend bool operator==(const PrintDestination&, const PrintDestination&) = default;
};

// Page size, margins and fixed-pitch font. All lengths in inches.
struct PageSetUp {
    std::string fontName = "courier new";
    double width = 8.5;
    double height = 11.0;
    int fontSizePoints = 12;
    double characterWidth = 0.1;  // width of every character: 12 point fixed-pitch type has ten to the inch
    double lineHeight = 0.19;
};

// The printers that the print system reports.
struct InstalledPrinters {
    std::vector<std::string> names;
    std::string preferred;  // the user's default printer; empty if there is none
    std::string trouble;    // why the list may be incomplete: a sentence; empty if it is complete
};

// Prints pages of text. Failures are RuntimeErrors with kPrinterError.
class Printer {
public:
    virtual ~Printer() = default;

    // Asks the print system and waits a few seconds at most. This call, like all calls that wait for the
    // print system, keeps serving notifications and timers but blocks user input.
    virtual InstalledPrinters Printers() = 0;

    virtual void SetDefaultPrinter(const std::string& name) = 0;

    // Suggested path of a new PDF file in the user's documents folder.
    virtual std::string SuggestedFile() = 0;
    virtual bool FileExists(const std::string& file) = 0;

    // Sets the destination of the documents that are begun from now on.
    virtual void Select(const PrintDestination& destination) = 0;

    // Begins a document of one page.
    virtual void BeginPage(const PageSetUp& page) = 0;

    // Writes UTF-8 text. x is the left edge of the text and y the top of its line, both from the top left of
    // the paper.
    virtual void Text(double x, double y, std::string_view text) = 0;

    // Draws a PNG picture with its top left corner at x and y, as wide as stated; its height follows from its
    // shape.
    virtual void Picture(double x, double y, double width, std::string_view png) = 0;

    // Ends the document and sends it as one copy. Raises any failure of this document, including one that an
    // earlier call raised.
    virtual void EndDoc() = 0;
};

}  // namespace sonavex
