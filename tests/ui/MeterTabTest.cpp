#include <QGuiApplication>
#include <QMenuBar>
#include <QRegularExpression>
#include <QScreen>
#include <QTabWidget>
#include <QToolButton>
#include <map>
#include <set>

#include "ui/WindowRig.h"
#include "ui/widgets/LevelBar.h"
#include "ui/widgets/LockLamp.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MeterTab : public WindowRig {
protected:
    void Click(const char* button) {
        Find<QAbstractButton>(button).click();
        Settle();
    }
    void StartSine() {
        Click("startCurrentMeter");
        Step(60);
    }
};

TEST_F(MeterTab, IsRedBeforeTheFirstBlock) {
    EXPECT_EQ(Find<ui::LockLamp>("picLocked").Colour(), QColor(255, 0, 0));
    EXPECT_EQ(Find<ui::LockLamp>("GenLocked").Colour(), QColor(255, 0, 0));
    EXPECT_EQ(Text("lockWord"), "NOT LOCKED");
    EXPECT_EQ(Text("LblLevel"), "");
    EXPECT_EQ(Text("adcWord"), "");
}

TEST_F(MeterTab, LosesItsLockAndFindsItAgain) {
    StartSine();
    EXPECT_EQ(Text("lockWord"), "LOCKED");
    EXPECT_FALSE(Find<QLabel>("settlingNote").isVisible());
    Click("startCurrentMeter");
    Step(19);
    EXPECT_EQ(Text("lockWord"), "NOT LOCKED");
    EXPECT_EQ(Text("genLockWord"), "NOT LOCKED");
    EXPECT_EQ(Text("lblThd"), "N/A");
    Click("startCurrentMeter");
    // The first update after the lock lacks blocks from before it.
    for (int blocks = 0; Text("lblThd").toDouble() == 0.0 && blocks < 40; ++blocks) Step(1);
    EXPECT_EQ(Text("lockWord"), "LOCKED");
    EXPECT_TRUE(Find<QLabel>("settlingNote").isVisible());
    Step(38);
    EXPECT_FALSE(Find<QLabel>("settlingNote").isVisible());
    EXPECT_LT(Text("lblThd").toDouble(), 0.01);
}

TEST_F(MeterTab, MutesAndUnmutesTheWayThrough) {
    StartSine();
    EXPECT_EQ(Text("lblDACLevel"), "Muted");
    EXPECT_FALSE(Find<QLabel>("unitprgDAC").isVisible());
    Click("chkMuteOutput");
    Step(2);
    EXPECT_NE(Text("lblDACLevel"), "Muted");
    EXPECT_TRUE(Find<QLabel>("unitprgDAC").isVisible());
    EXPECT_EQ(Find<ui::LevelBar>("prgDAC").accessibleDescription(), Text("lblDACLevel") + " %");
    Click("chkMuteOutput");
    Step(2);
    EXPECT_EQ(Text("lblDACLevel"), "Muted");
    EXPECT_EQ(Find<ui::LevelBar>("prgDAC").accessibleDescription(), "Muted");
}

TEST_F(MeterTab, AppliesTheBaselineAndTakesItBack) {
    DeviceUnderTestModel bent;
    bent.harmonicAmplitudes = {0.01};
    rig.card.Card().SetDeviceUnderTest(bent);
    StartSine();
    const double before = Text("lbltest_0").toDouble();
    Click("cmdBaseline");
    EXPECT_THAT(rig.log.Of("Message"), ElementsAre("Message information Baseline calculations captured"));
    Click("chkBaseline");
    EXPECT_FALSE(Find<QPushButton>("cmdBaseline").isEnabled());
    Step(19);
    EXPECT_LT(std::abs(rig.form.Measurement.Analysis().CurrentPct[0]), 0.01);
    Click("chkBaseline");
    EXPECT_TRUE(Find<QPushButton>("cmdBaseline").isEnabled());
    Step(19);
    EXPECT_NEAR(Text("lbltest_0").toDouble(), before, 0.001);
}

