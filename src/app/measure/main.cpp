// sonavex-measure: the instrument without a window, for scripts and production lines.

#include <algorithm>
#include <cctype>
#include <exception>
#include <iostream>
#include <string>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "app/measure/Readings.h"
#include "core/ports/Dialogs.h"
#include "core/support/EndProgram.h"
#include "core/support/RuntimeError.h"
#include "platform/plain/UserFolders.h"

namespace {

using namespace sonavex;

int Execute(const measure::Options& options) {
    switch (options.command) {
        case measure::Options::Command::kDevices:
            return measure::ListDevices(options.devicesJson);
        case measure::Options::Command::kRun:
            return measure::RunMeasurement(options.run);
        case measure::Options::Command::kFile:
            return measure::MeasureFile(options.file);
        case measure::Options::Command::kAnalyze:
            return options.analyze.input.empty() ? measure::AnalyzeLive(options.analyze)
                                                 : measure::AnalyzeFile(options.analyze);
        case measure::Options::Command::kSweep:
            return measure::Sweep(options.sweep);
        case measure::Options::Command::kSelfTest:
            return measure::SelfTest(options.selfTestJson);
        case measure::Options::Command::kHistory:
            return measure::ListHistory(options.history);
        case measure::Options::Command::kNone:
            break;
    }
    measure::Print(options.answer);
    return measure::kMeasured;
}

// Prints one line, even if names in it contain line breaks.
int Fail(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
    std::cerr << "sonavex-measure: " << text << '\n';
    return measure::kFailed;
}

}  // namespace

int main(int argc, char** argv) {
    KeepFilesFromEverybody();
    try {
        return Execute(measure::ParseOptions(argc, argv));
    } catch (const EndProgram& end) {
        return end.status;
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}
