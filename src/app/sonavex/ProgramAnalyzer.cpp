#include "app/sonavex/ProgramAnalyzer.h"

#include <chrono>
#include <thread>

#include "core/report/RunReport.h"
#include "platform/plain/LocalTime.h"

namespace sonavex::app {
namespace {

using namespace std::chrono_literals;

// A device that has stopped plays no ramp.
constexpr auto kLongestRampWait = 1s;
constexpr auto kRampPoll = 5ms;

frmAnalyzer::Needs FormNeeds(const ProgramAnalyzer::Needs& needs, Background& background,
                             const MeasurementFiles& files) {
    frmMain& main = needs.main;
    return {.loop = needs.loop,
            .instrument = main.Instrument,
            .background = background,
            .dialogs = needs.dialogs,
            .files = files,
            .generatorPanel = main.GeneratorPanel,
            .lblInput = main.lblInput,
            .lblOutput = main.lblOutput,
            .lblBits = main.lblBits,
            .pathNote = main.PathNote,
            .streamTrouble = main.StreamTrouble,
            .simulated = needs.simulated,
            .now = LocalDateTime,
            .version = needs.version};
}

}  // namespace

ProgramAnalyzer::ProgramAnalyzer(const Needs& needs)
    : loop_(needs.loop),
      background_(needs.loop),
      guard_(needs.dialogs, needs.errorLog, needs.ending),
      form_(FormNeeds(needs, background_, files_)),
      window_(form_, guard_) {
    guard_.OnEnd = [&main = needs.main](const EndProgram& end) { main.End(end); };
    window_.OnHelp = [&help = needs.help] { help.ShowTopic(help_topic::kAnalyzer); };
    form_.Sweep.Print = [&print = needs.print](const std::string& png,
                                               const std::vector<std::string>& lines) {
        print.Print([&](Printer& printer) { PrintRun(png, lines, printer); });
    };
    needs.main.Menus.mnuAnalyzer.Click.Handle([this] { form_.Show(); });
    needs.main.Menus.mnuOpenRecording.Click.Handle([this] {
        form_.Show();
        form_.Recording.cmdOpen.Press();
    });
}

void ProgramAnalyzer::Reopen() {
    if (form_.WasOpen()) form_.Show();
}

void ProgramAnalyzer::Close() {
    form_.UnloadForNextStart();
    const std::chrono::nanoseconds limit = loop_.Now() + kLongestRampWait;
    while (form_.StimulusHeard() && loop_.Now() < limit) {
        std::this_thread::sleep_for(kRampPoll);
        loop_.YieldWithoutInput();
    }
}

}  // namespace sonavex::app