TEST_F(MeterTab, FlagsABaselineOfAnotherFrequency) {
    StartSine();
    Click("cmdBaseline");
    Click("chkBaseline");
    Step(1);
    EXPECT_FALSE(Find<QLabel>("baselineNote").isVisible());
    rig.form.Signals.Signal.sldStartFreq.UserMoves(1500);
    Step(20);
    EXPECT_TRUE(Find<QLabel>("baselineNote").isVisible());
}

TEST_F(MeterTab, ShowsARunTimeErrorAndLivesOn) {
    rig.form.BaselineOptions.cmdBaseline.Click.Handle(
        [] { throw RuntimeError(error_number::kTypeMismatch); });
    Click("cmdBaseline");
    EXPECT_THAT(rig.log.Of("Message"), ElementsAre("Message critical Run-time error '13':\r\rType mismatch"));
    EXPECT_THAT(rig.log.Of("WriteLine"), ElementsAre("WriteLine Run-time error '13': Type mismatch"));
    StartSine();
    EXPECT_EQ(Text("lockWord"), "LOCKED");
}

TEST_F(MeterTab, DrawsSilenceWithoutAlarm) {
    Step(2);
    EXPECT_EQ(Text("LblLevel"), "Ovr");
    EXPECT_TRUE(Find<ui::LevelBar>("prgADC").Silent());
    EXPECT_EQ(Find<ui::LevelBar>("prgADC").accessibleDescription(), "NO SIGNAL");
    StartSine();
    EXPECT_FALSE(Find<ui::LevelBar>("prgADC").Silent());
}

TEST_F(MeterTab, DoesNotMoveWhenTheFirstBlockComes) {
    std::map<QString, QRect> places;
    const auto labels = window.findChildren<QWidget*>();
    for (const QWidget* widget : labels)
        if (widget->isVisible() && !widget->objectName().isEmpty())
            places[widget->objectName()] = {widget->mapTo(&window, QPoint()), widget->size()};
    StartSine();
    for (const char* name : {"lblThd", "LblLevel", "lblDACLevel", "prgADC", "prgDAC", "lbltest_0", "lblDb_7",
                             "txtFreq", "picLocked", "cycleBar", "startCurrentMeter"}) {
        const QWidget& widget = Find<QWidget>(name);
        EXPECT_EQ(places.at(name), QRect(widget.mapTo(&window, QPoint()), widget.size())) << name;
    }
}

TEST_F(MeterTab, StartsAndStopsWithAKey) {
    QTest::keyClick(&window, Qt::Key_F5);
    Settle();
    EXPECT_EQ(Find<QPushButton>("startCurrentMeter").text(), "Stop Current");
    QTest::keyClick(&window, Qt::Key_F5);
    Settle();
    EXPECT_EQ(Find<QPushButton>("startCurrentMeter").text(), "Start Current");
}

TEST_F(MeterTab, MarksReadingsOfALostDeviceAsThePast) {
    StartSine();
    EXPECT_FALSE(Find<QLabel>("streamNote").isVisible());
    rig.card.Unplug();
    rig.loop.DeliverSignals();
    Settle();
    EXPECT_TRUE(Find<QLabel>("streamNote").isVisible());
    EXPECT_THAT(Text("streamText").toStdString(), testing::HasSubstr("unplugged"));
    EXPECT_EQ(Text("lockWord"), "STOPPED");
    EXPECT_EQ(Find<ui::LockLamp>("picLocked").Colour(), QColor(255, 0, 0));
    EXPECT_TRUE(Find<QLabel>("lblThd").property("stale").toBool());
    EXPECT_EQ(rig.log.Count("WriteErrorLog"), 0U) << "the mark comes first";
    rig.loop.Advance(std::chrono::milliseconds(150));
    EXPECT_EQ(rig.log.Count("WriteErrorLog"), 1U);
    rig.card.Plug();
    rig.loop.Advance(std::chrono::seconds(2));
    Step(60);
    EXPECT_FALSE(Find<QLabel>("streamNote").isVisible());
    EXPECT_EQ(Text("lockWord"), "LOCKED");
    EXPECT_FALSE(Find<QLabel>("lblThd").property("stale").toBool());
    EXPECT_EQ(rig.log.Count("WriteErrorLog"), 1U);
}

