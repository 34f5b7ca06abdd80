#include "core/history/RunEntry.h"

#include "core/run/RunLimits.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kStoredDigits = 6;
constexpr int kFigureDecimals = 3;

HistoryState StateOfRun(const RunVerdict& verdict) {
    switch (verdict.outcome) {
        case RunOutcome::kPass:
            return HistoryState::kPass;
        case RunOutcome::kFail:
            return HistoryState::kFail;
        case RunOutcome::kNotComplete:
            return HistoryState::kNotComplete;
        default:
            return HistoryState::kDone;
    }
}

// "sweep: 20 to 20000 Hz, 61 points"
std::string StimulusOfRun(const MeasuredRun& run) {
    if (run.points.empty()) return "sweep";
    const bool overFrequency = run.file.plan.over == RunAxis::kFrequency;
    const auto position = [overFrequency](const RunPoint& point) {
        return WithDigits(overFrequency ? point.requestedHz : point.levelDbfs, kStoredDigits);
    };
    return "sweep: " + position(run.points.front()) + " to " + position(run.points.back()) +
           (overFrequency ? " Hz, " : " dBFS, ") + std::to_string(run.points.size()) +
           (run.points.size() == 1 ? " point" : " points");
}

void KeepHigher(Value& highest, const Value& value) {
    if (value.value && (!highest.value || *value.value > *highest.value)) highest = value;
}

}  // namespace

HistoryEntry EntryOf(const MeasuredRun& run, const std::string& name) {
    HistoryEntry entry;
    entry.kind = HistoryKind::kRun;
    entry.time = run.time;
    entry.note = name;
    entry.state = StateOfRun(JudgeRun(run.file.limits, run.results, run.points.size()));
    entry.channel = run.file.plan.channel == 0 ? "left" : "right";
    entry.rateHz = run.conditions.rateHz;
    if (run.conditions.stream) {
        entry.input = run.conditions.stream->input;
        entry.output = run.conditions.stream->output;
        entry.inputBits = run.conditions.stream->inputBits;
        entry.outputBits = run.conditions.stream->outputBits;
        entry.simulated = run.conditions.stream->simulated;
    }
    entry.mode = "run";
    entry.stimulus = StimulusOfRun(run);
    Value thd;
    Value thdn;
    for (const RunPointResult& result : run.results) {
        if (!result.Valid()) continue;
        KeepHigher(thd, result.reading.thdDb);
        KeepHigher(thdn, result.reading.thdnDb);
    }
    if (thd.value) entry.figures.push_back({"thd_db", "dB", kFigureDecimals, thd});
    if (thdn.value) entry.figures.push_back({"thdn_db", "dB", kFigureDecimals, thdn});
    return entry;
}

}  // namespace sonavex
