#include "core/run/RunLines.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "core/run/StoredRun.h"

namespace sonavex {
namespace {

using LineJson = nlohmann::ordered_json;

class RunLineReader {
public:
    void Add(std::string_view line) {
        try {
            const LineJson json = LineJson::parse(line);
            if (json.contains("preview")) return;
            if (run_.is_null() && json.contains("run")) run_ = json["run"];
            points_.push_back({json.value("point", std::size_t{0}), ParseStoredPoint(line)});
        } catch (const nlohmann::json::exception&) {
            ++skipped_;
        } catch (const RunError&) {
            ++skipped_;
        }
    }

    RunLines Read() {
        if (run_.is_null() || points_.empty()) throw RunError("It holds no line with a run.");
        RunLines read;
        read.run.file = ParseRunFile(run_.dump());
        read.run.conditions = points_.front().stored.conditions;
        read.run.points = PointsOf(read.run.file.plan, read.run.conditions.rateHz);
        read.run.conditions.points = read.run.points.size();
        TakePoints(read.run);
        read.skipped = skipped_;
        return read;
    }

private:
    struct NumberedPoint {
        std::size_t number;  // from 1
        StoredPoint stored;
    };

    void TakePoints(MeasuredRun& run) {
        std::map<std::size_t, RunPointResult*> found;
        for (NumberedPoint& point : points_) {
            if (Belongs(point, run))
                found[point.number - 1] = &point.stored.result;
            else
                ++skipped_;
        }
        if (found.empty()) throw RunError("It holds no point of its run.");
        run.results.resize(found.rbegin()->first + 1);
        for (std::size_t i = 0; i < run.results.size(); ++i) {
            const auto result = found.find(i);
            run.results[i] = result != found.end() ? std::move(*result->second) : Missing(run.points[i]);
        }
    }

    static bool Belongs(const NumberedPoint& point, const MeasuredRun& run) {
        return point.number >= 1 && point.number <= run.points.size() &&
               SamePoint(point.stored.result.point, run.points[point.number - 1]) &&
               point.stored.conditions.rateHz == run.conditions.rateHz;
    }

    static RunPointResult Missing(const RunPoint& point) {
        RunPointResult result;
        result.point = point;
        result.fault = {"not measured", "The line of the point is missing."};
        result.reading.voids.push_back({VoidCode::kTooShort, result.fault.sentence});
        return result;
    }

    std::vector<NumberedPoint> points_;
    LineJson run_;
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
