#include "system/loop/LoopRig.h"

#include <gmock/gmock.h>

#include "core/text/Numbers.h"

namespace sonavex {

LoopRig::LoopRig(std::int32_t rateHz) {
    shared.SampleRate = rateHz;
    instrument_.Settings.Save(keys::kLevel, "0");
    meter.Controls.chkAuto.SetValue(1);
    meter.Controls.chkMuteOutput.SetValue(1);
    EXPECT_TRUE(Engine().CreateDevices());
    meter.SetUpAnalysis(25, rateHz / 2 - 100);
    EXPECT_TRUE(Engine().SetEvents());
    Engine().ResetStream();
    // Without the watch: the card moves only when it is stepped.
    Engine().StartCapture();
}

LoopRig::~LoopRig() {
    for (const char* operation : {"Message", "AskOkCancel", "AskYesNo", "WriteErrorLog"})
        EXPECT_THAT(log.Of(operation), testing::IsEmpty());
}

void LoopRig::PlaySine(double frequencyHz) {
    meter.Generator.NumTones = 1;
    meter.Generator.Tones[0].WaveType = wave::kSine;
    meter.Generator.Tones[0].Frequency = frequencyHz;
    meter.Generator.ResetTonePhases();
    meter.Generator.SetGeneratorRunning(true);
}

void LoopRig::Step(int blocks) {
    for (int i = 0; i < blocks; ++i) {
        const std::int64_t before = meter.Blocks();
        sound_.Card().Step(2048);
        loop.Yield();
        ASSERT_EQ(meter.Blocks(), before + 1);
    }
    ASSERT_EQ(Engine().Overruns, 0U);
}

void LoopRig::Settle() {
    for (int blocks = 0; blocks < 100; ++blocks) {
        Step();
        if (testing::Test::HasFatalFailure() || meter.Settled()) return;
    }
    FAIL() << "no 19 good blocks in a row";
}

std::string LoopRig::PercentText(int n) const {
    return meter.Controls.lbltest[static_cast<std::size_t>(n - 2)].Caption();
}

std::string LoopRig::DbText(int n) const {
    return meter.Controls.lblDb[static_cast<std::size_t>(n - 2)].Caption();
}

double LoopRig::Percent(int n) const {
    return Val(PercentText(n));
}

double LoopRig::Db(int n) const {
    return Val(DbText(n));
}

}  // namespace sonavex
