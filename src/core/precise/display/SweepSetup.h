#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/run/RunFile.h"
#include "core/settings/Settings.h"

namespace sonavex {

// The controls that make a run: axis, other values, settling and limit. The values are stored with every
// change.
class SweepSetup {
public:
    enum LimitedValue { kLimitThd, kLimitThdn };

    // Both must outlive the setup.
    SweepSetup(Settings& settings, std::function<void()> onChanged);
    SweepSetup(const SweepSetup&) = delete;
    SweepSetup& operator=(const SweepSetup&) = delete;

    // Selects the stored values. A stored value that cannot be used counts as the default.
    void Load();
    bool OverFrequency() const { return cmbOver.ListIndex() == 0; }
    // Units of the axis and of the other values.
    const char* AxisUnit() const { return OverFrequency() ? "Hz" : "dBFS"; }
    const char* OtherUnit() const { return OverFrequency() ? "dBFS" : "Hz"; }
    // The run of the controls. conditions: what the controls do not choose. RunError for values that make
    // none.
    RunFile Chosen(const RunPlan& conditions) const;
    // "61 points, 2 records each: about 3 min", or why the run cannot be played.
    void ShowPlan(const RunPlan& conditions, double rateHz);
    // While a run is active nothing can be changed but the limit.
    void SetLocked(bool locked);

    // A limit table from the user: its name and text; empty if the user cancels. RunError for a file that
    // cannot be read.
    struct NamedText {
        std::string name;
        std::string text;
    };
    std::function<std::optional<NamedText>()> AskForTable;
    // Lets the user edit a limit table; empty if the user cancels.
    std::function<std::optional<std::string>(const std::string& table)> AskForLine;

    ComboBox cmbOver;  // Frequency, Level
    TextBox txtFrom;
    TextBox txtTo;
    TextBox txtAmount;
    ComboBox cmbSpacing;     // an octave or dB steps, in all
    TextBox txtOther;        // levels or frequencies, separated by commas
    TextBox txtSettleLevel;  // dB
    TextBox txtSettleThdn;   // dB
    CheckBox chkPreview;
    Label lblPlan;
    CheckBox chkLimit;
    ComboBox cmbLimitOf;  // THD, THD+N
    TextBox txtLimit;
    CommandButton cmdEditLimit;
    CommandButton cmdLoadLimit;
    Label lblLimit;  // name of the table, or why it cannot be used

private:
    // The entries of one axis.
    struct Axis {
        double from = 0;
        double to = 0;
        double amount = 0;
        int spacing = 0;
        std::vector<double> other;
    };
    Axis& Shown() { return axes_[OverFrequency() ? 0 : 1]; }
    const Axis& Shown() const { return axes_[OverFrequency() ? 0 : 1]; }
    RunRange Range() const;
    void ShowAxis();
    void ShowPreview();
    void TakeTexts();
    void TakeLimit();
    void LoadTable();
    void EditTable();
    void TakeTable(const NamedText& table);
    void SetTable(const std::string& name, std::optional<LimitTable> table);
    void LoadStoredTable();
    std::array<double, 2> LineEnds() const;
    void Store();
    void Change();

    Settings& settings_;
    std::function<void()> onChanged_;
    std::array<Axis, 2> axes_;
    double settleLevelDb_ = 0.01;
    double settleThdnDb_ = 0.3;
    double limitDb_ = -90;
    bool locked_ = false;
    std::optional<LimitTable> table_;
    std::string tableName_;
};

}  // namespace sonavex
