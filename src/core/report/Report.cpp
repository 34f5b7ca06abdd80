#include "core/report/Report.h"

#include <string>

#include "core/report/PagePen.h"
#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kHeading = "Quenby Software Audio Sonavex";
constexpr const char* kFooter = "Quenby Software Audio Sonavex. ";
constexpr const char* kColumns[] = {"  2nd", "  3rd", "  4th", "  5th", "  6th",
                                    "  7th", "  8th", "  9th", "Total"};
constexpr std::size_t kRuleCharacters = 70;
constexpr double kTopInches = 0.5;
constexpr double kMarginInches = 0.8;
constexpr double kRowNameInches = 0.3;
constexpr double kSecondBlockInches = 5.2;

void PrintMeasurement(PagePen& pen, const MeasurementControls& measurement, const CalendarDate& today) {
    pen.At(kMarginInches).Print(kHeading).NewLine();
    pen.At(kMarginInches).Print("Date : " + FormatDate(today)).NewLine();
    pen.At(kMarginInches).Print("Frequency : " + measurement.txtFreq.Text() + " Hz").NewLine();
    pen.At(kMarginInches).Print("ADC/DAC Level: " + measurement.LblLevel.Caption()).NewLine(2);
}

void PrintColumnHeader(PagePen& pen) {
    pen.At(kMarginInches);
    for (const char* column : kColumns) pen.Tab().Print(column);
    pen.NewLine();
    pen.At(kMarginInches).Print(std::string(kRuleCharacters, '=')).NewLine();
}

void PrintPercentRow(PagePen& pen, const MeasurementControls& measurement) {
    pen.At(kRowNameInches).Print("Thd").At(kMarginInches);
    for (const Label& label : measurement.lbltest) pen.Print(label.Caption() + " ").Tab();
    pen.Print(measurement.lblThd.Caption()).NewLine(2);
}

// Levels without a minus sign get a blank in its place.
void PrintDbRow(PagePen& pen, const MeasurementControls& measurement) {
    pen.At(kRowNameInches).Print("dB").At(kMarginInches);
    for (const Label& label : measurement.lblDb) {
        if (Val(label.Caption()) == 0.0) pen.Print(" ");
        pen.Print(label.Caption()).Tab();
    }
    pen.NewLine(3);
}

void PrintSecondBlock(PagePen& pen, const PageSetUp& page, const std::vector<std::string>& lines) {
    pen.CurrentY = kSecondBlockInches;
    for (const std::string& line : lines) {
        if (pen.CurrentY + page.lineHeight > page.height - kTopInches) break;
        pen.At(kMarginInches).Print(line).NewLine();
    }
}

}  // namespace

void PrintInformation(const MeasurementControls& measurement, const CalendarDate& today, Printer& printer,
                      const std::vector<std::string>& second) {
    try {
        const PageSetUp page;
        PagePen pen(printer, page);
        pen.CurrentY = kTopInches;
        PrintMeasurement(pen, measurement, today);
        PrintColumnHeader(pen);
        PrintPercentRow(pen, measurement);
        PrintDbRow(pen, measurement);
        pen.At(kMarginInches).Print(kFooter);
        PrintSecondBlock(pen, page, second);
    } catch (const RuntimeError&) {
        // EndDoc raises the error.
        return;
    }
}

}  // namespace sonavex
