#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/ports/Printer.h"
#include "core/support/RuntimeError.h"
#include "platform/qt/PrintSystem.h"

namespace sonavex {

// Draws documents as PDF with Qt and passes them to the print system or stores them as files. When the page's
// font is not installed, a fixed-pitch font of the system replaces it with the same character width. An
// application object must exist.
class QtPrinter : public Printer {
public:
    // The request must outlive this object.
    explicit QtPrinter(Ending& ending);
    ~QtPrinter() override;
    QtPrinter(const QtPrinter&) = delete;
    QtPrinter& operator=(const QtPrinter&) = delete;

    InstalledPrinters Printers() override;
    void SetDefaultPrinter(const std::string& name) override;
    // "Sonavex report.pdf", with a number when that name is taken, in the user's documents folder or, without
    // one, in the home folder.
    std::string SuggestedFile() override;
    bool FileExists(const std::string& file) override;
    void Select(const PrintDestination& destination) override;
    void BeginPage(const PageSetUp& page) override;
    void Text(double x, double y, std::string_view text) override;
    void Picture(double x, double y, double width, std::string_view png) override;
    // Replaces a file atomically. Sends nothing when the document has no page.
    void EndDoc() override;

private:
    class Document;

    PrintSystem system_;
    PrintDestination destination_;
    std::unique_ptr<Document> document_;
    std::optional<RuntimeError> failure_;  // why the document could not be started
};

}  // namespace sonavex
