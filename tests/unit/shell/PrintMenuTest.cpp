#include <gtest/gtest.h>

#include "support/FormRig.h"

namespace sonavex {
namespace {

TEST(PrintMenuTest, IsEnabledByTheFirstLockedUpdate) {
    FormRig rig;
    rig.form.Form_Load();
    EXPECT_FALSE(rig.form.mnuPrint.Enabled());
    // Silence: an update without lock.
    rig.form.Instrument.Meter.Controls.chkAuto.UserSets(false);
    rig.form.Instrument.Meter.Controls.txtFreq.UserTypes("440");
    rig.Step(40);
    EXPECT_GT(rig.form.Instrument.Meter.Blocks(), 38);
    EXPECT_FALSE(rig.form.mnuPrint.Enabled());
    rig.form.Instrument.Meter.Controls.chkAuto.UserSets(true);
    rig.form.GeneratorPanel.Controls.Command1.Press();
    rig.Step(40);
    EXPECT_TRUE(rig.form.mnuPrint.Enabled());
}

}  // namespace
}  // namespace sonavex
