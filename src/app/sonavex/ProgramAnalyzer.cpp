#include "app/sonavex/ProgramAnalyzer.h"

#include <chrono>
#include <random>
#include <thread>
#include <utility>

#include "core/report/RunReport.h"
#include "core/support/EndProgram.h"
#include "platform/plain/HistoryFolder.h"
#include "platform/plain/LocalTime.h"

namespace sonavex::app {
namespace {

using namespace std::chrono_literals;

// A device that has stopped plays no ramp.
constexpr auto kLongestRampWait = 1s;
constexpr auto kRampPoll = 5ms;

// Without a folder for the history every call fails, and nothing else of the program does.
class NoHistoryFolder : public HistoryFiles {
public:
    explicit NoHistoryFolder(std::string reason) : reason_(std::move(reason)) {}
    std::vector<std::string> Days() const override { throw FileError(reason_); }
    std::string Read(const std::string&) const override { throw FileError(reason_); }
    void Append(const std::string&, const std::string&) override { throw FileError(reason_); }
    bool Replace(const std::string&, const std::string&, const std::string&) override {
        throw FileError(reason_);
    }
    void Sync(const std::string&) override { throw FileError(reason_); }

private:
    std::string reason_;
};

std::unique_ptr<HistoryFiles> UserHistory() {
    try {
        return std::make_unique<HistoryFolder>(HistoryFolder::OfTheUser());
    } catch (const FileError& error) {
        return std::make_unique<NoHistoryFolder>(error.what());
    }
}

std::uint64_t RandomNumber() {
    std::random_device random;
    return (std::uint64_t{random()} << 32U) | random();
}

frmAnalyzer::Needs FormNeeds(const ProgramAnalyzer::Needs& needs, Background& background,
                             const MeasurementFiles& files, History& history) {
    frmMain& main = needs.main;
    return {.loop = needs.loop,
            .instrument = main.Instrument,
            .background = background,
            .dialogs = needs.dialogs,
            .files = files,
            .generatorPanel = main.GeneratorPanel,
            .history = history,
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
      historyFiles_(UserHistory()),
      historyBackground_(needs.loop),
      history_({*historyFiles_, historyBackground_, RandomNumber}),
      form_(FormNeeds(needs, background_, files_, history_)),
      window_(form_, guard_) {
    form_.History.Refresh();  // compacts the files
    guard_.OnEnd = [&main = needs.main](const EndProgram& end) { main.End(end); };
    window_.OnHelp = [&help = needs.help](frmAnalyzer::Tab front) {
        help.ShowTopic(front == frmAnalyzer::Tab::kHistory ? help_topic::kHistory : help_topic::kAnalyzer);
    };
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

// The end of the program waits for the ramp, also when a message about the history ends it at once.
void ProgramAnalyzer::Close() {
    try {
        form_.UnloadForNextStart();
    } catch (const EndProgram&) {
        WaitForRamp();
        throw;
    }
    WaitForRamp();
}

void ProgramAnalyzer::WaitForRamp() {
    const std::chrono::nanoseconds limit = loop_.Now() + kLongestRampWait;
    while (form_.StimulusHeard() && loop_.Now() < limit) {
        std::this_thread::sleep_for(kRampPoll);
        loop_.YieldWithoutInput();
    }
}

}  // namespace sonavex::app
