#include <QAction>
#include <QListWidget>
#include <QMenuBar>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTest>
#include <set>

#include "ui/WindowRig.h"
#include "ui/widgets/HarmonicBar.h"

namespace sonavex {
namespace {

using MainWindowTest = WindowRig;

// Names that the instrument gives its controls begin with these.
const QRegularExpression kControlName(
    "^(cmd|chk|sld|txt|lbl|Lbl|prg|mnu|cmb|pic)[A-Z]|^(lbltest|lblDb)_|"
    "^(Command1|ToneList|TabStrip1|GenLocked)$");

TEST_F(MainWindowTest, JoinsEveryControlAndEveryWidgetNamedLikeOne) {
    std::set<QObject*> joined;
    std::set<Control*> controls;
    for (const auto& pair : window.Bindings().Pairs()) {
        joined.insert(pair.widget);
        controls.insert(pair.control);
    }
    std::set<std::string> loose;
    for (QObject* object : window.findChildren<QObject*>())
        if (kControlName.match(object->objectName()).hasMatch() && joined.count(object) == 0)
            loose.insert(object->objectName().toStdString());
    EXPECT_THAT(loose, testing::IsEmpty());

    frmMain& form = rig.form;
    MeasurementControls& meter = form.Measurement.Controls;
    SignalControls& signal = form.Signals.Signal;
    MemoryControls& memory = form.Signals.Memory;
    std::set<Control*> all{&form.lblInput,
                           &form.lblOutput,
                           &form.lblSampleRate,
                           &form.StreamTrouble,
                           &form.PathNote,
                           &form.TabStrip1,
                           &form.mnuExit,
                           &form.mnuPrint,
                           &form.mnuSelectCard,
                           &form.cmdPrint,
                           &form.Menus.mnuAbout,
                           &form.Menus.mnuHelpContents,
                           &form.Menus.mnuCheckVersion,
                           &form.Menus.mnuemail,
                           &form.Menus.mnuInputControl,
                           &form.Menus.mnuPlayControl,
                           &meter.prgADC,
                           &meter.prgDAC,
                           &form.mnuSoundCard,
                           &meter.LblLevel,
                           &meter.lblDACLevel,
                           &meter.txtFreq,
                           &meter.chkAuto,
                           &meter.chkMuteOutput,
                           &meter.picLocked,
                           &meter.GenLocked,
                           &meter.lblThd,
                           &form.BaselineOptions.chkBaseline,
                           &form.BaselineOptions.cmdBaseline,
                           &signal.cmbType,
                           &signal.sldStartFreq,
                           &signal.txtGenFreq,
                           &signal.sldEndFreq,
                           &signal.txtGenEndFreq,
                           &signal.sldSweepTime,
                           &signal.txtSweepTime,
                           &signal.chkLoop,
                           &signal.sldLevel,
                           &signal.lblGenLevel,
                           &signal.Command1,
                           &signal.picGenRunning,
                           &memory.ToneList,
                           &memory.cmdGenAdd,
                           &memory.cmdRemove,
                           &memory.cmdStartMemory};
    for (auto& label : meter.lbltest) all.insert(&label);
    for (auto& label : meter.lblDb) all.insert(&label);
    EXPECT_EQ(controls, all);
}

TEST_F(MainWindowTest, NamesEveryWidgetForThoseWhoDoNotSee) {
    for (const auto& pair : window.Bindings().Pairs()) {
        const auto* widget = qobject_cast<QWidget*>(pair.widget);
        if (widget == nullptr || qobject_cast<const QTabWidget*>(widget) != nullptr) continue;
        const bool saysItself = !widget->property("text").toString().isEmpty();
        EXPECT_TRUE(saysItself || !widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
    }
}

TEST_F(MainWindowTest, ShowsTheSimulatedCardInTheTitle) {
    EXPECT_EQ(window.windowTitle(), QString::fromUtf8("Sonavex & Function Generator — Simulated sound card"));
    EXPECT_EQ(Text("lblInput"), "Simulated sound card (not a measurement)");
    EXPECT_TRUE(Find<QLabel>("simulatedNote").isVisible());
    EXPECT_EQ(Text("lblSampleRate"), "32000");
}

TEST_F(MainWindowTest, MeasuresWhatItsStartButtonPlays) {
    QTest::mouseClick(&Find<QPushButton>("startCurrentMeter"), Qt::LeftButton);
    Settle();
    EXPECT_EQ(Find<QPushButton>("startCurrentMeter").text(), "Stop Current");
    EXPECT_EQ(Find<QPushButton>("Command1").text(), "Stop Current");
    Step(60);
    EXPECT_EQ(Find<QLineEdit>("txtFreq").text(), "1000");
    EXPECT_EQ(Text("lockWord"), "LOCKED");
    EXPECT_EQ(Find<ui::LockLamp>("picLocked").Colour(), QColor(0, 255, 0));
    EXPECT_EQ(Text("lblThd").toStdString(), rig.Thd());
    EXPECT_GT(Text("lblThd").toDouble(), 0.0);
    EXPECT_LT(Text("lblThd").toDouble(), 0.01);
    EXPECT_FALSE(Find<QLabel>("settlingNote").isVisible());
    EXPECT_EQ(Text("lblDACLevel"), "Muted");
}

TEST_F(MainWindowTest, SaysNotLockedInWordShapeAndColour) {
    QTest::mouseClick(&Find<QPushButton>("startCurrentMeter"), Qt::LeftButton);
    Find<QCheckBox>("chkAuto").click();
    Find<QLineEdit>("txtFreq").setFocus();
    Find<QLineEdit>("txtFreq").selectAll();
    QTest::keyClicks(&Find<QLineEdit>("txtFreq"), "440");
    Step(25);
    EXPECT_EQ(Text("lockWord"), "NOT LOCKED");
    EXPECT_FALSE(Find<ui::LockLamp>("picLocked").Good());
    EXPECT_EQ(Find<ui::LockLamp>("picLocked").Colour(), QColor(255, 0, 0));
    EXPECT_EQ(Text("lblThd"), "N/A");
    EXPECT_EQ(Text("lbltest_0"), "");
    EXPECT_FALSE(Find<QLabel>("unitThd").isVisible());
}

TEST_F(MainWindowTest, TellsOverloadFromSilence) {
    Step(1);
    EXPECT_EQ(Text("LblLevel"), "Ovr");
    EXPECT_EQ(Text("adcWord"), "NO SIGNAL");
    DeviceUnderTestModel loud;
    loud.gain = 8.0;
    rig.card.Card().SetDeviceUnderTest(loud);
    QTest::mouseClick(&Find<QPushButton>("startCurrentMeter"), Qt::LeftButton);
    Step(12);
    EXPECT_EQ(Text("LblLevel"), "Ovr");
    EXPECT_EQ(Text("adcWord"), "OVERLOAD");
    EXPECT_TRUE(Find<ui::LevelBar>("prgADC").Overload());
}

TEST_F(MainWindowTest, CapturesAndAppliesTheBaseline) {
    DeviceUnderTestModel bent;
    bent.harmonicAmplitudes = {0.01};
    rig.card.Card().SetDeviceUnderTest(bent);
    QTest::mouseClick(&Find<QPushButton>("startCurrentMeter"), Qt::LeftButton);
    Step(60);
    const double before = Text("lbltest_0").toDouble();
    EXPECT_GT(before, 0.5);
    QTest::mouseClick(&Find<QPushButton>("cmdBaseline"), Qt::LeftButton);
    Find<QCheckBox>("chkBaseline").click();
    Settle();
    EXPECT_FALSE(Find<QPushButton>("cmdBaseline").isEnabled());
    Step(19);
    EXPECT_LT(std::abs(rig.form.Measurement.Analysis().CurrentPct[0]), 0.01);
}

TEST_F(MainWindowTest, PlaysAPresetFrequency) {
    rig.form.TabStrip1.SetIndex(1);
    Settle();
    QTest::mouseClick(&Find<QPushButton>("preset_100"), Qt::LeftButton);
    Settle();
    EXPECT_EQ(rig.form.Signals.Signal.sldStartFreq.Value(), 100);
    EXPECT_EQ(Find<QLineEdit>("txtGenFreq").text(), "100");
    auto& slider = Find<ui::FrequencySlider>("sldStartFreq");
    slider.setFocus();
    QTest::keyClick(&slider, Qt::Key_Right);
    Settle();
    EXPECT_EQ(rig.form.Signals.Signal.sldStartFreq.Value(), 101);
    QTest::keyClick(&slider, Qt::Key_PageUp);
    Settle();
    EXPECT_EQ(Find<QLineEdit>("txtGenFreq").text(), "127");
}

TEST_F(MainWindowTest, KeepsMemoryTonesInTheList) {
    QTest::mouseClick(&Find<QPushButton>("cmdGenAdd"), Qt::LeftButton);
    Settle();
    auto& list = Find<QListWidget>("ToneList");
    ASSERT_EQ(list.count(), 1);
    EXPECT_EQ(list.item(0)->text(), "1000Hz / NA / Sine / NA / No Loop");
    list.item(0)->setSelected(true);
    Settle();
    EXPECT_TRUE(rig.form.Signals.Memory.ToneList.Selected(0));
    EXPECT_TRUE(Find<QPushButton>("cmdStartMemory").isEnabled());
}

TEST_F(MainWindowTest, ClosesThroughTheFormsShutdown) {
    bool unloaded = false;
    rig.form.OnUnloaded = [&](int) { unloaded = true; };
    rig.log.Clear();
    window.close();
    EXPECT_TRUE(unloaded);
    EXPECT_EQ(rig.store.Get("Windows", "LastTab", "none"), "0");
    EXPECT_THAT(rig.log.Lines(), testing::ElementsAre("UnloadDialogs", "SaveAndRestoreInitial"));
}

TEST_F(MainWindowTest, ClosesFromTheMenuToo) {
    int unloaded = 0;
    rig.form.OnUnloaded = [&](int) { ++unloaded; };
    window.findChild<QAction*>("mnuExit")->trigger();
    EXPECT_EQ(unloaded, 1);
}

TEST_F(MainWindowTest, FindsEverythingAgainInASecondRun) {
    Find<QTabWidget>("TabStrip1").setCurrentIndex(1);
    Find<QCheckBox>("chkMuteOutput").click();
    Find<QCheckBox>("chkAuto").click();
    QTest::mouseClick(&Find<QPushButton>("cmdGenAdd"), Qt::LeftButton);
    window.move(window.pos() + QPoint(7, 9));
    Settle();
    const QPoint place = window.pos();
    window.close();
    FormRig again;
    again.store = rig.store;
    again.desktop.screens = {4000, 4000, 4000, 4000};
    ui::MainWindow second(again.form, {});
    second.TellSize();
    again.form.Form_Load();
    EXPECT_EQ(QPoint(again.form.Frame.Left(), again.form.Frame.Top()), place);
    second.ShowPlaced();
    Settle();
    EXPECT_EQ(second.findChild<QTabWidget*>("TabStrip1")->currentIndex(), 1);
    EXPECT_FALSE(second.findChild<QCheckBox*>("chkMuteOutput")->isChecked());
    EXPECT_FALSE(second.findChild<QCheckBox*>("chkAuto")->isChecked());
    EXPECT_EQ(second.findChild<QListWidget*>("ToneList")->count(), 1);
}

TEST_F(MainWindowTest, SaysWhatTheTotalCounts) {
    rig.form.Signals.Signal.sldStartFreq.UserMoves(4000);
    QTest::mouseClick(&Find<QPushButton>("startCurrentMeter"), Qt::LeftButton);
    Step(60);
    EXPECT_EQ(Text("capTotalOf"), QString::fromUtf8("H2–H3, re total (THD_R)"));
}

TEST_F(MainWindowTest, DoesNotJumpWhenReadingsComeAndGo) {
    Step(1);
    const QRect hero = Find<QLabel>("lblThd").geometry();
    const QRect percent = Find<QLabel>("lbltest_0").geometry();
    const QRect level = Find<QLabel>("LblLevel").geometry();
    QTest::mouseClick(&Find<QPushButton>("startCurrentMeter"), Qt::LeftButton);
    Step(60);
    EXPECT_EQ(Find<QLabel>("lblThd").geometry(), hero);
    EXPECT_EQ(Find<QLabel>("lbltest_0").geometry(), percent);
    EXPECT_EQ(Find<QLabel>("LblLevel").geometry(), level);
}

}  // namespace
}  // namespace sonavex
