#include <gmock/gmock.h>

#include "core/report/PagePen.h"
#include "core/report/Report.h"
#include "support/RecordingPrinter.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::Not;

class ReportTest : public testing::Test {
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
    const std::vector<std::string>& Print() {
        PrintInformation(measurement, {2026, 11, 21}, printer);
        return printer.items;
    }
    // From the column header, which is the same on every page, to the footer.
    std::vector<std::string> Rows() {
        const auto& items = Print();
        return {items.begin() + 14, items.end() - 1};
    }

    MeasurementControls measurement;
    CallLog log;
    RecordingPrinter printer{log};
};

TEST_F(ReportTest, SetsUpThePage) {
    Print();
    EXPECT_THAT(log.Lines(), ElementsAre("BeginPage courier new 12 8.5x11"));
}

TEST_F(ReportTest, PrintsALockedMeasurementLetterForLetter) {
    Show({"0.7147", "0.7510", "0.7750", "0.7930", "0.8075", "0.8197", "0.8303", "0.8399"},
         {"-42.92", "-53.93", "-56.25", "-57.80", "-60.11", "-62.34", "-63.97", "-65.18"}, "0.8399");
    EXPECT_THAT(Print(),
                ElementsAre("0.80 0.50 Quenby Software Audio Sonavex",  //
                            "0.80 0.69 Date : Nov 21, 2026",            //
                            "0.80 0.88 Frequency : 996 Hz",             //
                            "0.80 1.07 ADC/DAC Level: 25",              //
                            "0.85 1.45   2nd", "1.67 1.45   3rd", "2.49 1.45   4th", "3.31 1.45   5th",
                            "4.13 1.45   6th", "4.95 1.45   7th", "5.77 1.45   8th", "6.59 1.45   9th",
                            "7.41 1.45 Total",                           //
                            "0.80 1.64 " + std::string(70, '='),         //
                            "0.30 1.83 Thd", "0.80 1.83 0.7147 ",        //
                            "1.67 1.83 0.7510 ", "2.49 1.83 0.7750 ",    //
                            "3.31 1.83 0.7930 ", "4.13 1.83 0.8075 ",    //
                            "4.95 1.83 0.8197 ", "5.77 1.83 0.8303 ",    //
                            "6.59 1.83 0.8399 ", "7.41 1.83 0.8399",     //
                            "0.30 2.21 dB", "0.80 2.21 -42.92",          //
                            "1.67 2.21 -53.93", "2.49 2.21 -56.25",      //
                            "3.31 2.21 -57.80", "4.13 2.21 -60.11",      //
                            "4.95 2.21 -62.34", "5.77 2.21 -63.97",      //
                            "6.59 2.21 -65.18",                          //
                            "0.80 2.78 Quenby Software Audio Sonavex. "  //
                            ));
}

TEST_F(ReportTest, PrintsEmptyCaptionsAndNotAvailableWhileNotLocked) {
    Show({"", "", "", "", "", "", "", ""}, {"", "", "", "", "", "", "", ""}, "N/A");
    EXPECT_THAT(Rows(),
                ElementsAre("0.30 1.83 Thd", "0.80 1.83  ", "1.67 1.83  ", "2.49 1.83  ", "3.31 1.83  ",
                            "4.13 1.83  ", "4.95 1.83  ", "5.77 1.83  ", "6.59 1.83  ", "7.41 1.83 N/A",  //
                            "0.30 2.21 dB", "0.80 2.21  ", "1.67 2.21  ", "2.49 2.21  ", "3.31 2.21  ",
                            "4.13 2.21  ", "4.95 2.21  ", "5.77 2.21  ", "6.59 2.21  "));
}

TEST_F(ReportTest, PrintsNegativePercentagesOfABaselineAndLevelsWithoutASign) {
    Show({"-0.0012", "N/A", "0.0001", "0.0002", "N/A", "10.5000", "10.6000", "10.7000"},
         {"00.00", "N/A", "-00.00", "", "-100.25", "-19.58", "06.02", "-45.00"}, "10.7000");
    EXPECT_THAT(Rows(), ElementsAre("0.30 1.83 Thd", "0.80 1.83 -0.0012 ", "1.67 1.83 N/A ",
                                    "2.49 1.83 0.0001 ", "3.31 1.83 0.0002 ", "4.13 1.83 N/A ",
                                    "4.95 1.83 10.5000 ", "5.77 1.83 10.6000 ", "6.59 1.83 10.7000 ",
                                    "7.41 1.83 10.7000",                    //
                                    "0.30 2.21 dB",                         //
                                    "0.80 2.21  ", "0.90 2.21 00.00",       //
                                    "1.67 2.21  ", "1.77 2.21 N/A",         //
                                    "2.49 2.21  ", "2.59 2.21 -00.00",      //
                                    "3.31 2.21  ",                          //
                                    "4.13 2.21 -100.25",                    //
                                    "4.95 2.21 -19.58", "5.77 2.21 06.02",  //
                                    "6.59 2.21 -45.00"));
}

