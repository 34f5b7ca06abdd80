#pragma once

#include "core/precise/display/frmAnalyzer.h"
#include "core/shell/frmMain.h"

namespace sonavex {

// What the Analyzer needs next to a main form on the simulated card. All must outlive the Analyzer.
inline frmAnalyzer::Needs AnalyzerNeeds(frmMain& main, EventLoop& loop, Background& background,
                                        Dialogs& dialogs, const MeasurementFiles& files) {
    return {.loop = loop,
            .instrument = main.Instrument,
            .background = background,
            .dialogs = dialogs,
            .files = files,
            .generatorPanel = main.GeneratorPanel,
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