// The letters behind the "&" of these texts.
std::map<QChar, std::set<QString>> Mnemonics(const QList<QPair<QString, QString>>& texts) {
    std::map<QChar, std::set<QString>> letters;
    const QRegularExpression mark("&([^&])");
    for (const auto& [name, text] : texts) {
        const auto match = mark.match(text);
        if (match.hasMatch()) letters[match.captured(1).toUpper().at(0)].insert(name);
    }
    return letters;
}

TEST_F(MeterTab, HasNoLetterTwiceOnATab) {
    for (const int tab : {0, 1}) {
        rig.form.TabStrip1.SetIndex(tab);
        Settle();
        QList<QPair<QString, QString>> texts;
        for (const QAction* menu : window.menuBar()->actions()) texts.append({menu->text(), menu->text()});
        auto& tabs = Find<QTabWidget>("TabStrip1");
        for (int i = 0; i < tabs.count(); ++i) texts.append({tabs.tabText(i), tabs.tabText(i)});
        for (const QWidget* widget : window.findChildren<QWidget*>())
            if (widget->isVisible())
                texts.append({widget->objectName(), widget->property("text").toString()});
        for (const auto& [letter, names] : Mnemonics(texts))
            EXPECT_EQ(names.size(), 1U)
                << QString(letter).toStdString() << ' ' << names.begin()->toStdString();
    }
}

TEST_F(MeterTab, ReachesEveryControlByTheTabKey) {
    for (const int tab : {0, 1}) {
        rig.form.TabStrip1.SetIndex(tab);
        Settle();
        std::set<QString> unreached;
        for (const QWidget* widget : window.findChildren<QWidget*>())
            if (widget->isVisible() && widget->isEnabled() && widget->focusProxy() == nullptr &&
                (widget->focusPolicy() & Qt::TabFocus) != 0)
                unreached.insert(widget->objectName());
        window.activateWindow();
        for (int i = 0; i < 80; ++i) {
            QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : &window,
                            Qt::Key_Tab);
            if (const QWidget* focus = QApplication::focusWidget()) unreached.erase(focus->objectName());
        }
        for (const QString& name : unreached) ADD_FAILURE() << name.toStdString();
        EXPECT_THAT(unreached, IsEmpty());
    }
}

TEST_F(MeterTab, ExplainsAndNamesWhatCanBeUsed) {
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        const bool usable = (widget->focusPolicy() & Qt::TabFocus) != 0 && !widget->objectName().isEmpty() &&
                            !widget->objectName().startsWith("qt_") &&
                            qobject_cast<const QToolButton*>(widget) == nullptr;
        if (!usable || qobject_cast<const QTabWidget*>(widget) != nullptr) continue;
        const bool named =
            !widget->accessibleName().isEmpty() || !widget->property("text").toString().isEmpty();
        EXPECT_TRUE(named) << widget->objectName().toStdString();
        EXPECT_FALSE(widget->toolTip().isEmpty()) << widget->objectName().toStdString();
    }
}

// The window of a second run on what a first one stored.
class SecondRun : public testing::Test {
protected:
    void Store(const char* section, const char* key, const char* value) {
        rig.store.Save(section, key, value);
    }
    void Open() {
        window.TellSize();
        rig.form.Form_Load();
        window.ShowPlaced();
        QApplication::processEvents();
    }

    FormRig rig;
    ui::MainWindow window{rig.form, {}};
};

