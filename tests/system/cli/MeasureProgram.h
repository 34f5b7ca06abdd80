#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace sonavex {

// How a run of the program ended.
struct Outcome {
    bool ended = false;  // within the limit
    int status = -1;
    std::string output;
    std::string errors;

    // The lines of the output, each an object.
    std::vector<nlohmann::ordered_json> Json() const;
};

// sonavex-measure, running beside the test: without settings, sound choice, sound server or cards of
// the user, unless the additions name one. Ends with this object.
class MeasureProgram {
public:
    // Where its output and its complaints go instead of the outcome; empty for the outcome.
    struct Streams {
        std::filesystem::path output;
        std::filesystem::path errors;
    };
    // Arguments without the program's name.
    MeasureProgram(const Arguments& arguments, const Environment& additions, const Streams& streams);
    explicit MeasureProgram(const Arguments& arguments, const Environment& additions = {})
        : MeasureProgram(arguments, additions, Streams{}) {}

    // Waits for its end, at most so long.
    Outcome End(std::chrono::milliseconds limit);
    // True when the output so far holds this text before the time is over.
    bool Prints(const std::string& text, std::chrono::milliseconds limit) const;
    void Send(int signal) const noexcept { process_.Send(signal); }

private:
    std::filesystem::path OutputPath() const { return folder_.Path() / "output"; }
    std::filesystem::path ErrorsPath() const { return folder_.Path() / "errors"; }

    PrivateFolder folder_;
    ChildProcess process_;
};

// Runs it to its end; for runs that need no more than a few seconds.
Outcome Measure(const Arguments& arguments, const Environment& additions = {});
// On the simulated card.
Outcome MeasureSimulated(const Arguments& arguments);

inline const Environment kSimulated{{"SONAVEX_SOUND", "simulated"}};

// One line on the standard error that holds the text, nothing on the standard output, status 1.
void ExpectRefusal(const Outcome& outcome, const std::string& text);

// All of an update's keys in their order and with their types, 8 captions of each kind.
// live: with what a live measurement adds.
void ExpectShape(const nlohmann::ordered_json& line, bool live);

// The end of the table: every harmonic and the total in percent, every harmonic in dB.
inline constexpr const char* kReadingsPattern =
    " 2nd +3rd +4th +5th +6th +7th +8th +9th +Total\n=+\nThd %( +[0-9.]+| +N/A){9}\n"
    "dB  ( +-?[0-9.]+| +N/A){8}\n$";

// The captions of the line joined by blanks.
std::string Captions(const nlohmann::ordered_json& line, const char* key);

}  // namespace sonavex
