#pragma once

#include <string>
#include <vector>

namespace sonavex::measure {

// One comparison of the self-test.
struct SelfCheck {
    std::string signal;  // "24 bit, 1000.366 Hz"
    std::string value;   // "THD+N"
    std::string unit;
    double expected = 0;
    double measured = 0;   // not a number: the reading has no such value
    double tolerance = 0;  // ignored by atMost
    bool atMost = false;   // passes at or below `expected`

    // For readings that must be void: codes in place of the numbers. Empty otherwise.
    std::string expectedCode;
    std::string measuredCode;

    bool Passed() const;
};

// Plays stimuli through a loop in memory and measures them: double precision, 24 and 16 bits. Takes about a
// second.
std::vector<SelfCheck> RunSelfTest();

// Prints the checks as a table with a line for each, or as one line of JSON. The exit status: kMeasured if
// all have passed, else kFailed.
int ReportSelfTest(const std::vector<SelfCheck>& checks, bool json);

}  // namespace sonavex::measure
