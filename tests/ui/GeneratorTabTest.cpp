#include <gmock/gmock.h>

#include "ui/GeneratorTabRig.h"
#include "ui/widgets/Theme.h"
#include "ui/widgets/WaveChoice.h"
#include "ui/widgets/WavePicture.h"

namespace sonavex {
namespace {

class GeneratorTab : public GeneratorTabRig {
protected:
    QImage Picture() { return Find<ui::WavePicture>("wavePicture").grab().toImage(); }
    QPushButton& Wave(int index) {
        return *Find<ui::WaveChoice>("cmbType").findChildren<QPushButton*>().at(index);
    }
    QColor Dot() { return Find<ui::StateDot>("picGenRunning").Colour(); }
    bool Enabled(const char* name) { return Find<QWidget>(name).isEnabled(); }
};

TEST_F(GeneratorTab, EnablesTheSweepsControlsWithItsTime) {
    for (const char* name : {"sldEndFreq", "txtGenEndFreq", "chkLoop"}) EXPECT_FALSE(Enabled(name)) << name;
    Find<QSlider>("sldSweepTime").setFocus();
    Key("sldSweepTime", Qt::Key_Right);
    EXPECT_EQ(Box("txtSweepTime"), "10");
    for (const char* name : {"sldEndFreq", "txtGenEndFreq", "chkLoop"}) EXPECT_TRUE(Enabled(name)) << name;
    EXPECT_TRUE(Tone().Sweep);
    EXPECT_EQ(Tone().LoopIncrement, -98.0);
    Key("sldSweepTime", Qt::Key_End);
    EXPECT_EQ(Box("txtSweepTime"), "10000");
    EXPECT_EQ(Tone().SweepTime, 10000);
    Key("sldSweepTime", Qt::Key_Home);
    for (const char* name : {"sldEndFreq", "txtGenEndFreq", "chkLoop"}) EXPECT_FALSE(Enabled(name)) << name;
    EXPECT_FALSE(Tone().Sweep);
}

TEST_F(GeneratorTab, SaysWhyNothingStartsWhileAStimulusPlays) {
    const QString usual = Find<QPushButton>("Command1").toolTip();
    rig.form.GeneratorPanel.ShowStimulus(true);
    Settle();
    for (const char* name : {"Command1", "startCurrentMeter", "cmdStartMemory"}) {
        EXPECT_FALSE(Enabled(name)) << name;
        EXPECT_EQ(Find<QPushButton>(name).toolTip(),
                  "The generator cannot start while a stimulus of the precise measurement plays");
    }
    rig.form.GeneratorPanel.ShowStimulus(false);
    Settle();
    EXPECT_TRUE(Enabled("Command1"));
    EXPECT_EQ(Find<QPushButton>("Command1").toolTip(), usual);
}

// While dragged, only the end frequency follows; the loop box and the sweep wait for the release.
TEST_F(GeneratorTab, DragsTheSweepTime) {
    auto& slider = Find<QSlider>("sldSweepTime");
    const QPoint from = Handle(slider);
    QTest::mousePress(&slider, Qt::LeftButton, {}, from);
    QTest::mouseMove(&slider, from + QPoint(30, 0));
    QTest::mouseMove(&slider, from + QPoint(60, 0));
    Settle();
    EXPECT_GT(Tone().SweepTime, 0);
    EXPECT_EQ(Box("txtSweepTime"), QString::number(Tone().SweepTime));
    EXPECT_TRUE(Enabled("txtGenEndFreq"));
    EXPECT_FALSE(Enabled("chkLoop"));
    EXPECT_FALSE(Tone().Sweep);
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, from + QPoint(60, 0));
    Settle();
    EXPECT_TRUE(Enabled("chkLoop"));
    EXPECT_TRUE(Tone().Sweep);
}

TEST_F(GeneratorTab, ShowsAndStoresTheLevel) {
    EXPECT_EQ(Text("lblGenLevel"), "-0.50 dB");
    Find<QSlider>("sldLevel").setFocus();
    Key("sldLevel", Qt::Key_Right);
    EXPECT_EQ(Text("lblGenLevel"), "-0.40 dB");
    EXPECT_EQ(Stored("Level"), "-40");
    Key("sldLevel", Qt::Key_PageDown);
    EXPECT_EQ(Text("lblGenLevel"), "-3.40 dB");
    Key("sldLevel", Qt::Key_Home);
    EXPECT_EQ(Text("lblGenLevel"), "-96.00 dB");
    Key("sldLevel", Qt::Key_End);
    EXPECT_EQ(Text("lblGenLevel"), "0.00 dB");
    EXPECT_EQ(Stored("Level"), "0");
}

TEST_F(GeneratorTab, ChangesTheLevelOfWhatPlays) {
    Click("Command1");
    Step(20);
    Key("sldLevel", Qt::Key_End);
    Step(20);
    EXPECT_EQ(Text("LblLevel"), "25");
    for (int i = 0; i < 2; ++i) Key("sldLevel", Qt::Key_PageDown);
    EXPECT_EQ(Text("lblGenLevel"), "-6.00 dB");
    Step(20);
    EXPECT_EQ(Text("LblLevel"), "13");
}

TEST_F(GeneratorTab, TakesATypedFrequencyAndItsSweepWithReturn) {
    TypeAndReturn("txtSweepTime", "100");
    TypeAndReturn("txtGenFreq", "520");
    EXPECT_EQ(Signal().sldStartFreq.Value(), 520);
    EXPECT_EQ(Tone().StartFrequency, 520.0);
    EXPECT_EQ(Tone().SweepFrequency, 520.0);
    EXPECT_EQ(Tone().LoopIncrement, -5.0);
}

TEST_F(GeneratorTab, TakesATypedEndWhenItsBoxIsLeft) {
    TypeAndReturn("txtSweepTime", "100");
    Type("txtGenEndFreq", "2000");
    EXPECT_EQ(Tone().LoopIncrement, -9.8);
    Key("txtGenEndFreq", Qt::Key_Tab);
    EXPECT_EQ(Tone().EndFrequency, 2000.0);
    EXPECT_EQ(Tone().LoopIncrement, 10.0);
}

TEST_F(GeneratorTab, TurnsASweepTimeThatIsNoNumberInto0) {
    TypeAndReturn("txtSweepTime", "250");
    TypeAndReturn("txtSweepTime", "x");
    EXPECT_EQ(Box("txtSweepTime"), "0");
    EXPECT_EQ(Signal().sldSweepTime.Value(), 0);
}

TEST_F(GeneratorTab, ReportsAFrequencyThatIsTooLow) {
    Type("txtGenFreq", "19.6");
    Key("txtGenFreq", Qt::Key_F5);
    EXPECT_TRUE(rig.form.Instrument.Meter.Generator.GeneratorRunning);
    Key("txtGenFreq", Qt::Key_F5);
    Type("txtGenFreq", "19.4");
    Key("txtGenFreq", Qt::Key_F5);
    EXPECT_FALSE(rig.form.Instrument.Meter.Generator.GeneratorRunning);
    EXPECT_THAT(rig.log.Of("Message"), testing::ElementsAre("Message information Invalid Start Frequency\r\r"
                                                            "Value has to be 20 to 16000"));
}

TEST_F(GeneratorTab, ChoosesTheWaveform) {
    for (const int index : {3, 2, 1, 0}) {
        QTest::mouseClick(&Wave(index), Qt::LeftButton);
        Settle();
        EXPECT_EQ(Signal().cmbType.ListIndex(), index);
        EXPECT_EQ(Tone().WaveType, index);
        EXPECT_EQ(Stored("ToneType"), std::to_string(index));
        for (int other = 0; other < 4; ++other) EXPECT_EQ(Wave(other).isChecked(), other == index);
    }
}

TEST_F(GeneratorTab, ShowsTheWholeNameOfAWaveformThatCannotBeChanged) {
    Click("cmdGenAdd");
    Find<QListWidget>("ToneList").item(0)->setSelected(true);
    Settle();
    Click("cmdStartMemory");
    for (int index = 0; index < 4; ++index) {
        QPushButton& button = Wave(index);
        EXPECT_FALSE(button.isEnabled());
        EXPECT_GE(button.width(), button.sizeHint().width());
        EXPECT_FALSE(button.font().bold());
    }
}

TEST_F(GeneratorTab, HasRoomForFiveDigits) {
    constexpr int kAround = 2 * (8 + 1) + 4;  // padding, frame, cursor
    for (const char* name : {"txtGenFreq", "txtGenEndFreq", "txtSweepTime"}) {
        const auto& box = Find<QLineEdit>(name);
        EXPECT_GE(box.width(), box.fontMetrics().horizontalAdvance("10000") + kAround) << name;
    }
}

TEST_F(GeneratorTab, DrawsWhatIsChosen) {
    std::vector<QImage> pictures;
    for (const int index : {0, 1, 2, 3}) {
        QTest::mouseClick(&Wave(index), Qt::LeftButton);
        Settle();
        pictures.push_back(Picture());
    }
    TypeAndReturn("txtSweepTime", "500");
    pictures.push_back(Picture());
    TypeAndReturn("txtGenEndFreq", "5000");
    pictures.push_back(Picture());
    Find<QCheckBox>("chkLoop").click();
    Settle();
    pictures.push_back(Picture());
    for (std::size_t i = 0; i < pictures.size(); ++i)
        for (std::size_t j = i + 1; j < pictures.size(); ++j) EXPECT_NE(pictures[i], pictures[j]) << i << j;
    Find<QCheckBox>("chkLoop").click();
    Settle();
    EXPECT_EQ(Picture(), pictures[5]);
}

// Position of the sweep's curve at the left and right end: 0 at the top, 1 at the bottom.
std::pair<double, double> EndsOfCurve(const QImage& picture) {
    const QColor accent = ui::Theme::Current().accent;
    std::pair<double, double> ends{-1.0, -1.0};
    for (int x = 0; x < picture.width(); ++x) {
        double sum = 0.0;
        int count = 0;
        for (int y = 0; y < picture.height(); ++y)
            if (picture.pixelColor(x, y) == accent) {
                sum += y;
                ++count;
            }
        if (count == 0) continue;
        const double height = sum / count / picture.height();
        if (ends.first < 0.0) ends.first = height;
        ends.second = height;
    }
    return ends;
}

TEST_F(GeneratorTab, DrawsTheSweepUpDownAndLevel) {
    TypeAndReturn("txtSweepTime", "500");
    const auto sweep = [&](const char* from, const char* to) {
        TypeAndReturn("txtGenFreq", from);
        TypeAndReturn("txtGenEndFreq", to);
        const QImage whole = Picture();
        return EndsOfCurve(whole.copy(whole.width() / 2, 0, whole.width() / 2, whole.height()));
    };
    const auto up = sweep("100", "5000");
    EXPECT_GT(up.first, up.second + 0.3);
    const auto down = sweep("5000", "100");
    EXPECT_LT(down.first, down.second - 0.3);
    const auto level = sweep("1000", "1000");
    EXPECT_NEAR(level.first, level.second, 0.02);
}

TEST_F(GeneratorTab, TakesTheLoopBox) {
    TypeAndReturn("txtSweepTime", "100");
    QTest::mouseClick(&Find<QCheckBox>("chkLoop"), Qt::LeftButton, {}, QPoint(8, 8));
    Settle();
    EXPECT_TRUE(Tone().Loop);
    QTest::keyClick(&Find<QCheckBox>("chkLoop"), Qt::Key_Space);
    Settle();
    EXPECT_FALSE(Tone().Loop);
}

TEST_F(GeneratorTab, StartsAndStopsInWordShapeAndColour) {
    EXPECT_EQ(Text("runningWord"), "Generator stopped");
    const QColor stopped = Dot();
    Click("Command1");
    EXPECT_EQ(Find<QPushButton>("Command1").text(), "Stop Current");
    EXPECT_EQ(Text("runningWord"), "Generator playing");
    EXPECT_EQ(Text("runningDetail"), "");
    EXPECT_EQ(Dot(), QColor(0, 255, 0));
    EXPECT_FALSE(Enabled("cmdGenAdd"));
    EXPECT_FALSE(Enabled("ToneList"));
    Click("Command1");
    EXPECT_EQ(Find<QPushButton>("Command1").text(), "Start Current");
    EXPECT_EQ(Text("runningWord"), "Generator stopped");
    EXPECT_EQ(Dot(), stopped);
    EXPECT_NE(stopped, QColor(0, 255, 0));
}

TEST_F(GeneratorTab, BringsABoxThatIsWrongToFront) {
    Type("txtGenFreq", "19");
    rig.form.TabStrip1.SetIndex(0);
    Settle();
    ASSERT_FALSE(Find<QLineEdit>("txtGenFreq").isVisible());
    Click("startCurrentMeter");
    EXPECT_FALSE(rig.form.Instrument.Meter.Generator.GeneratorRunning);
    EXPECT_EQ(Find<QTabWidget>("TabStrip1").currentIndex(), 1);
    EXPECT_EQ(rig.form.TabStrip1.Index(), 1);
    EXPECT_TRUE(Find<QLineEdit>("txtGenFreq").isVisible());
    EXPECT_EQ(window.focusWidget(), &Find<QLineEdit>("txtGenFreq"));
}

TEST_F(GeneratorTab, GivesEveryWrongBoxTheKeyboard) {
    TypeAndReturn("txtSweepTime", "100");
    TypeAndReturn("txtGenEndFreq", "19");
    Find<QPushButton>("Command1").setFocus();
    Click("Command1");
    EXPECT_EQ(window.focusWidget(), &Find<QLineEdit>("txtGenEndFreq"));
    TypeAndReturn("txtGenEndFreq", "200");
    Signal().txtSweepTime.SetText("10000.5");
    Click("Command1");
    EXPECT_EQ(window.focusWidget(), &Find<QLineEdit>("txtSweepTime"));
}

TEST_F(GeneratorTab, PlaysAPresetFrequency) {
    Click("preset_100");
    EXPECT_EQ(Signal().sldStartFreq.Value(), 100);
    EXPECT_EQ(Box("txtGenFreq"), "100");
    Key("sldStartFreq", Qt::Key_Right);
    EXPECT_EQ(Signal().sldStartFreq.Value(), 101);
    Key("sldStartFreq", Qt::Key_PageUp);
    EXPECT_EQ(Box("txtGenFreq"), "127");
}

}  // namespace
}  // namespace sonavex
