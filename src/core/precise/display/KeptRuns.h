#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/OptionButton.h"
#include "core/precise/display/AnalyzerControls.h"
#include "core/run/MeasuredRun.h"

namespace sonavex {

// The runs that the user keeps beside the present one: their names, verdicts, and which of them the plot
// shows.
class KeptRuns {
public:
    static constexpr std::size_t kMost = 8;

    struct Row {
        OptionButton optSelect;
        Label lblLetter;  // "B"; empty in a row without a run
        TextBox txtName;
        Label lblConditions;  // "USB Audio, 48000 Hz, 24 bit"
        CheckBox chkShown;
        StateChip Verdict;  // as SweepPanel::Verdict
    };

    // onChanged: the plot shows other runs.
    explicit KeptRuns(std::function<void()> onChanged);
    KeptRuns(const KeptRuns&) = delete;
    KeptRuns& operator=(const KeptRuns&) = delete;

    // At the top of the list, shown and selected. Without a free row the oldest run is removed. id: of the
    // run in the history; empty if it is not stored.
    void Add(MeasuredRun run, const std::string& name, const std::string& id);
    // All runs are judged by these limits. A limit that does not cover a run gives it no verdict.
    void Judge(const std::vector<RunLimit>& limits);
    std::size_t Count() const noexcept { return runs_.size(); }

    struct Shown {
        char letter = 'B';
        const MeasuredRun* run = nullptr;
    };
    // Valid until the next change.
    std::vector<Shown> ShownRuns() const;
    // The identifiers of the shown runs that are stored, newest first.
    std::vector<std::string> ShownIds() const;
    // Called when the user has given a run another name.
    std::function<void(const std::string& id, const std::string& name)> OnRenamed;

    std::array<Row, kMost> Rows;
    CommandButton cmdRename;  // puts the focus into the selected name
    CommandButton cmdRemove;

private:
    struct Kept {
        MeasuredRun run;
        std::string name;
        std::string id;
        char letter = 'B';
        bool shown = true;
    };
    char FreeLetter() const;
    void Select(std::size_t row);
    void Remove();
    void Rename(std::size_t row);
    void ShowRows();
    void ShowRow(std::size_t row);

    std::function<void()> onChanged_;
    std::vector<Kept> runs_;  // newest first
    std::vector<RunLimit> limits_;
    std::size_t selected_ = 0;
};

// "-1 dBFS", "1 kHz", "-10, -20 dBFS": what distinguishes a run from others over the same axis.
std::string OtherValuesText(const RunPlan& plan, std::span<const RunPoint> points);

// The verdict of a run at a chip.
void ShowVerdict(StateChip& chip, std::span<const RunLimit> limits, std::span<const RunPointResult> results,
                 std::size_t points, bool running);

}  // namespace sonavex
