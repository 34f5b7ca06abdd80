#pragma once

#include <cstdint>

#include "core/history/History.h"
#include "core/precise/display/frmAnalyzer.h"
#include "core/shell/frmMain.h"
#include "support/MemoryHistory.h"

namespace sonavex {

// A history whose files are kept in memory.
struct HistoryInMemory {
    explicit HistoryInMemory(Background& background)
        : history({files, background, [this] { return ++random; }}) {}

    MemoryHistory files;
    std::uint64_t random = 0;
    History history;
};

// What the Analyzer needs next to a main form on the simulated card. All must outlive the Analyzer.
inline frmAnalyzer::Needs AnalyzerNeeds(frmMain& main, EventLoop& loop, Background& background,
                                        Dialogs& dialogs, const MeasurementFiles& files, History& history) {
    return {.loop = loop,
            .instrument = main.Instrument,
            .background = background,
            .dialogs = dialogs,
            .files = files,
            .generatorPanel = main.GeneratorPanel,
            .history = history,
            .lblInput = main.lblInput,
            .lblOutput = main.lblOutput,
            .lblBits = main.lblBits,
            .pathNote = main.PathNote,
            .streamTrouble = main.StreamTrouble,
            .simulated = true,
            .now = [] { return DateTime{2026, 11, 23, 10, 42, 7}; },
            .version = "2.1.14"};
}

}  // namespace sonavex
