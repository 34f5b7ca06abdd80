#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include "support/DialogUser.h"
#include "support/FormRig.h"
#include "support/QtWait.h"
#include "ui/CalibrateDialog.h"

namespace sonavex {
namespace {

using Direction = CalibratedChannel::Direction;

TEST(CalibrateDialogWindow, StoresTheVoltageOfAnOutput) {
    FormRig rig;
    Settings settings(rig.store);
    bool plays = false;
    frmCalibrate form({settings, [] { return DateTime{2026, 11, 22, 17, 5, 0}; },
                       [&plays](bool on) {
                           plays = on;
                           return std::string();
                       }});
    form.Form_Load({{{Direction::kOutput, "out", 0, 48000}, "Card"},
                    {{Direction::kInput, "in", 0, 48000}, "Other card"}});
    const DialogSteps driver({[&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Calibrate");
        EXPECT_EQ(Find<QLabel>(dialog, "lblPresent").text(), "not calibrated");
        EXPECT_FALSE(Find<QPushButton>(dialog, "cmdRemove").isEnabled());
        const auto press = [&dialog](const char* button) {
            Click(dialog, button);
            Settle();
        };
        press("cmdPlay");
        EXPECT_TRUE(plays);
        QTest::keyClicks(&Find<QLineEdit>(dialog, "txtVolts"), "much");
        press("cmdStore");
        const auto& trouble = Find<QLabel>(dialog, "lblTrouble");
        EXPECT_EQ(trouble.text(), "Enter a voltage, for example 1.23 V, 775 mV or 4 dBu.");
        EXPECT_GE(trouble.height(), trouble.heightForWidth(trouble.width()));
        const auto& steps = Find<QLabel>(dialog, "lblSteps");
        EXPECT_GE(steps.height(), steps.heightForWidth(steps.width()));
        Find<QLineEdit>(dialog, "txtVolts").clear();
        QTest::keyClicks(&Find<QLineEdit>(dialog, "txtVolts"), "500 mV");
        press("cmdStore");
        EXPECT_EQ(Find<QLabel>(dialog, "lblPresent").text(), "0 dBFS is 1.581 V since 2026-11-22 17:05:00");
        QTest::keyClick(&Find<QComboBox>(dialog, "cmbChannel"), Qt::Key_Down);
        Settle();
        EXPECT_FALSE(plays);
        EXPECT_FALSE(Find<QPushButton>(dialog, "cmdPlay").isEnabled());
        EXPECT_GE(steps.height(), steps.heightForWidth(steps.width()));
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }});
    ui::CalibrateDialog(form, rig.form.Guard).Run();
    EXPECT_NEAR(Calibrations(settings).Of({Direction::kOutput, "out", 0, 48000})->Volts(-10.0), 0.5, 1e-9);
}

}  // namespace
}  // namespace sonavex
