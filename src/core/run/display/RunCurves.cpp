#include "core/run/display/RunCurves.h"

#include <algorithm>
#include <cmath>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kFlagDecimals = 1;
// PreviewHarmonic states the noise 25.2 dB above its mean power. A value 10 dB above the mean is wrong by at
// most 3.2 dB with two standard deviations.
constexpr double kPreviewAboveNoiseDb = 10.0 - 25.2;

// Points along the axis with one value of the other list.
using RunFamily = std::span<const RunPoint>;

double OtherValue(const RunPoint& point, RunAxis over) {
    return over == RunAxis::kFrequency ? point.levelDbfs : point.requestedHz;
}

std::vector<RunFamily> FamiliesOf(std::span<const RunPoint> points, RunAxis over) {
    std::vector<RunFamily> families;
    for (std::size_t first = 0; first < points.size();) {
        std::size_t end = first + 1;
        while (end < points.size() && OtherValue(points[end], over) == OtherValue(points[first], over)) ++end;
        families.push_back(points.subspan(first, end - first));
        first = end;
    }
    return families;
}

// The points of a family and the rows of a limit between them, in the order of the axis. Between these the
// limit is straight.
std::vector<RunPoint> Corners(RunFamily family, const LimitCurve& limit, RunAxis over) {
    std::vector<RunPoint> corners(family.begin(), family.end());
    const auto before = [over](const RunPoint& a, const RunPoint& b) {
        return PositionOf(a, over) < PositionOf(b, over);
    };
    std::sort(corners.begin(), corners.end(), before);
    if (over == RunAxis::kLevel || limit.Constant()) return corners;
    const double lowestHz = corners.front().requestedHz;
    const double highestHz = corners.back().requestedHz;
    for (const LimitRow& row : limit.Rows())
        if (row.hertz > lowestHz && row.hertz < highestHz)
            corners.push_back({row.hertz, row.hertz, family.front().levelDbfs});
    std::sort(corners.begin(), corners.end(), before);
    return corners;
}

RunLimitLine LineOf(const RunQuantity& quantity, const LimitCurve& limit, RunFamily family, RunAxis over) {
    RunLimitLine line;
    line.atLevelAxis = quantity.kind == RunQuantity::Kind::kResponse;
    for (const RunPoint& point : Corners(family, limit, over)) {
        if (!limit.Covers(point.requestedHz)) continue;
        const double level = line.atLevelAxis ? point.levelDbfs : 0.0;
        line.curve.push_back({PositionOf(point, over), limit.At(point.requestedHz) + level, false});
    }
    if (limit.Constant() && !line.atLevelAxis)
        line.flag = WithoutTrailingZeros(limit.At(family.front().requestedHz), kFlagDecimals);
    return line;
}

bool DrawsTheSame(const RunLimitLine& line, const RunLimitLine& other) {
    return line.atLevelAxis == other.atLevelAxis &&
           std::equal(line.curve.begin(), line.curve.end(), other.curve.begin(), other.curve.end(),
                      [](const RunCurvePoint& a, const RunCurvePoint& b) {
                          return a.position == b.position && a.value == b.value;
                      });
}

bool IsShown(double decibels, double noise) {
    return decibels > noise + kPreviewAboveNoiseDb;
}

std::optional<double> PreviewValue(const PreviewPoint& point, RunSeries series, double levelDbfs,
                                   double bandHighHz) {
    if (series == RunSeries::kLevel)
        return IsShown(point.gainDb, point.gainNoiseDb) ? std::optional(levelDbfs + point.gainDb)
                                                        : std::nullopt;
    if (series != RunSeries::kSecond && series != RunSeries::kThird) return std::nullopt;
    const std::size_t index = series == RunSeries::kSecond ? 0 : 1;
    const double order = static_cast<double>(index) + 2;
    if (index >= point.harmonics.size() || order * point.hertz > bandHighHz) return std::nullopt;
    const PreviewHarmonic& harmonic = point.harmonics[index];
    return IsShown(harmonic.dbc, harmonic.noiseDbc) ? std::optional(harmonic.dbc) : std::nullopt;
}

}  // namespace

