#include "core/run/RunLines.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/run/RunFile.h"

namespace sonavex {
namespace {

using PointLine = nlohmann::ordered_json;

constexpr double kMostOfACount = 1e9;

const PointLine& LineMember(const PointLine& object, const std::string& name) {
    static const PointLine kNull;
    if (!object.is_object()) return kNull;
    const auto found = object.find(name);
    return found != object.end() ? *found : kNull;
}

std::optional<double> LineNumber(const PointLine& object, const std::string& name) {
    const PointLine& member = LineMember(object, name);
    return member.is_number() ? std::optional(member.get<double>()) : std::nullopt;
}

std::size_t LineCount(const PointLine& object, const std::string& name) {
    const double count = LineNumber(object, name).value_or(0.0);
    return count >= 0.0 && count <= kMostOfACount ? static_cast<std::size_t>(count) : 0;
}

std::string LineText(const PointLine& object, const std::string& name) {
    const PointLine& member = LineMember(object, name);
    return member.is_string() ? member.get<std::string>() : std::string();
}

std::string LineFirst(const PointLine& object, const std::string& name) {
    const PointLine& list = LineMember(object, name);
    return list.is_array() && !list.empty() && list.front().is_string() ? list.front().get<std::string>()
                                                                        : std::string();
}

// `uncertaintyName` also is the name in the list of bounds.
Value LineValue(const PointLine& line, std::optional<double> number, const std::string& uncertaintyName) {
    Value value{number, LineNumber(LineMember(line, "uncertainty"), uncertaintyName), false};
    const PointLine& bounds = LineMember(line, "at_most");
    value.atMost =
        bounds.is_array() && std::find(bounds.begin(), bounds.end(), uncertaintyName) != bounds.end();
    return value;
}

Value LineNamedValue(const PointLine& line, const std::string& name) {
    return LineValue(line, LineNumber(line, name), name);
}

std::vector<Harmonic> LineHarmonics(const PointLine& line) {
    std::vector<Harmonic> harmonics;
    for (const PointLine& entry : LineMember(line, "harmonic")) {
        const std::size_t order = LineCount(entry, "n");
        if (order < 2) continue;
        const std::string name = "harmonic." + std::to_string(order);
        harmonics.push_back({static_cast<int>(order), LineValue(line, LineNumber(entry, "level_dbc"), name),
                             LineValue(line, LineNumber(entry, "phase_deg"), name + ".phase_deg")});
    }
    return harmonics;
}

RunPointResult LineResult(const PointLine& line, const RunPoint& point) {
    RunPointResult result;
    result.point = point;
    Reading& reading = result.reading;
    reading.frequencyHz = LineNamedValue(line, "frequency_hz");
    reading.levelDbfs = LineNamedValue(line, "level_dbfs");
    reading.thdDb = LineNamedValue(line, "thd_db");
    reading.thdnDb = LineNamedValue(line, "thdn_db");
    reading.noiseDbfs = LineNamedValue(line, "noise_dbfs");
    reading.harmonics = LineHarmonics(line);
    reading.highestOrder = static_cast<int>(LineCount(line, "harmonics"));
    reading.lines = LineCount(line, "lines");
    reading.length = LineCount(line, "length");
    reading.blocks = LineCount(line, "blocks");
    reading.bits = static_cast<int>(LineCount(line, "bits"));
    result.gainDb = LineNamedValue(line, "gain_db");
    result.phaseDegrees = LineNamedValue(line, "phase_deg");
    if (const std::optional<double> delayMs = LineNumber(line, "path_delay_ms"))
        result.delaySeconds = *delayMs / 1000.0;
    result.attempts = static_cast<int>(LineCount(line, "attempts"));
    result.afterLoss = LineMember(line, "after_loss") == true;
    if (LineMember(line, "valid") == true && result.gainDb.value) return result;
    result.fault = {LineFirst(line, "void"), LineFirst(line, "sentences")};
    if (result.fault.code.empty()) result.fault.code = "not measured";
    reading.voids.push_back({VoidCode::kDisturbed, result.fault.sentence});
    return result;
}

RunPointResult MissingResult(const RunPoint& point) {
    RunPointResult result;
    result.point = point;
    result.fault = {"not measured", "The line of the point is missing."};
    result.reading.voids.push_back({VoidCode::kDisturbed, result.fault.sentence});
    return result;
}

// The conditions that all lines share.
RunConditions LineConditions(const PointLine& line) {
    RunConditions conditions;
    conditions.rateHz = LineNumber(line, "rate_hz").value_or(0.0);
    StreamDetails stream;
    stream.input = LineText(line, "input");
    stream.output = LineText(line, "output");
    stream.inputBits = static_cast<int>(LineCount(line, "input_bits"));
    stream.outputBits = static_cast<int>(LineCount(line, "output_bits"));
    stream.simulated = LineMember(line, "simulated") == true;
    conditions.stream = stream;
    return conditions;
}

class RunLineReader {
public:
    void Add(std::string_view text) {
        PointLine line = PointLine::parse(text, nullptr, false);
        if (!line.is_object()) {
            ++skipped_;
            return;
        }
        if (run_.is_null()) run_ = LineMember(line, "run");
        lines_.push_back(std::move(line));
    }

    RunLines Read() const {
        if (!run_.is_object()) throw RunError("It holds no line with a run.");
        RunLines read;
        read.skipped = skipped_;
        read.run.file = ParseRunFile(run_.dump());
        read.run.conditions = LineConditions(lines_.front());
        read.run.points = PointsOf(read.run.file.plan, read.run.conditions.rateHz);
        read.run.conditions.points = read.run.points.size();
        TakePoints(read);
        return read;
    }

private:
    void TakePoints(RunLines& read) const {
        std::map<std::size_t, const PointLine*> found;
        for (const PointLine& line : lines_) {
            const std::size_t number = LineCount(line, "point");
            if (IsPoint(line, number, read.run))
                found[number - 1] = &line;
            else
                ++read.skipped;
        }
        if (found.empty()) throw RunError("It holds no point of its run.");
        for (std::size_t i = 0; i <= found.rbegin()->first; ++i) {
            const RunPoint& point = read.run.points[i];
            const auto line = found.find(i);
            read.run.results.push_back(line != found.end() ? LineResult(*line->second, point)
                                                           : MissingResult(point));
        }
    }

    static bool IsPoint(const PointLine& line, std::size_t number, const MeasuredRun& run) {
        if (number < 1 || number > run.points.size()) return false;
        const RunPoint& point = run.points[number - 1];
        return LineNumber(line, "requested_hz") == point.requestedHz &&
               LineNumber(line, "played_hz") == point.playedHz &&
               LineNumber(line, "stimulus_dbfs") == point.levelDbfs &&
               LineNumber(line, "rate_hz") == run.conditions.rateHz;
    }

    std::vector<PointLine> lines_;
    PointLine run_;
    std::size_t skipped_ = 0;
};

}  // namespace

RunLines ReadRunLines(std::string_view text) {
    RunLineReader reader;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        if (line.find_first_not_of(" \r\t") != std::string_view::npos) reader.Add(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return reader.Read();
}

}  // namespace sonavex
