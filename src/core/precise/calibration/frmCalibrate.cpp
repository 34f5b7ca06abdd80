#include "core/precise/calibration/frmCalibrate.h"

#include <utility>

#include "core/precise/calibration/Voltage.h"
#include "core/text/Decimals.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kOutputSteps =
    "Connect a true rms multimeter to the output, set to AC volts. Play the tone and enter what the "
    "multimeter reads.";
constexpr const char* kInputSteps =
    "Apply a sine of known voltage to the input, for example 1 kHz, below overload. When the reading is "
    "valid, enter the voltage.";
constexpr const char* kNoVoltage = "Enter a voltage, for example 1.23 V, 775 mV or 4 dBu.";
constexpr const char* kNoInputReading = "There is no valid reading at the input.";
constexpr const char* kToneIsOff = "Play the tone first.";
constexpr const char* kDeviceUnknown = "The device is not known and cannot be calibrated.";

std::string NameOfChannel(const CalibratedChannel& channel) {
    const bool input = channel.direction == CalibratedChannel::Direction::kInput;
    return std::string(input ? "Input" : "Output") + (channel.channel == 0 ? ", left" : ", right");
}

std::string LevelOfReading(std::optional<double> dbfs) {
    return dbfs ? "Reading: " + WithDecimals(*dbfs, 2) + " dBFS" : "no valid reading";
}

}  // namespace

frmCalibrate::frmCalibrate(const Needs& needs) : needs_(needs), calibrations_(needs.settings) {
    Frame.SetCaption("Calibrate");
    cmdStore.SetCaption("Store");
    cmdRemove.SetCaption("Remove");
    cmdClose.SetCaption("Close");
    cmbChannel.Click.Handle([this] { cmbChannel_Click(); });
    cmdPlay.Click.Handle([this] { cmdPlay_Click(); });
    cmdStore.Click.Handle([this] { cmdStore_Click(); });
    cmdRemove.Click.Handle([this] { cmdRemove_Click(); });
    cmdClose.Click.Handle([this] { cmdClose_Click(); });
}

void frmCalibrate::Form_Load(std::vector<Entry> entries) {
    entries_ = std::move(entries);
    std::vector<std::string> names;
    for (const Entry& entry : entries_) names.push_back(NameOfChannel(entry.channel));
    cmbChannel.SetItems(std::move(names));
    cmbChannel.SetListIndex(0);
    cmbChannel_Click();
}

const CalibratedChannel& frmCalibrate::Channel() const {
    return entries_.at(static_cast<std::size_t>(cmbChannel.ListIndex())).channel;
}

// The level in dBFS that a voltage now belongs to.
std::optional<double> frmCalibrate::Level() const {
    if (!ForOutput()) return inputDbfs_;
    if (!playing_) return std::nullopt;
    return kToneDbfs;
}

void frmCalibrate::cmbChannel_Click() {
    txtVolts.SetText("");
    lblTrouble.SetCaption("");
    if (playing_ && !ForOutput()) Play(false);
    Show();
}

void frmCalibrate::Show() {
    const CalibratedChannel& channel = Channel();
    const std::optional<Calibration> present = calibrations_.Of(channel);
    lblDevice.SetCaption(entries_.at(static_cast<std::size_t>(cmbChannel.ListIndex())).deviceName + ", " +
                         CStr(channel.rateHz) + " Hz");
    lblPresent.SetCaption(present ? "0 dBFS is " + VoltageText(present->fullScaleVolts) + " since " +
                                        present->date
                                  : "not calibrated");
    lblSteps.SetCaption(ForOutput() ? kOutputSteps : kInputSteps);
    lblLevel.SetCaption(ForOutput() ? "1 kHz at -10 dBFS" : LevelOfReading(inputDbfs_));
    cmdPlay.SetCaption(playing_ ? "Stop" : "Play 1 kHz");
    cmdPlay.SetEnabled(ForOutput());
    cmdRemove.SetEnabled(present.has_value());
}

void frmCalibrate::ShowInputLevel(std::optional<double> dbfs) {
    inputDbfs_ = dbfs;
    if (!entries_.empty()) Show();
}

void frmCalibrate::ShowToneEnded() {
    playing_ = false;
    if (!entries_.empty()) Show();
}

void frmCalibrate::Play(bool on) {
    const std::string trouble = needs_.play(on);
    lblTrouble.SetCaption(trouble);
    playing_ = on && trouble.empty();
}

void frmCalibrate::cmdPlay_Click() {
    Play(!playing_);
    Show();
}

void frmCalibrate::cmdStore_Click() {
    const std::optional<double> dbfs = Level();
    const std::optional<double> volts = ParseVoltage(txtVolts.Text());
    if (Channel().deviceId.empty()) {
        lblTrouble.SetCaption(kDeviceUnknown);
    } else if (!dbfs) {
        lblTrouble.SetCaption(ForOutput() ? kToneIsOff : kNoInputReading);
    } else if (!volts) {
        lblTrouble.SetCaption(kNoVoltage);
        txtVolts.SetFocus();
    } else {
        calibrations_.Store(Channel(), Calibration::From(*dbfs, *volts, DateAndTime(needs_.now())));
        lblTrouble.SetCaption("");
        Show();
        if (OnChanged) OnChanged();
    }
}

void frmCalibrate::cmdRemove_Click() {
    calibrations_.Remove(Channel());
    Show();
    if (OnChanged) OnChanged();
}

void frmCalibrate::cmdClose_Click() {
    if (playing_) Play(false);
    if (OnClosed) OnClosed();
}

}  // namespace sonavex