const char* NameOf(RunSeries series) {
    switch (series) {
        case RunSeries::kThd:
            return "THD";
        case RunSeries::kThdn:
            return "THD+N";
        case RunSeries::kSecond:
            return "H2";
        case RunSeries::kThird:
            return "H3";
        case RunSeries::kLevel:
            break;
    }
    return "Level";
}

const char* UnitOf(RunSeries series) {
    if (series == RunSeries::kLevel) return "dBFS";
    return series == RunSeries::kThd || series == RunSeries::kThdn ? "dB" : "dBc";
}

Value ValueOf(const RunPointResult& result, RunSeries series) {
    if (!result.Valid()) return {};
    switch (series) {
        case RunSeries::kThd:
            return ValueOf(result, {RunQuantity::Kind::kThd});
        case RunSeries::kThdn:
            return ValueOf(result, {RunQuantity::Kind::kThdn});
        case RunSeries::kSecond:
            return ValueOf(result, {RunQuantity::Kind::kHarmonic, 2});
        case RunSeries::kThird:
            return ValueOf(result, {RunQuantity::Kind::kHarmonic, 3});
        case RunSeries::kLevel:
            break;
    }
    return result.reading.levelDbfs;
}

double PositionOf(const RunPoint& point, RunAxis over) {
    return over == RunAxis::kFrequency ? std::log10(point.requestedHz) : point.levelDbfs;
}

std::vector<RunCurve> CurvesOf(std::span<const RunPointResult> results, RunAxis over, RunSeries series) {
    std::vector<RunCurve> curves;
    bool joined = false;
    for (std::size_t i = 0; i < results.size(); ++i) {
        const RunPoint& point = results[i].point;
        joined = joined && OtherValue(point, over) == OtherValue(results[i - 1].point, over);
        const Value value = ValueOf(results[i], series);
        if (value.value) {
            if (!joined) curves.emplace_back();
            curves.back().push_back({PositionOf(point, over), *value.value, value.atMost});
        }
        joined = value.value.has_value();
    }
    return curves;
}

std::vector<RunCurve> PreviewCurvesOf(const RunPreviewData& data, RunSeries series) {
    std::vector<RunCurve> curves;
    bool joined = false;
    for (std::size_t i = data.measured; i < data.points.size(); ++i) {
        const RunPoint& point = data.points[i];
        if (point.levelDbfs != data.points.front().levelDbfs) break;
        const auto previewed =
            std::find_if(data.preview.begin(), data.preview.end(),
                         [&](const PreviewPoint& p) { return p.hertz == point.requestedHz; });
        const auto value = previewed == data.preview.end()
                               ? std::nullopt
                               : PreviewValue(*previewed, series, point.levelDbfs, data.bandHighHz);
        if (value) {
            if (!joined) curves.emplace_back();
            curves.back().push_back({PositionOf(point, RunAxis::kFrequency), *value, false});
        }
        joined = value.has_value();
    }
    return curves;
}

std::vector<RunLimitLine> LimitLinesOf(std::span<const RunLimit> limits, std::span<const RunPoint> points,
                                       RunAxis over) {
    std::vector<RunLimitLine> lines;
    const auto add = [&](const RunQuantity& quantity, const std::optional<LimitCurve>& limit,
                         RunFamily family) {
        if (!limit) return;
        RunLimitLine line = LineOf(quantity, *limit, family, over);
        const bool drawn = std::any_of(lines.begin(), lines.end(), [&line](const RunLimitLine& other) {
            return DrawsTheSame(line, other);
        });
        if (!drawn) lines.push_back(std::move(line));
    };
    for (const RunFamily family : FamiliesOf(points, over))
        for (const RunLimit& limit : limits) {
            add(limit.quantity, limit.atLeast, family);
            add(limit.quantity, limit.atMost, family);
        }
    return lines;
}

}  // namespace sonavex