TEST_F(SecondRun, ShowsWhatTheFirstStored) {
    Store("Windows", "LastTab", "1");
    Store("Windows", "frmMain Left", "33");
    Store("Windows", "frmMain Top", "44");
    Store("Settings", "Auto", "0");
    Store("Settings", "Baseline", " 1");
    Store("Signal Generator", "MuteMeter", "0");
    Store("Signal Generator", "Current Signal Start", "440");
    Store("SoundCard", "SampleRate", "0");
    rig.desktop.screens = {3000, 3000, 3000, 3000};
    Open();
    EXPECT_EQ(window.findChild<QTabWidget*>("TabStrip1")->currentIndex(), 1);
    EXPECT_EQ(rig.form.Frame.Left(), 33);
    EXPECT_EQ(rig.form.Frame.Top(), 44);
    EXPECT_EQ(window.pos().x(), 33);
    EXPECT_FALSE(window.findChild<QCheckBox*>("chkAuto")->isChecked());
    EXPECT_TRUE(window.findChild<QLineEdit*>("txtFreq")->isEnabled());
    EXPECT_TRUE(window.findChild<QCheckBox*>("chkBaseline")->isChecked());
    EXPECT_FALSE(window.findChild<QPushButton*>("cmdBaseline")->isEnabled());
    EXPECT_FALSE(window.findChild<QCheckBox*>("chkMuteOutput")->isChecked());
    EXPECT_EQ(window.findChild<QLineEdit*>("txtGenFreq")->text(), "440");
    EXPECT_EQ(window.findChild<QLabel*>("lblSampleRate")->text(), "48000");
}

TEST_F(SecondRun, IsCentredWhereNoScreenShowsThePlace) {
    Store("Windows", "frmMain Left", "-20000");
    Store("Windows", "frmMain Top", "-20000");
    Open();
    EXPECT_EQ(rig.form.Frame.Left(), -20000);
    EXPECT_TRUE(QGuiApplication::primaryScreen()->availableGeometry().intersects(window.geometry()));
}

TEST_F(SecondRun, IsPulledBackFromTheRightAndTheBottom) {
    Store("Windows", "frmMain Left", "30000");
    Store("Windows", "frmMain Top", "30000");
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    rig.desktop.screens = {screen.width(), screen.height(), screen.width(), screen.height()};
    Open();
    // The display's frame around the window is known only once it is shown.
    EXPECT_EQ(rig.form.Frame.Left(), screen.width() - window.width());
    EXPECT_EQ(rig.form.Frame.Top(), screen.height() - window.height());
    EXPECT_EQ(window.pos(), QPoint(rig.form.Frame.Left(), rig.form.Frame.Top()));
    EXPECT_GE(rig.form.Frame.Width(), window.minimumSizeHint().width());
}

TEST_F(SecondRun, IsNotMadeWiderByLongDeviceNames) {
    Open();
    const int width = window.width();
    const std::string name(200, 'W');
    rig.form.lblInput.SetCaption(name);
    rig.form.lblOutput.SetCaption(name);
    for (int i = 0; i < 3; ++i) QApplication::processEvents();
    EXPECT_EQ(window.width(), width);
    EXPECT_EQ(window.findChild<QLabel*>("lblInput")->text().toStdString(), name);
}

TEST_F(SecondRun, ClosesOnlyAfterTheTickIsThrough) {
    Open();
    bool unloaded = false;
    rig.form.OnUnloaded = [&](int) { unloaded = true; };
    rig.form.Signals.Signal.sldSweepTime.UserMoves(1000);
    rig.form.Signals.Signal.sldSweepTime.UserReleases();
    rig.form.Signals.Signal.Command1.Press();
    rig.loop.OnYield([&] {
        window.close();
        EXPECT_FALSE(unloaded);
    });
    rig.form.HiTimer1->Tick();
    rig.loop.OnYield({});
    rig.loop.DeliverSignals();
    EXPECT_TRUE(unloaded);
}

}  // namespace
}  // namespace sonavex
