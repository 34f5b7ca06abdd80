#include <gmock/gmock.h>

#include <fstream>

#include "adapters/print/PdfText.h"
#include "core/report/Report.h"
#include "core/support/RuntimeError.h"
#include "platform/qt/QtPrinter.h"
#include "support/ChildProcess.h"
#include "support/ScopedVariable.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// The report as a PDF file, read by another program.
class ReportPdfTest : public testing::Test {
protected:
    void Show(const std::array<const char*, 8>& percent, const std::array<const char*, 8>& db,
              const char* total) {
        measurement.txtFreq.SetText("996");
        measurement.LblLevel.SetCaption("25");
        for (std::size_t i = 0; i < percent.size(); ++i) {
            measurement.lbltest[i].SetCaption(percent[i]);
            measurement.lblDb[i].SetCaption(db[i]);
        }
        measurement.lblThd.SetCaption(total);
    }
    void ShowLocked() {
        Show({"0.7147", "0.7510", "0.7750", "0.7930", "0.8075", "0.8197", "0.8303", "0.8399"},
             {"-42.92", "-53.93", "-56.25", "-57.80", "-60.11", "-62.34", "-63.97", "-65.18"}, "0.8399");
    }
    void Print(const std::filesystem::path& target) {
        printer.Select({"", target.string()});
        PrintInformation(measurement, {2026, 11, 21}, printer);
        printer.EndDoc();
    }
    std::vector<PlacedWord> Words() {
        Print(file);
        return WordsOfPdf(file);
    }

    PrivateFolder folder;
    std::filesystem::path file = folder.Path() / "report.pdf";
    MeasurementControls measurement;
    Ending ending;
    QtPrinter printer{ending};
};

TEST_F(ReportPdfTest, IsOneLetterPageInAnEmbeddedFixedPitchFont) {
    ShowLocked();
    Print(file);
    const std::string facts = FactsOfPdf(file);
    EXPECT_THAT(facts, testing::ContainsRegex("Pages: +1\n"));
    EXPECT_THAT(facts, testing::ContainsRegex("Page size: +612 x 792 pts"));
    EXPECT_THAT(facts, testing::ContainsRegex("Title: +Sonavex report\n"));
    EXPECT_THAT(facts, testing::ContainsRegex("Mono|Courier"));
}

TEST_F(ReportPdfTest, ReadsAsItWasComposed) {
    ShowLocked();
    Print(file);
    const std::string text = TextOfPdf(file);
    EXPECT_THAT(text, HasSubstr("Quenby Software Audio Sonavex\n"));
    EXPECT_THAT(text, HasSubstr("Date : Nov 21, 2026\n"));
    EXPECT_THAT(text, HasSubstr("Frequency : 996 Hz\n"));
    EXPECT_THAT(text, HasSubstr("ADC/DAC Level: 25\n"));
    EXPECT_THAT(text, HasSubstr(std::string(70, '=') + "\n"));
    EXPECT_THAT(text, testing::ContainsRegex(
                          "Thd +0.7147 +0.7510 +0.7750 +0.7930 +0.8075 +0.8197 +0.8303 +0.8399 +0.8399\n"));
    EXPECT_THAT(
        text, testing::ContainsRegex("dB +-42.92 +-53.93 +-56.25 +-57.80 +-60.11 +-62.34 +-63.97 +-65.18\n"));
    EXPECT_THAT(text, HasSubstr("Quenby Software Audio Sonavex."));
}

// Within a hundredth of an inch, with any replacement font.
TEST_F(ReportPdfTest, PutsEveryWordWhereThePageSaysItIs) {
    ShowLocked();
    const auto words = Words();
    const auto at = [&](const std::string& text) {
        for (const PlacedWord& word : words)
            if (word.text == text) return word;
        ADD_FAILURE() << "not on the page: " << text;
        return PlacedWord{};
    };
    EXPECT_NEAR(at("Quenby").left, 0.8, 0.01);
    EXPECT_NEAR(at("2nd").left, 0.85 + 0.2, 0.01);
    EXPECT_NEAR(at("9th").left, 6.59 + 0.2, 0.01);
    EXPECT_NEAR(at("Total").left, 7.41, 0.01);
    EXPECT_NEAR(at("Total").right, 7.91, 0.01);
    EXPECT_NEAR(at(std::string(70, '=')).left, 0.8, 0.01);
    EXPECT_NEAR(at(std::string(70, '=')).right, 7.8, 0.01);
    EXPECT_NEAR(at("Thd").left, 0.3, 0.01);
    EXPECT_NEAR(at("0.7147").left, 0.8, 0.01);
    EXPECT_NEAR(at("0.7510").left, 1.67, 0.01);
    EXPECT_NEAR(at("-65.18").left, 6.59, 0.01);
    EXPECT_NEAR((at("Quenby").top + at("Quenby").bottom) / 2, 0.5 + 0.19 / 2, 0.02);
    EXPECT_NEAR(at("dB").top - at("Thd").top, 2 * 0.19, 0.005);
}

TEST_F(ReportPdfTest, ShowsAnUnlockedMeasurementWithoutFigures) {
    Show({"", "", "", "", "", "", "", ""}, {"", "", "", "", "", "", "", ""}, "N/A");
    const auto words = Words();
    std::vector<std::string> rows;
    for (const PlacedWord& word : words)
        if (word.top > 1.75) rows.push_back(word.text);
    EXPECT_THAT(rows, ElementsAre("Thd", "N/A", "dB", "Quenby", "Software", "Audio", "Sonavex."));
}

TEST_F(ReportPdfTest, ShiftsEntriesWithoutASignIntoTheColumnOfThoseWithOne) {
    Show({"-0.0012", "N/A", "0.0001", "0.0002", "N/A", "0.5000", "0.6000", "0.7000"},
         {"00.00", "-19.58", "N/A", "", "", "", "", ""}, "0.7000");
    double zero = 0.0;
    double minus = 0.0;
    for (const PlacedWord& word : Words()) {
        if (word.text == "00.00") zero = word.left;
        if (word.text == "-0.0012") minus = word.left;
    }
    EXPECT_NEAR(zero, 0.9, 0.01);
    EXPECT_NEAR(minus, 0.8, 0.01);
}

TEST_F(ReportPdfTest, ReplacesAnOlderFile) {
    std::ofstream(file) << "old";
    ShowLocked();
    Print(file);
    EXPECT_THAT(TextOfPdf(file), HasSubstr("0.8399"));
    EXPECT_TRUE(printer.FileExists(file));
}

TEST_F(ReportPdfTest, SaysWhichFileCannotBeWritten) {
    const auto target = folder.Path() / "missing" / "report.pdf";
    try {
        Print(target);
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), kPrinterError);
        EXPECT_THAT(error.what(), HasSubstr(target.string()));
    }
    EXPECT_FALSE(printer.FileExists(target));
}

TEST_F(ReportPdfTest, SendsNothingWithoutAPage) {
    printer.Select({"", file.string()});
    EXPECT_NO_THROW(printer.EndDoc());
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(ReportPdfTest, SuggestsAFileThatDoesNotExist) {
    const ScopedVariable home("HOME", folder.Path());
    const std::string first = printer.SuggestedFile();
    std::ofstream(first) << "taken";
    const std::string second = printer.SuggestedFile();
    EXPECT_EQ(first, folder.Path() / "Sonavex report.pdf");
    EXPECT_EQ(second, folder.Path() / "Sonavex report 2.pdf");
}

}  // namespace
}  // namespace sonavex
