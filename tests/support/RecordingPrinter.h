#pragma once

#include <cmath>
#include <cstdio>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/ports/Printer.h"
#include "support/CallLog.h"

namespace sonavex {

// Records "SetDefaultPrinter NAME", "Select PRINTER|FILE", "BeginPage FONT POINTS WIDTHxHEIGHT" and "EndDoc".
// The texts of a page are stored separately: "X Y TEXT", in inches with two decimals.
class RecordingPrinter : public Printer {
public:
    explicit RecordingPrinter(CallLog& log) noexcept : log_(log) {}

    InstalledPrinters Printers() override {
        log_.Note("Printers");
        return {printers, defaultPrinter, trouble};
    }
    void SetDefaultPrinter(const std::string& name) override {
        log_.Call("SetDefaultPrinter", name);
        defaultPrinter = name;
    }
    std::string SuggestedFile() override { return "/documents/Sonavex report.pdf"; }
    bool FileExists(const std::string& file) override { return files.count(file) != 0; }
    void Select(const PrintDestination& destination) override {
        log_.Call("Select", destination.printer + '|' + destination.file);
    }
    void BeginPage(const PageSetUp& page) override {
        items.clear();
        char text[80];
        std::snprintf(text, sizeof text, " %d %gx%g", page.fontSizePoints, page.width, page.height);
        log_.Call("BeginPage", page.fontName + text);
    }
    void Text(double x, double y, std::string_view text) override {
        char place[40];
        std::snprintf(place, sizeof place, "%.2f %.2f ", x, y);
        items.push_back(place + std::string(text));
        if (items.size() == failAtItem) throw RuntimeError(kPrinterError, "Out of paper");
    }
    void Picture(double x, double y, double width, std::string_view png) override {
        char place[60];
        std::snprintf(place, sizeof place, "%.2f %.2f picture %.2f ", x, y, width);
        items.push_back(place + std::string(png));
    }
    void EndDoc() override {
        log_.Call("EndDoc");
        if (failAtItem != 0 && items.size() == failAtItem) throw RuntimeError(kPrinterError, "Out of paper");
        if (!items.empty()) documents.push_back(items);
    }

    std::vector<std::string> printers{"Office", "Workshop"};
    std::string defaultPrinter = "Workshop";
    std::string trouble;
    std::set<std::string> files;
    std::size_t failAtItem = 0;  // counted from 1; 0 for never
    std::vector<std::string> items;
    std::vector<std::vector<std::string>> documents;

private:
    CallLog& log_;
};

}  // namespace sonavex