TEST_F(ReportTest, PrintsTheLevelWordsAndTheFrequencyAsTyped) {
    measurement.txtFreq.SetText("1000.5");
    measurement.LblLevel.SetCaption("Ovr");
    EXPECT_THAT(Print(),
                testing::IsSupersetOf({"0.80 0.88 Frequency : 1000.5 Hz", "0.80 1.07 ADC/DAC Level: Ovr"}));
}

TEST_F(ReportTest, EndsThePageAtAPrintersErrorWithoutAnErrorOfItsOwn) {
    printer.failAtItem = 3;
    EXPECT_NO_THROW(Print());
    EXPECT_EQ(printer.items.size(), 3U);
}

TEST_F(ReportTest, KeepsEveryColumnOnThePage) {
    Show({"99.9999", "99.9999", "99.9999", "99.9999", "99.9999", "99.9999", "99.9999", "99.9999"},
         {"-120.00", "-120.00", "-120.00", "-120.00", "-120.00", "-120.00", "-120.00", "-120.00"}, "99.9999");
    for (const std::string& item : Print()) {
        const double right = std::stod(item) + 0.1 * static_cast<double>(item.size() - 10);
        EXPECT_LE(right, 8.5 - 0.25) << item;
    }
}

class PagePenTest : public testing::Test {
protected:
    CallLog log;
    RecordingPrinter printer{log};
    PagePen pen{printer, {}};
};

TEST_F(PagePenTest, CountsCharactersNotBytes) {
    pen.Print("\xC2\xB5s");
    EXPECT_NEAR(pen.CurrentX, 0.2, 1e-9);
}

TEST_F(PagePenTest, GoesFromStopToStopAndStaysBehindTheLast) {
    std::vector<double> stops;
    for (int i = 0; i < 10; ++i) stops.push_back(pen.Tab().CurrentX);
    for (int n = 0; n < 9; ++n) EXPECT_NEAR(stops[static_cast<std::size_t>(n)], 0.85 + 0.82 * n, 1e-9);
    EXPECT_EQ(stops[9], stops[8]);
}

TEST_F(PagePenTest, LeavesAStopThatItStandsOn) {
    pen.At(0.85).Tab();
    EXPECT_NEAR(pen.CurrentX, 1.67, 1e-9);
    pen.At(0.849).Tab();
    EXPECT_NEAR(pen.CurrentX, 0.85, 1e-9);
}

TEST_F(PagePenTest, GoesToTheLeftEdgeWithANewLine) {
    pen.At(3.0).NewLine(2);
    EXPECT_EQ(pen.CurrentX, 0.0);
    EXPECT_NEAR(pen.CurrentY, 0.38, 1e-9);
}

TEST_F(PagePenTest, WritesNoEmptyText) {
    pen.Print("");
    EXPECT_THAT(printer.items, testing::IsEmpty());
}

TEST_F(ReportTest, PrintsASecondBlockBelowTheFooter) {
    Show({"", "", "", "", "", "", "", ""}, {"", "", "", "", "", "", "", ""}, "N/A");
    const std::vector<std::string> first = Print();
    PrintInformation(measurement, {2026, 11, 21}, printer, {"Analyzer", "", "THD"});
    ASSERT_EQ(printer.items.size(), first.size() + 2);
    EXPECT_TRUE(std::equal(first.begin(), first.end(), printer.items.begin()));
    EXPECT_EQ(printer.items[first.size()], "0.80 5.20 Analyzer");
    EXPECT_EQ(printer.items[first.size() + 1], "0.80 5.58 THD");
}

TEST_F(ReportTest, LeavesOutWhatDoesNotFitThePage) {
    PrintInformation(measurement, {2026, 11, 21}, printer, std::vector<std::string>(40, "line"));
    EXPECT_EQ(printer.items.back(), "0.80 10.14 line");
}

}  // namespace
}  // namespace sonavex
