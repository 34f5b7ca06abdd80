#include <gmock/gmock.h>

#include <cmath>
#include <map>

#include "app/measure/MeasureError.h"
#include "app/measure/SelfTest.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using measure::SelfCheck;
using nlohmann::ordered_json;
using testing::HasSubstr;

SelfCheck NumberCheck(double expected, double measured, double tolerance) {
    SelfCheck check;
    check.signal = "signal";
    check.value = "THD";
    check.unit = "dB";
    check.expected = expected;
    check.measured = measured;
    check.tolerance = tolerance;
    return check;
}

SelfCheck LimitCheck(double limit, double measured) {
    SelfCheck check = NumberCheck(limit, measured, 0);
    check.atMost = true;
    return check;
}

SelfCheck CodeCheck(const std::string& expected, const std::string& measured) {
    SelfCheck check;
    check.signal = "signal";
    check.value = "void";
    check.expectedCode = expected;
    check.measuredCode = measured;
    return check;
}

TEST(SelfTest, AllChecksPassOnThisComputer) {
    const Outcome outcome = Measure({"selftest", "--json"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    const auto lines = outcome.Json();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0]["passed"], true);
    std::map<std::string, int> signals;
    for (const ordered_json& check : lines[0]["checks"]) {
        EXPECT_EQ(check["passed"], true) << check;
        EXPECT_EQ(check["expected"].type_name(), check["measured"].type_name()) << check;
        ++signals[check["signal"]];
    }
    for (const char* const signal :
         {"double, 1000.366 Hz", "double, 1000 Hz on a bin", "24 bit, 1000.366 Hz", "16 bit, 1000.366 Hz",
          "double, known harmonics", "24 bit, known harmonics", "16 bit, known harmonics",
          "double, square of 997 Hz", "double, white noise", "double, clipped sine", "double, SMPTE",
          "double, CCIF", "double, multitone", "24 bit, multitone", "24 bit, one sample lost",
          "16 bit, overloaded input", "double, silence", "double, noise alone"})
        EXPECT_GT(signals[signal], 0) << signal;
}

TEST(SelfTest, ATableWithoutJson) {
    const Outcome outcome = Measure({"selftest"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("double, 1000.366 Hz       THD+N                      -280"));
    EXPECT_THAT(outcome.output, HasSubstr("checks passed.\n"));
    EXPECT_THAT(outcome.output, testing::Not(HasSubstr("FAILED")));
}

TEST(SelfTest, ChecksCompareWithTheTolerance) {
    EXPECT_TRUE(NumberCheck(-10.0, -10.5, 0.5).Passed());
    EXPECT_FALSE(NumberCheck(-10.0, -10.6, 0.5).Passed());
    EXPECT_FALSE(NumberCheck(-10.0, -9.4, 0.5).Passed());
    EXPECT_FALSE(NumberCheck(-10.0, std::nan(""), 0.5).Passed());
    EXPECT_TRUE(LimitCheck(-280.0, -280.0).Passed());
    EXPECT_FALSE(LimitCheck(-280.0, -279.9).Passed());
    EXPECT_FALSE(LimitCheck(-280.0, std::nan("")).Passed());
    EXPECT_TRUE(CodeCheck("overload", "overload").Passed());
    EXPECT_FALSE(CodeCheck("overload", "valid").Passed());
}

int StatusOfReport(const std::vector<SelfCheck>& checks, bool json, std::string& output) {
    testing::internal::CaptureStdout();
    const int status = measure::ReportSelfTest(checks, json);
    output = testing::internal::GetCapturedStdout();
    return status;
}

TEST(SelfTest, OneWrongExpectationEndsWithStatus1) {
    std::vector<SelfCheck> checks = measure::RunSelfTest();
    std::string output;
    EXPECT_EQ(StatusOfReport(checks, false, output), measure::kMeasured);
    checks.front().expected += 2.0 * checks.front().tolerance;
    EXPECT_EQ(StatusOfReport(checks, false, output), measure::kFailed);
    EXPECT_THAT(output, HasSubstr("1 of " + std::to_string(checks.size()) + " checks FAILED.\n"));
    EXPECT_EQ(StatusOfReport(checks, true, output), measure::kFailed);
    const auto json = ordered_json::parse(output);
    EXPECT_EQ(json["passed"], false);
    EXPECT_EQ(json["checks"][0]["passed"], false);
    EXPECT_EQ(json["checks"][1]["passed"], true);
}

TEST(SelfTest, AMissingValueFails) {
    std::string output;
    const std::vector<SelfCheck> checks = {CodeCheck("silence", "silence"),
                                           NumberCheck(1.0, std::nan(""), 0.1)};
    EXPECT_EQ(StatusOfReport(checks, false, output), measure::kFailed);
    EXPECT_THAT(output, HasSubstr("no value"));
    EXPECT_EQ(StatusOfReport(checks, true, output), measure::kFailed);
    EXPECT_TRUE(ordered_json::parse(output)["checks"][1]["measured"].is_null());
}

}  // namespace
}  // namespace sonavex
