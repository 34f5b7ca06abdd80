#include "core/run/StoredRun.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "core/precise/results/ParseReading.h"

namespace sonavex {
namespace {

using StoredJson = nlohmann::ordered_json;

constexpr std::size_t kMostStoredCharacters = 64'000'000;
constexpr double kMostSeconds = 1e9;
constexpr double kMostAttempts = 1000;
constexpr double kStoredMillisecondsPerSecond = 1000.0;

[[noreturn]] void RefuseStored(const std::string& fault) {
    throw RunError("The stored run: " + fault + ".");
}

const StoredJson& StoredMember(const StoredJson& object, const char* name) {
    if (!object.is_object()) RefuseStored("it is not an object");
    const auto found = object.find(name);
    if (found == object.end()) RefuseStored(std::string(name) + " is missing");
    return *found;
}

std::optional<double> StoredValue(const StoredJson& object, const char* name) {
    const StoredJson& member = StoredMember(object, name);
    if (member.is_null()) return std::nullopt;
    if (!member.is_number() || !std::isfinite(member.get<double>()))
        RefuseStored(std::string(name) + " is not a number");
    return member.get<double>();
}

double StoredNumber(const StoredJson& object, const char* name, double most) {
    const std::optional<double> number = StoredValue(object, name);
    if (!number || std::abs(*number) > most) RefuseStored(std::string(name) + " is not a number of a run");
    return *number;
}

std::size_t StoredCount(const StoredJson& object, const char* name, double most) {
    const double number = StoredNumber(object, name, most);
    if (number < 0 || number != std::floor(number)) RefuseStored(std::string(name) + " is not a count");
    return static_cast<std::size_t>(number);
}

bool StoredFlag(const StoredJson& object, const char* name) {
    const StoredJson& member = StoredMember(object, name);
    if (!member.is_boolean()) RefuseStored(std::string(name) + " is neither true nor false");
    return member.get<bool>();
}

std::string StoredWords(const StoredJson& object, const char* name) {
    const StoredJson& member = StoredMember(object, name);
    if (!member.is_string()) RefuseStored(std::string(name) + " is not a text");
    return member.get<std::string>();
}

std::vector<std::string> StoredTexts(const StoredJson& object, const char* name) {
    const StoredJson& member = StoredMember(object, name);
    if (!member.is_array()) RefuseStored(std::string(name) + " is not a list");
    std::vector<std::string> texts;
    for (const StoredJson& text : member) {
        if (!text.is_string()) RefuseStored(std::string(name) + " is not a list of texts");
        texts.push_back(text.get<std::string>());
    }
    return texts;
}

// A run without a live measurement has no devices.
std::optional<StreamDetails> StoredStream(const StoredJson& point, double rateHz) {
    constexpr double kMostBits = 64;
    constexpr double kMostFrames = 1e15;
    if (!point.contains("input")) return std::nullopt;
    StreamDetails stream;
    stream.input = StoredWords(point, "input");
    stream.output = StoredWords(point, "output");
    stream.rateHz = static_cast<std::int32_t>(rateHz);
    stream.inputBits = static_cast<int>(StoredCount(point, "input_bits", kMostBits));
    stream.outputBits = static_cast<int>(StoredCount(point, "output_bits", kMostBits));
    stream.simulated = StoredFlag(point, "simulated");
    stream.notes = StoredTexts(point, "notes");
    stream.fineFramesLost = StoredCount(point, "frames_lost", kMostFrames);
    stream.framesMissing = StoredCount(point, "frames_missing", kMostFrames);
    stream.fineFramesMissing = StoredCount(point, "stimulus_frames_missing", kMostFrames);
    stream.underruns = StoredCount(point, "underruns", kMostFrames);
    return stream;
}

Value StoredWithUncertainty(const StoredJson& point, const char* name) {
    return {StoredValue(point, name), StoredValue(StoredMember(point, "uncertainty"), name), false};
}

StoredPoint PointIn(const StoredJson& json) {
    constexpr double kMostHz = 1e6;
    constexpr double kMostDb = 1000;
    StoredPoint stored;
    RunPointResult& result = stored.result;
    result.point = {StoredNumber(json, "requested_hz", kMostHz), StoredNumber(json, "played_hz", kMostHz),
                    StoredNumber(json, "stimulus_dbfs", kMostDb)};
    std::optional<Reading> reading = ParseReading(json.dump());
    if (!reading) RefuseStored("a point has no reading");
    result.reading = std::move(*reading);
    result.gainDb = StoredWithUncertainty(json, "gain_db");
    result.phaseDegrees = StoredWithUncertainty(json, "phase_deg");
    if (const std::optional<double> delayMs = StoredValue(json, "path_delay_ms"))
        result.delaySeconds = *delayMs / kStoredMillisecondsPerSecond;
    if (!result.reading.Valid())
        result.fault = {StoredTexts(json, "void").front(), result.reading.voids.front().sentence};
    result.attempts = static_cast<int>(StoredCount(json, "attempts", kMostAttempts));
    result.afterLoss = StoredFlag(json, "after_loss");
    stored.conditions.rateHz = StoredNumber(json, "rate_hz", std::numeric_limits<std::int32_t>::max());
    stored.conditions.points = StoredCount(json, "points", kMostRunPoints);
    stored.conditions.stream = StoredStream(json, stored.conditions.rateHz);
    return stored;
}

MeasuredRun StoredRunIn(const StoredJson& json) {
    MeasuredRun run;
    run.file = ParseRunFile(StoredMember(json, "run").dump());
    run.conditions.rateHz = StoredNumber(json, "rate_hz", std::numeric_limits<std::int32_t>::max());
    run.points = PointsOf(run.file.plan, run.conditions.rateHz);
    run.conditions.points = StoredCount(json, "points", kMostRunPoints);
    run.time = StoredWords(json, "time");
    run.seconds = StoredNumber(json, "seconds", kMostSeconds);
    const StoredJson& results = StoredMember(json, "results");
    if (!results.is_array() || results.size() > run.points.size() ||
        run.conditions.points != run.points.size())
        RefuseStored("it has other points than its plan");
    for (const StoredJson& entry : results) {
        StoredPoint stored = PointIn(entry);
        if (!SamePoint(stored.result.point, run.points[run.results.size()]))
            RefuseStored("it has other points than its plan");
        run.conditions.stream = std::move(stored.conditions.stream);
        run.results.push_back(std::move(stored.result));
    }
    return run;
}

template <class Read>
auto ReadStored(std::string_view text, Read read) {
    if (text.size() > kMostStoredCharacters) RefuseStored("it is too long");
    try {
        return read(StoredJson::parse(text));
    } catch (const nlohmann::json::exception&) {
        RefuseStored("it is not JSON of a run");
    }
}

}  // namespace

std::string StoredRunText(const MeasuredRun& run) {
    StoredJson json{{"run", StoredJson::parse(RunFileText(run.file))},
                    {"rate_hz", run.conditions.rateHz},
                    {"points", run.points.size()},
                    {"time", run.time},
                    {"seconds", run.seconds},
                    {"results", StoredJson::array()}};
    RunConditions conditions = run.conditions;
    conditions.points = run.points.size();
    for (std::size_t i = 0; i < run.results.size(); ++i)
        json["results"].push_back(StoredJson::parse(RunPointJson(run.results[i], i + 1, conditions)));
    return json.dump(-1, ' ', false, StoredJson::error_handler_t::replace);
}

MeasuredRun ParseStoredRun(std::string_view text) {
    return ReadStored(text, StoredRunIn);
}

StoredPoint ParseStoredPoint(std::string_view line) {
    return ReadStored(line, PointIn);
}

}  // namespace sonavex
