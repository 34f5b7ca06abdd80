#include "system/cli/MeasureProgram.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <thread>

#include "support/Wait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;

constexpr auto kRunLimit = 20s;

std::string ContentOf(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

Arguments Command(const Arguments& arguments) {
    Arguments command{SONAVEX_MEASURE};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

// The additions come last, because the last definition of a name counts.
Environment PrivateEnvironment(const std::filesystem::path& folder, const Environment& additions) {
    const Environment defaults{{"HOME", folder.string()},
                               {"XDG_RUNTIME_DIR", folder.string()},
                               {"XDG_CONFIG_HOME", folder.string()},
                               {"XDG_DATA_HOME", folder.string()},
                               {"ALSA_CONFIG_PATH", "/dev/null"},
                               {"PULSE_RUNTIME_PATH", folder.string()},
                               {"PULSE_COOKIE", (folder / "cookie").string()},
                               {"PULSE_SERVER", "unix:" + (folder / "no-server").string()},
                               {"SONAVEX_SOUND", ""},
                               {"SONAVEX_OS_MAJOR", ""}};
    Environment environment = additions;
    for (const auto& entry : defaults)
        if (std::none_of(additions.begin(), additions.end(),
                         [&](const auto& addition) { return addition.first == entry.first; }))
            environment.push_back(entry);
    return environment;
}

std::filesystem::path Or(const std::filesystem::path& path, const std::filesystem::path& otherwise) {
    return path.empty() ? otherwise : path;
}

std::vector<std::string> Keys(const ordered_json& object) {
    std::vector<std::string> keys;
    for (const auto& item : object.items()) keys.push_back(item.key());
    return keys;
}

void ExpectCaptions(const ordered_json& list) {
    ASSERT_TRUE(list.is_array());
    EXPECT_EQ(list.size(), 8U);
    for (const auto& caption : list) EXPECT_TRUE(caption.is_string()) << caption;
}

}  // namespace

std::vector<ordered_json> Outcome::Json() const {
    std::vector<ordered_json> lines;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) lines.push_back(ordered_json::parse(line));
    return lines;
}

MeasureProgram::MeasureProgram(const Arguments& arguments, const Environment& additions,
                               const Streams& streams)
    : process_(Command(arguments), PrivateEnvironment(folder_.Path(), additions),
               Or(streams.output, OutputPath()), Or(streams.errors, ErrorsPath())) {}

Outcome MeasureProgram::End(std::chrono::milliseconds limit) {
    Outcome outcome;
    outcome.ended = process_.WaitForEnd(limit);
    outcome.status = process_.Status();
    outcome.output = ContentOf(OutputPath());
    outcome.errors = ContentOf(ErrorsPath());
    return outcome;
}

bool MeasureProgram::Prints(const std::string& text, std::chrono::milliseconds limit) const {
    return WaitUntil([&] { return ContentOf(OutputPath()).find(text) != std::string::npos; }, limit);
}

Outcome Measure(const Arguments& arguments, const Environment& additions) {
    return MeasureProgram(arguments, additions).End(kRunLimit);
}

Outcome MeasureSimulated(const Arguments& arguments) {
    return Measure(arguments, kSimulated);
}

void ExpectRefusal(const Outcome& outcome, const std::string& text) {
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, testing::StartsWith("sonavex-measure: "));
    EXPECT_THAT(outcome.errors, testing::HasSubstr(text));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    EXPECT_THAT(outcome.errors, testing::EndsWith("\n"));
}

void ExpectShape(const ordered_json& line, bool live) {
    std::vector<std::string> keys{"block",   "frequency", "locked",  "settled", "peakBin", "adc",
                                  "adcPeak", "dac",       "dacPeak", "thd",     "percent", "db"};
    if (live)
        keys.insert(keys.end(), {"input", "output", "rate", "input_bits", "output_bits", "bits", "simulated",
                                 "notes", "blocksLost", "framesMissing", "overruns", "underruns"});
    ASSERT_EQ(Keys(line), keys);
    for (const char* key : {"block", "peakBin", "adcPeak", "dacPeak"})
        EXPECT_TRUE(line[key].is_number_integer()) << key;
    for (const char* key : {"frequency", "adc", "dac", "thd"}) EXPECT_TRUE(line[key].is_string()) << key;
    for (const char* key : {"locked", "settled"}) EXPECT_TRUE(line[key].is_boolean()) << key;
    ExpectCaptions(line["percent"]);
    ExpectCaptions(line["db"]);
    if (!live) return;
    EXPECT_TRUE(line["input"].is_string());
    EXPECT_TRUE(line["output"].is_string());
    EXPECT_TRUE(line["rate"].is_number_integer());
    EXPECT_EQ(line["bits"], std::min(line["input_bits"], line["output_bits"]));
    EXPECT_TRUE(line["simulated"].is_boolean());
    EXPECT_TRUE(line["notes"].is_array());
    for (const char* count : {"blocksLost", "framesMissing", "overruns", "underruns"})
        EXPECT_TRUE(line[count].is_number_unsigned()) << count;
}

std::string Captions(const ordered_json& line, const char* key) {
    std::string text;
    for (const auto& caption : line.at(key)) text += caption.get<std::string>() + " ";
    if (!text.empty()) text.pop_back();
    return text;
}

}  // namespace sonavex
