#include "core/precise/display/RunEntry.h"

#include <algorithm>

#include "core/run/RunLimits.h"
#include "core/run/display/RunTexts.h"

namespace sonavex {
namespace {

constexpr int kFigureDecimals = 3;

HistoryState StateOf(RunOutcome outcome) {
    switch (outcome) {
        case RunOutcome::kPass:
            return HistoryState::kPass;
        case RunOutcome::kFail:
            return HistoryState::kFail;
        case RunOutcome::kNotComplete:
            return HistoryState::kNotComplete;
        case RunOutcome::kUnjudged:
            break;
    }
    return HistoryState::kDone;
}

// The highest value; a bound only if no other value is above it.
NamedValue HighestOf(const MeasuredRun& run, const char* name, RunQuantity::Kind kind) {
    NamedValue highest{name, "dB", kFigureDecimals, {}};
    for (const RunPointResult& result : run.results) {
        const Value value = ValueOf(result, RunQuantity{kind});
        if (value.value && (!highest.value.value || *value.value > *highest.value.value))
            highest.value = value;
    }
    return highest;
}

}  // namespace

HistoryEntry EntryOf(const MeasuredRun& run, const std::string& time) {
    HistoryEntry entry;
    const RunVerdict verdict = JudgeRun(run.file.limits, run.results, run.points.size());
    entry.time = run.time.empty() ? time : run.time;
    entry.kind = HistoryKind::kRun;
    entry.state = StateOf(verdict.outcome);
    entry.reason = VerdictSentence(verdict, run.results, run.points.size());
    if (const auto& stream = run.conditions.stream) {
        entry.input = stream->input;
        entry.output = stream->output;
        entry.inputBits = stream->inputBits;
        entry.outputBits = stream->outputBits;
        entry.simulated = stream->simulated;
    }
    entry.channel = run.file.plan.channel == 0 ? "left" : "right";
    entry.rateHz = run.conditions.rateHz;
    entry.mode = "thd";
    entry.stimulus = run.file.plan.over == RunAxis::kFrequency ? "sweep over frequency" : "sweep over level";
    for (const NamedValue& figure : {HighestOf(run, "thd_db", RunQuantity::Kind::kThd),
                                     HighestOf(run, "thdn_db", RunQuantity::Kind::kThdn)})
        if (figure.value.value) entry.figures.push_back(figure);
    return entry;
}

}  // namespace sonavex
