#include <gtest/gtest.h>

#include "core/precise/calibration/Calibration.h"
#include "core/precise/calibration/Voltage.h"
#include "core/precise/calibration/frmCalibrate.h"
#include "platform/plain/MemorySettingsStore.h"

namespace sonavex {
namespace {

using Direction = CalibratedChannel::Direction;

TEST(Voltage, IsReadInEveryUnit) {
    EXPECT_DOUBLE_EQ(ParseVoltage("1.23").value(), 1.23);
    EXPECT_DOUBLE_EQ(ParseVoltage(" 775mV ").value(), 0.775);
    EXPECT_DOUBLE_EQ(ParseVoltage("0,5 V").value(), 0.5);
    EXPECT_DOUBLE_EQ(ParseVoltage("12 µV").value(), 12e-6);
    EXPECT_DOUBLE_EQ(ParseVoltage("12 uv").value(), 12e-6);
    EXPECT_DOUBLE_EQ(ParseVoltage("-20 dBV").value(), 0.1);
    EXPECT_NEAR(ParseVoltage("+4dBu").value(), 1.2277, 1e-4);
}

TEST(Voltage, IsNotReadFromAnythingElse) {
    for (const char* text :
         {"", "V", "abc", "1 A", "1..2", "0", "-1 V", "nan", "inf", "1e3", "20 kV", "0.1 nV", "1 V 2", "+-1"})
        EXPECT_EQ(ParseVoltage(text), std::nullopt) << text;
}

TEST(Voltage, IsWrittenWithFourDigits) {
    EXPECT_EQ(VoltageText(1.23449), "1.234 V");
    EXPECT_EQ(VoltageText(12.345), "12.35 V");
    EXPECT_EQ(VoltageText(123.45), "123.5 V");
    EXPECT_EQ(VoltageText(1234.5), "1234 V");
    EXPECT_EQ(VoltageText(0.775), "775.0 mV");
    EXPECT_EQ(VoltageText(0.99999), "1.000 V");
    EXPECT_EQ(VoltageText(0.0009), "900.0 µV");
    EXPECT_EQ(VoltageText(1e-8), "0.010 µV");
}

TEST(CalibrationValues, ConvertLevels) {
    const Calibration calibration = Calibration::From(-10.0, 0.5, "");
    EXPECT_NEAR(calibration.fullScaleVolts, 1.5811388, 1e-7);
    EXPECT_NEAR(calibration.Volts(-10.0), 0.5, 1e-12);
    EXPECT_NEAR(calibration.Dbv(-10.0), -6.0206, 1e-4);
    EXPECT_NEAR(calibration.Dbu(-10.0), -3.8021, 1e-4);
    EXPECT_NEAR(calibration.DbfsOfVolts(0.5), -10.0, 1e-12);
}

class StoredCalibrations : public testing::Test {
protected:
    MemorySettingsStore store_;
    Settings settings_{store_};
    Calibrations calibrations_{settings_};
    CalibratedChannel left_{Direction::kInput, "a card = odd", 0, 48000};
};

TEST_F(StoredCalibrations, BelongToDeviceChannelAndRate) {
    const Calibration calibration{1.25, "2026-11-22 17:05:00"};
    calibrations_.Store(left_, calibration);
    EXPECT_EQ(calibrations_.Of(left_), calibration);
    CalibratedChannel other = left_;
    other.direction = Direction::kOutput;
    EXPECT_EQ(calibrations_.Of(other), std::nullopt);
    other = left_;
    other.channel = 1;
    EXPECT_EQ(calibrations_.Of(other), std::nullopt);
    other = left_;
    other.rateHz = 96000;
    EXPECT_EQ(calibrations_.Of(other), std::nullopt);
    other = left_;
    other.deviceId = "b";
    EXPECT_EQ(calibrations_.Of(other), std::nullopt);
    calibrations_.Remove(left_);
    EXPECT_EQ(calibrations_.Of(left_), std::nullopt);
}

TEST_F(StoredCalibrations, AreNotKeptForAnUnknownDevice) {
    left_.deviceId.clear();
    calibrations_.Store(left_, {1.25, "2026-11-22 17:05:00"});
    EXPECT_EQ(calibrations_.Of(left_), std::nullopt);
}

TEST_F(StoredCalibrations, ThatAreDamagedDoNotCount) {
    for (const char* value :
         {"", "1.25", "1.25 yesterday", "x 2026-11-22 17:05:00", "0 2026-11-22 17:05:00",
          "-1 2026-11-22 17:05:00", "inf 2026-11-22 17:05:00", "1.25 2026-11-22 17:05:0"}) {
        store_.Save("Calibration", "Input Left 48000 a card = odd", value);
        EXPECT_EQ(calibrations_.Of(left_), std::nullopt) << value;
    }
    store_.Save("Calibration", "Input Left 48000 a card = odd", "1.25 2026-11-22 17:05:00");
    EXPECT_TRUE(calibrations_.Of(left_).has_value());
}

class CalibrateForm : public testing::Test {
protected:
    CalibrateForm() {
        form_.OnChanged = [this] { ++changes_; };
        form_.OnClosed = [this] { closed_ = true; };
        form_.Form_Load({{{Direction::kOutput, "out", 0, 48000}, "Card"},
                         {{Direction::kOutput, "out", 1, 48000}, "Card"},
                         {{Direction::kInput, "in", 0, 48000}, "Other card"}});
    }
    MemorySettingsStore store_;
    Settings settings_{store_};
    Calibrations calibrations_{settings_};
    std::string refusal_;
    bool plays_ = false;
    int changes_ = 0;
    bool closed_ = false;
    frmCalibrate form_{{settings_, [] { return DateTime{2026, 11, 22, 17, 5, 0}; },
                        [this](bool on) {
                            plays_ = on && refusal_.empty();
                            return on ? refusal_ : std::string();
                        }}};
};

TEST_F(CalibrateForm, CalibratesAnOutputWithTheTone) {
    form_.cmbChannel.UserSelects(1);
    EXPECT_EQ(form_.lblDevice.Caption(), "Card, 48000 Hz");
    EXPECT_EQ(form_.lblPresent.Caption(), "not calibrated");
    form_.txtVolts.UserTypes("500 mV");
    form_.cmdStore.Press();
    EXPECT_EQ(form_.lblTrouble.Caption(), "Play the tone first.");
    form_.cmdPlay.Press();
    EXPECT_TRUE(plays_);
    EXPECT_EQ(form_.cmdPlay.Caption(), "Stop");
    form_.cmdStore.Press();
    EXPECT_EQ(form_.lblTrouble.Caption(), "");
    EXPECT_EQ(form_.lblPresent.Caption(), "0 dBFS is 1.581 V since 2026-11-22 17:05:00");
    EXPECT_NEAR(calibrations_.Of({Direction::kOutput, "out", 1, 48000})->Volts(-10.0), 0.5, 1e-9);
    EXPECT_EQ(calibrations_.Of({Direction::kOutput, "out", 0, 48000}), std::nullopt);
    EXPECT_EQ(changes_, 1);
    form_.cmdClose.Press();
    EXPECT_FALSE(plays_);
    EXPECT_TRUE(closed_);
}

TEST_F(CalibrateForm, CalibratesTheInputWithAValidReading) {
    form_.cmdPlay.Press();
    form_.cmbChannel.UserSelects(2);
    EXPECT_FALSE(plays_);
    EXPECT_FALSE(form_.cmdPlay.Enabled());
    form_.txtVolts.UserTypes("0 dBV");
    form_.cmdStore.Press();
    EXPECT_EQ(form_.lblTrouble.Caption(), "There is no valid reading at the input.");
    form_.ShowInputLevel(-6.0);
    EXPECT_EQ(form_.lblLevel.Caption(), "Reading: -6.00 dBFS");
    form_.cmdStore.Press();
    EXPECT_NEAR(calibrations_.Of({Direction::kInput, "in", 0, 48000})->Dbv(-6.0), 0.0, 1e-9);
    EXPECT_TRUE(form_.cmdRemove.Enabled());
    form_.cmdRemove.Press();
    EXPECT_EQ(form_.lblPresent.Caption(), "not calibrated");
    EXPECT_EQ(changes_, 2);
}

TEST_F(CalibrateForm, ExplainsWhatIsMissing) {
    refusal_ = "The generator plays.";
    form_.cmdPlay.Press();
    EXPECT_EQ(form_.lblTrouble.Caption(), "The generator plays.");
    EXPECT_EQ(form_.cmdPlay.Caption(), "Play 1 kHz");
    refusal_.clear();
    form_.cmdPlay.Press();
    form_.txtVolts.UserTypes("loud");
    form_.cmdStore.Press();
    EXPECT_EQ(form_.lblTrouble.Caption(), "Enter a voltage, for example 1.23 V, 775 mV or 4 dBu.");
    EXPECT_EQ(changes_, 0);
    form_.Form_Load({{{Direction::kInput, "", 0, 48000}, "Card"}});
    form_.ShowInputLevel(-6.0);
    form_.txtVolts.UserTypes("1");
    form_.cmdStore.Press();
    EXPECT_EQ(form_.lblTrouble.Caption(), "The device is not known and cannot be calibrated.");
}

}  // namespace
}  // namespace sonavex
