#include "ui/GeneratorTabRig.h"

namespace sonavex {
namespace {

class FrequencySliderOnTheTab : public GeneratorTabRig {
protected:
    ui::FrequencySlider& slider = Find<ui::FrequencySlider>("sldStartFreq");
    std::int32_t Value() { return Signal().sldStartFreq.Value(); }
    // Slider, box, record and description agree.
    void ExpectEverywhere(std::int32_t hertz) {
        EXPECT_EQ(Value(), hertz);
        EXPECT_EQ(slider.Hz(), hertz);
        EXPECT_EQ(Box("txtGenFreq"), QString::number(hertz));
        EXPECT_EQ(Tone().StartFrequency, hertz);
        EXPECT_EQ(slider.accessibleDescription(), QString::number(hertz) + " Hz");
    }
};

TEST_F(FrequencySliderOnTheTab, StartsWhereTheSettingsSay) {
    ExpectEverywhere(1000);
}

TEST_F(FrequencySliderOnTheTab, RunsItsFirstHandlerWhileDraggedAndItsSecondWhenLetGo) {
    const QPoint from = Handle(slider);
    QTest::mousePress(&slider, Qt::LeftButton, {}, from);
    for (int x = 10; x <= 60; x += 10) {
        QTest::mouseMove(&slider, from + QPoint(x, 0));
        Settle();
    }
    const std::int32_t dragged = Value();
    EXPECT_GT(dragged, 1200);
    ExpectEverywhere(dragged);
    EXPECT_NE(Tone().SweepFrequency, dragged);
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, from + QPoint(60, 0));
    Settle();
    ExpectEverywhere(dragged);
    EXPECT_EQ(Tone().SweepFrequency, dragged);
}

TEST_F(FrequencySliderOnTheTab, MovesByKeysInHertz) {
    slider.setFocus();
    const std::pair<Qt::Key, std::int32_t> steps[] = {
        {Qt::Key_Right, 1001},  {Qt::Key_Up, 1002},       {Qt::Key_Left, 1001},    {Qt::Key_Down, 1000},
        {Qt::Key_PageUp, 1260}, {Qt::Key_PageDown, 1000}, {Qt::Key_PageDown, 794}, {Qt::Key_End, 16000},
        {Qt::Key_Right, 16000}, {Qt::Key_Left, 15999},    {Qt::Key_Home, 1},       {Qt::Key_Left, 1},
        {Qt::Key_PageUp, 2},    {Qt::Key_PageUp, 3}};
    for (const auto& [key, hertz] : steps) {
        QTest::keyClick(&slider, key);
        Settle();
        ExpectEverywhere(hertz);
        EXPECT_EQ(Tone().SweepFrequency, hertz);  // the end of a step runs the second handler
    }
}

TEST_F(FrequencySliderOnTheTab, MovesByNotchesOfTheWheel) {
    Wheel("sldStartFreq", 120);
    ExpectEverywhere(1059);  // a twelfth of an octave
    EXPECT_EQ(Tone().SweepFrequency, 1059.0);
    Wheel("sldStartFreq", -120);
    ExpectEverywhere(1000);
    Wheel("sldStartFreq", 480);
    ExpectEverywhere(1260);
    Wheel("sldStartFreq", -480);
    ExpectEverywhere(1000);
}

TEST_F(FrequencySliderOnTheTab, AddsUpWhatATouchpadSends) {
    for (const int angle : {50, 50}) Wheel("sldStartFreq", angle);
    ExpectEverywhere(1000);
    Wheel("sldStartFreq", 30);
    ExpectEverywhere(1059);
    for (int i = 0; i < 11; ++i) Wheel("sldStartFreq", 10);
    ExpectEverywhere(1122);
    // Reversing the wheel starts a new notch.
    for (int i = 0; i < 11; ++i) Wheel("sldStartFreq", -10);
    ExpectEverywhere(1122);
    Wheel("sldStartFreq", -10);
    ExpectEverywhere(1059);
    // Horizontal wheel movement is ignored.
    Wheel("sldStartFreq", 0);
    ExpectEverywhere(1059);
}

TEST_F(FrequencySliderOnTheTab, MovesByAThirdOfAnOctaveOnAClickInTheGroove) {
    QTest::mouseClick(&slider, Qt::LeftButton, {}, Handle(slider) + QPoint(60, 0));
    Settle();
    ExpectEverywhere(1260);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, Handle(slider) - QPoint(60, 0));
    Settle();
    ExpectEverywhere(1000);
}

TEST_F(FrequencySliderOnTheTab, ResetsOnADoubleClick) {
    TypeAndReturn("txtGenFreq", "4321");
    ExpectEverywhere(4321);
    QTest::mouseDClick(&slider, Qt::LeftButton, {}, Handle(slider));
    Settle();
    ExpectEverywhere(1000);
    EXPECT_EQ(Tone().SweepFrequency, 1000.0);
    EXPECT_FALSE(slider.isSliderDown());
}

TEST_F(FrequencySliderOnTheTab, OfTheEndResetsToItsOwn) {
    TypeAndReturn("txtSweepTime", "500");
    TypeAndReturn("txtGenEndFreq", "5000");
    auto& end = Find<ui::FrequencySlider>("sldEndFreq");
    QTest::mouseDClick(&end, Qt::LeftButton, {}, Handle(end));
    Settle();
    EXPECT_EQ(Signal().sldEndFreq.Value(), 20);
    EXPECT_EQ(Box("txtGenEndFreq"), "20");
    EXPECT_EQ(end.accessibleDescription(), "20 Hz");
    EXPECT_EQ(Tone().LoopIncrement, -980.0 / 500);
}

TEST_F(FrequencySliderOnTheTab, ChangesWhatSounds) {
    Click("Command1");
    Step(30);
    Key("sldStartFreq", Qt::Key_PageUp);
    EXPECT_EQ(Tone().Frequency, 1260.0);
    Step(40);
    constexpr double kBinHz = 32000.0 / 4096.0;
    EXPECT_NEAR(Find<QLineEdit>("txtFreq").text().toDouble(), 1260.0, kBinHz);
}

TEST_F(FrequencySliderOnTheTab, FeelsLogarithmic) {
    TypeAndReturn("txtGenFreq", "1");
    EXPECT_EQ(slider.value(), slider.minimum());
    TypeAndReturn("txtGenFreq", "16000");
    EXPECT_EQ(slider.value(), slider.maximum());
    // 126.49 Hz is the logarithmic middle of 1 and 16000 Hz.
    TypeAndReturn("txtGenFreq", "126");
    EXPECT_NEAR(slider.value(), (slider.minimum() + slider.maximum()) / 2, 10);
    TypeAndReturn("txtGenFreq", "100");
    const int hundred = slider.value();
    TypeAndReturn("txtGenFreq", "1000");
    const int thousand = slider.value();
    TypeAndReturn("txtGenFreq", "10000");
    EXPECT_NEAR(slider.value() - thousand, thousand - hundred, 2);
}

}  // namespace
}  // namespace sonavex
