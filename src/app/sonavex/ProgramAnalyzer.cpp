#include "app/sonavex/ProgramAnalyzer.h"

#include <random>
#include <utility>

#include "platform/plain/HistoryFolder.h"
#include "platform/plain/LocalTime.h"

namespace sonavex::app {
namespace {

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
    : background_(needs.loop),
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
}

}  // namespace sonavex::app
