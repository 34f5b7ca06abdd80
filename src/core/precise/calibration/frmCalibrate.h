#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/precise/calibration/Calibration.h"
#include "core/text/Dates.h"

namespace sonavex {

// The calibration dialog: the voltage of full scale at an output, from a multimeter's reading of a tone, or
// at the input, from a voltage that the user applies.
class frmCalibrate {
public:
    static constexpr double kToneHz = 1000;
    static constexpr double kToneDbfs = -10;

    struct Entry {
        CalibratedChannel channel;
        std::string deviceName;
    };
    struct Needs {
        Settings& settings;
        std::function<DateTime()> now;
        // Plays the tone on both sides, or ends it. Returns why it cannot be played, as a sentence; empty if
        // it plays.
        std::function<std::string(bool on)> play;
    };

    // What `needs` refers to must outlive the form.
    explicit frmCalibrate(const Needs& needs);

    // Call before the dialog is shown, with the channels that can be calibrated: at least one.
    void Form_Load(std::vector<Entry> entries);
    // The level at the input; empty while there is no valid reading. Call for each reading.
    void ShowInputLevel(std::optional<double> dbfs);
    // Call when the tone has ended or no longer arrives, without a press of cmdPlay.
    void ShowToneEnded();

    Window Frame{"frmCalibrate"};
    ComboBox cmbChannel;
    Label lblDevice;   // device and rate
    Label lblPresent;  // "0 dBFS is 1.234 V since 2026-11-22 17:05:00", "not calibrated"
    Label lblSteps;    // what to do
    CommandButton cmdPlay;
    Label lblLevel;
    TextBox txtVolts;
    Label lblTrouble;
    CommandButton cmdStore;
    CommandButton cmdRemove;
    CommandButton cmdClose;

    void cmbChannel_Click();
    void cmdPlay_Click();
    void cmdStore_Click();
    void cmdRemove_Click();
    void cmdClose_Click();

    // Called after each change of a stored calibration.
    std::function<void()> OnChanged;
    // Called when the dialog must close.
    std::function<void()> OnClosed;

private:
    const CalibratedChannel& Channel() const;
    bool ForOutput() const { return Channel().direction == CalibratedChannel::Direction::kOutput; }
    std::optional<double> Level() const;
    void Show();
    void Play(bool on);

    Needs needs_;
    Calibrations calibrations_;
    std::vector<Entry> entries_;
    std::optional<double> inputDbfs_;
    bool playing_ = false;
};

}  // namespace sonavex
