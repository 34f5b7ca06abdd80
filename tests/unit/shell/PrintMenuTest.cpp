#include <gtest/gtest.h>

#include "support/FormRig.h"

namespace sonavex {
namespace {

TEST(PrintMenuTest, IsEnabledByTheFirstLockedUpdate) {
    FormRig rig;
    rig.form.Form_Load();
    EXPECT_FALSE(rig.form.mnuPrint.Enabled());
    // Silence: an update without lock.
    rig.form.Measurement.Controls.chkAuto.UserSets(false);
    rig.form.Measurement.Controls.txtFreq.UserTypes("440");
    rig.Step(40);
    EXPECT_GT(rig.form.Measurement.Blocks(), 38);
    EXPECT_FALSE(rig.form.mnuPrint.Enabled());
    rig.form.Measurement.Controls.chkAuto.UserSets(true);
    rig.form.Signals.Signal.Command1.Press();
    rig.Step(40);
    EXPECT_TRUE(rig.form.mnuPrint.Enabled());
}

}  // namespace
}  // namespace sonavex
