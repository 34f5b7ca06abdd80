#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/report/RunReport.h"
#include "support/RecordingPrinter.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

TEST(RunReport, IsOnePageWithPictureAndLines) {
    CallLog log;
    RecordingPrinter printer(log);
    const std::string word(60, 'w');
    PrintRun("PNG", {"first", word + ' ' + word, std::string(80, 'x')}, printer);
    EXPECT_THAT(log.Lines(), ElementsAre("BeginPage courier new 12 8.5x11"));
    EXPECT_THAT(
        printer.items,
        ElementsAre("0.50 0.50 picture 7.50 PNG", "0.75 5.40 first", "0.75 5.59 " + word, "0.75 5.78 " + word,
                    "0.75 5.97 " + std::string(70, 'x'), "0.75 6.16 " + std::string(10, 'x')));
}

TEST(RunReport, SaysThatLinesDoNotFit) {
    CallLog log;
    RecordingPrinter printer(log);
    PrintRun("PNG", std::vector<std::string>(40, "line"), printer);
    EXPECT_THAT(printer.items, SizeIs(28));
    EXPECT_EQ(printer.items.back(), "0.75 10.34 ...");
}

}  // namespace
}  // namespace sonavex
