#include "support/AnalyzerUser.h"

#include <array>
#include <vector>

namespace sonavex {
namespace {

constexpr std::array<const char*, 22> kAnalyzerTexts{
    "1000", "1k",  "997.3", "60",  "7k",     "4:1",   "1:1", "100, 1k", "1000@-6,3000@-6", "3/oct", "",
    "-1",   "-20", "0",     "-61", "-1 dBV", "775mV", "abc", "1e308",   "-1e-9",           "2",     "23999"};

class AnalyzerUser {
public:
    AnalyzerUser(Randomness& randomness, frmAnalyzer& form, const RunEvent& run)
        : random_(randomness), form_(form), run_(run) {}

    std::string UseAny(const std::vector<std::string>& recordings) {
        switch (random_.Pick(13)) {
            case 0:
            case 1:
            case 2:
                return Start();
            case 3:
            case 4:
                return Choose();
            case 5:
            case 6:
                return Type();
            case 7:
            case 8:
                return PressAny();
            case 9:
            case 10:
                return UsePlot();
            case 11:
                return UseHistory();
            default:
                return OpenOrClose(recordings);
        }
    }

private:
    std::string Start() {
        Press(form_.Stimulus.cmdStart);
        return "Analyzer: Start or Stop";
    }
    std::string Choose() {
        const std::vector<ComboBox*> boxes = Boxes();
        const std::int32_t which = random_.Pick(static_cast<std::int32_t>(boxes.size()));
        ComboBox& box = *boxes[static_cast<std::size_t>(which)];
        // Longer records take the processor longer.
        const std::int32_t index = &box == &form_.Analysis.cmbLength ? 0 : random_.Pick(box.Count());
        if (box.Enabled()) run_([&] { box.UserSelects(index); });
        return "Analyzer: list " + std::to_string(which) + " entry " + std::to_string(index);
    }
    std::string Type() {
        StimulusPanel& stimulus = form_.Stimulus;
        AnalysisPanel& analysis = form_.Analysis;
        TextBox* const boxes[] = {&stimulus.txtFrequency, &stimulus.txtFrequency2, &stimulus.txtRatio,
                                  &stimulus.txtTones,     &stimulus.txtLevel,      &analysis.txtAverages,
                                  &analysis.txtHarmonics};
        const std::int32_t which = random_.Pick(std::size(boxes));
        TextBox& box = *boxes[which];
        const std::string text =
            kAnalyzerTexts[static_cast<std::size_t>(random_.Pick(kAnalyzerTexts.size()))];
        if (box.Enabled()) run_([&] { box.UserTypes(text); });
        if (box.Enabled()) run_([&] { box.UserLeaves(); });
        return "Analyzer: text " + std::to_string(which) + " '" + text + '\'';
    }
    std::string PressAny() {
        CommandButton* const buttons[] = {&form_.cmdHold,
                                          &form_.cmdSingle,
                                          &form_.cmdKeep,
                                          &form_.cmdRemoveKept,
                                          &form_.cmdFit,
                                          &form_.cmdCopy,
                                          &form_.cmdExport,
                                          &form_.Recording.cmdLive,
                                          &form_.Stimulus.cmdCalibrate,
                                          &form_.Stimulus.cmdEditTones};
        MenuItem* const entries[] = {&form_.mnuKeepReference, &form_.mnuKeepIdle, &form_.Readings.mnuThdn,
                                     &form_.Readings.mnuNotch};
        const std::int32_t which = random_.Pick(std::size(buttons) + std::size(entries));
        if (static_cast<std::size_t>(which) < std::size(buttons))
            Press(*buttons[which]);
        else
            run_([&] { entries[static_cast<std::size_t>(which) - std::size(buttons)]->UserChooses(); });
        return "Analyzer: button " + std::to_string(which);
    }
    std::string UsePlot() {
        SpectrumPlot& plot = form_.Spectrum;
        const double place = 0.01 * random_.Pick(101);
        const double steps = random_.Pick(21) - 10;
        const std::function<void()> acts[] = {[&] { plot.UserZoomsFrequency(place, steps); },
                                              [&] { plot.UserZoomsLevel(place, steps); },
                                              [&] { plot.UserZoomsAtCursor(steps); },
                                              [&] { plot.UserDrags(steps, place); },
                                              [&] { plot.UserClicks(place, 0.01); },
                                              [&] { plot.UserSteps(static_cast<int>(steps)); },
                                              [&] { plot.UserStepsByHarmonic(steps > 0 ? 1 : -1); },
                                              [&] { plot.UserRemovesCursor(); }};
        const std::int32_t which = random_.Pick(std::size(acts));
        run_(acts[which]);
        return "Analyzer: plot " + std::to_string(which);
    }
    // Selects a few of the newest entries.
    std::string UseHistory() {
        HistoryPanel& panel = form_.History;
        const auto select = [&] {
            std::vector<std::string> ids;
            for (const HistoryList::Row& row : panel.List.Rows())
                if (ids.size() < static_cast<std::size_t>(random_.Pick(4)) && !row.id.empty())
                    ids.push_back(row.id);
            panel.List.UserSelects(ids);
        };
        const std::function<void()> acts[] = {
            [&] { form_.mnuStoreReading.UserChooses(); },
            select,
            select,
            [&] { panel.cmdCompare.Press(); },
            [&] { panel.cmdDelete.Press(); },
            [&] { panel.cmdCopy.Press(); },
            [&] { panel.chkValid.UserSets(random_.Pick(2) == 1); },
            [&] { panel.Refresh(); },
        };
        const std::int32_t which = random_.Pick(std::size(acts));
        run_(acts[which]);
        return "Analyzer: history " + std::to_string(which);
    }
    std::string OpenOrClose(const std::vector<std::string>& recordings) {
        switch (random_.Pick(3)) {
            case 0: {
                const std::int32_t which = random_.Pick(static_cast<std::int32_t>(recordings.size()));
                run_([&] { form_.OpenRecording(recordings[static_cast<std::size_t>(which)]); });
                return "Analyzer: recording " + std::to_string(which);
            }
            case 1:
                run_([&] { form_.Unload(); });
                return "Analyzer: closed";
            default:
                run_([&] { form_.Show(); });
                return "Analyzer: opened";
        }
    }

    void Press(CommandButton& button) {
        run_([&] { button.Press(); });
    }
    std::vector<ComboBox*> Boxes() {
        StimulusPanel& stimulus = form_.Stimulus;
        AnalysisPanel& analysis = form_.Analysis;
        std::vector<ComboBox*> boxes{&stimulus.cmbShape,        &stimulus.cmbPair,  &stimulus.cmbNoise,
                                     &stimulus.cmbDither,       &stimulus.cmbSide,  &stimulus.cmbLevelUnit,
                                     &analysis.cmbLength,       &analysis.cmbBand,  &analysis.cmbWeighting,
                                     &analysis.cmbChannel,      &form_.cmbPlotUnit, &form_.cmbPeriods,
                                     &form_.Readings.cmbThdUnit};
        for (ReadingRow& row : form_.Readings.Rows) boxes.push_back(&row.unit);
        return boxes;
    }

    Randomness& random_;
    frmAnalyzer& form_;
    const RunEvent& run_;
};

}  // namespace

std::string UseAnalyzer(Randomness& randomness, frmAnalyzer& form, const std::vector<std::string>& recordings,
                        const RunEvent& run) {
    if (!form.Loaded()) {
        run([&] { form.Show(); });
        return "Analyzer: opened";
    }
    return AnalyzerUser(randomness, form, run).UseAny(recordings);
}

}  // namespace sonavex
