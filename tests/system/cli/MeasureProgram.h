#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace sonavex {

// Result of a run.
struct Outcome {
    bool ended = false;  // within the limit
    int status = -1;
    std::string output;
    std::string errors;

    // The lines of the output, parsed as JSON objects.
    std::vector<nlohmann::ordered_json> Json() const;
};

// A running sonavex-measure process. It sees none of the user's settings, sound servers or cards unless the
// additions name one. The destructor ends it.
class MeasureProgram {
public:
    // Files for standard output and standard error; empty for the outcome.
    struct Streams {
        std::filesystem::path output;
        std::filesystem::path errors;
    };
    // The arguments do not include the program's name.
    MeasureProgram(const Arguments& arguments, const Environment& additions, const Streams& streams);
    explicit MeasureProgram(const Arguments& arguments, const Environment& additions = {})
        : MeasureProgram(arguments, additions, Streams{}) {}

    // Waits until it ends, at most for `limit`.
    Outcome End(std::chrono::milliseconds limit);
    // Whether the output contains the text before the limit.
    bool Prints(const std::string& text, std::chrono::milliseconds limit) const;
    void Send(int signal) const noexcept { process_.Send(signal); }

private:
    std::filesystem::path OutputPath() const { return folder_.Path() / "output"; }
    std::filesystem::path ErrorsPath() const { return folder_.Path() / "errors"; }

    PrivateFolder folder_;
    ChildProcess process_;
};

// Runs it until it ends. For runs of a few seconds.
Outcome Measure(const Arguments& arguments, const Environment& additions = {});
// The same, on the simulated card.
Outcome MeasureSimulated(const Arguments& arguments);

inline const Environment kSimulated{{"SONAVEX_SOUND", "simulated"}};

// Expects status 1, one line on standard error that contains the text, and no standard output.
void ExpectRefusal(const Outcome& outcome, const std::string& text);

// Expects all keys of an update in their order and with their types, and 8 captions of each kind. live:
// including the keys of `run`.
void ExpectShape(const nlohmann::ordered_json& line, bool live);

// Matches the end of the table: every harmonic and the total in percent, every harmonic in dB.
inline constexpr const char* kReadingsPattern =
    " 2nd +3rd +4th +5th +6th +7th +8th +9th +Total\n=+\nThd %( +[0-9.]+| +N/A){9}\n"
    "dB  ( +-?[0-9.]+| +N/A){8}\n$";

// The captions of the line, joined by blanks.
std::string Captions(const nlohmann::ordered_json& line, const char* key);

}  // namespace sonavex
