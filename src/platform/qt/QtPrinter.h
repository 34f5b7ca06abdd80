#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/ports/Printer.h"
#include "core/support/RuntimeError.h"

namespace sonavex {

// Documents drawn by the toolkit as PDF; the print system prints them, or they stay as files. A
// fixed-pitch font of the system stands in where the page's own is not installed; characters keep the
// page's width. An application object must exist.
class QtPrinter : public Printer {
public:
    QtPrinter();
    ~QtPrinter() override;
    QtPrinter(const QtPrinter&) = delete;
    QtPrinter& operator=(const QtPrinter&) = delete;

    InstalledPrinters Printers() override;
    void SetDefaultPrinter(const std::string& name) override;
    // "Sonavex report.pdf" with a number when that is taken, in the user's folder of documents or, where
    // there is none, in the home folder.
    std::string SuggestedFile() override;
    bool FileExists(const std::string& file) override;
    void Select(const PrintDestination& destination) override;
    void BeginPage(const PageSetUp& page) override;
    void Text(double x, double y, std::string_view text) override;
    // A file is replaced as a whole or not at all. Without a page there is nothing to send.
    void EndDoc() override;

private:
    class Document;

    PrintDestination destination_;
    std::unique_ptr<Document> document_;
    std::optional<RuntimeError> failure_;  // why the document could not be begun
};

}  // namespace sonavex
