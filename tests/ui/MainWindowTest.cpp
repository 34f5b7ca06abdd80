#include <QAction>
#include <QGuiApplication>
#include <QListWidget>
#include <QMenuBar>
#include <QRegularExpression>
#include <QScreen>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>
#include <map>
#include <optional>
#include <set>

#include "support/CreatedControls.h"
#include "ui/WindowRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using MainWindowTest = WindowRig;

// Prefixes of control names.
const QRegularExpression kControlName(
    "^(cmd|chk|sld|txt|lbl|Lbl|prg|mnu|cmb|pic)[A-Z]|^(lbltest|lblDb)_|"
    "^(Command1|ToneList|TabStrip1|GenLocked)$");

// cmdExit has no widget: mnuExit presses it.
TEST(MainWindowBindings, JoinEveryControlOfTheForm) {
    std::optional<FormRig> rig;
    std::vector<Control*> created = CreatedControls([&] { rig.emplace(); });
    std::erase(created, &rig->form.Frame);  // the window itself
    const ui::MainWindow window(rig->form, {});
    std::map<Control*, std::string> joined;
    for (const auto& pair : window.Bindings().Pairs())
        joined[pair.control] = pair.widget->objectName().toStdString();
    std::vector<Control*> loose;
    std::string places;
    std::string before;
    for (Control* control : created) {
        if (joined.count(control) != 0) {
            before = joined[control];
        } else {
            loose.push_back(control);
            places += "the control after " + before + " has no widget\n";
        }
    }
    EXPECT_THAT(loose, ElementsAre(&rig->form.cmdExit)) << places;
    EXPECT_EQ(joined.size(), created.size() - 1) << "controls of the form alone";
}

TEST_F(MainWindowTest, JoinsEveryWidgetNamedLikeAControl) {
    std::set<QObject*> joined;
    for (const auto& pair : window.Bindings().Pairs()) joined.insert(pair.widget);
    std::set<std::string> loose;
    for (QObject* object : window.findChildren<QObject*>())
        if (kControlName.match(object->objectName()).hasMatch() && joined.count(object) == 0)
            loose.insert(object->objectName().toStdString());
    EXPECT_THAT(loose, IsEmpty());
}

TEST_F(MainWindowTest, GivesEveryWidgetAnAccessibleName) {
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

TEST_F(MainWindowTest, ClosesThroughTheFormsShutdown) {
    bool unloaded = false;
    rig.form.OnClosed = [&](int) { unloaded = true; };
    rig.log.Clear();
    window.close();
    EXPECT_TRUE(unloaded);
    EXPECT_EQ(rig.store.Get("Windows", "LastTab", "none"), "0");
    EXPECT_THAT(rig.log.Lines(), testing::ElementsAre("UnloadDialogs", "SaveAndRestoreInitial"));
}

TEST_F(MainWindowTest, ClosesFromTheMenuToo) {
    int unloaded = 0;
    rig.form.OnClosed = [&](int) { ++unloaded; };
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
    second.ReportSize();
    again.form.Form_Load();
    EXPECT_EQ(QPoint(again.form.Frame.Left(), again.form.Frame.Top()), place);
    second.ShowPlaced();
    Settle();
    EXPECT_EQ(second.findChild<QTabWidget*>("TabStrip1")->currentIndex(), 1);
    EXPECT_FALSE(second.findChild<QCheckBox*>("chkMuteOutput")->isChecked());
    EXPECT_FALSE(second.findChild<QCheckBox*>("chkAuto")->isChecked());
    EXPECT_EQ(second.findChild<QListWidget*>("ToneList")->count(), 1);
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

TEST_F(MainWindowTest, HasNoLetterTwiceOnATab) {
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

TEST_F(MainWindowTest, ReachesEveryControlByTheTabKey) {
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

TEST_F(MainWindowTest, ExplainsAndNamesWhatCanBeUsed) {
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
        window.ReportSize();
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
    EXPECT_EQ(rig.form.Frame.Left(), screen.width() - window.width());
    EXPECT_EQ(rig.form.Frame.Top(), screen.height() - window.height());
    // The display's frame around the window is known only once it is shown.
    EXPECT_EQ(window.frameGeometry().bottomRight(), screen.bottomRight());
    EXPECT_GE(rig.form.Frame.Width(), window.minimumSizeHint().width());
}

TEST_F(SecondRun, IsNotMadeWiderByLongDeviceNames) {
    Open();
    const int width = window.width();
    const std::string name(200, 'W');
    rig.form.lblInput.SetCaption(name);
    rig.form.lblOutput.SetCaption(name);
    Settle();
    EXPECT_EQ(window.width(), width);
    EXPECT_EQ(window.findChild<QLabel*>("lblInput")->text().toStdString(), name);
}

TEST_F(SecondRun, ClosesOnlyAfterTheTickHasEnded) {
    Open();
    bool unloaded = false;
    rig.form.OnClosed = [&](int) { unloaded = true; };
    rig.form.GeneratorPanel.Controls.sldSweepTime.UserMoves(1000);
    rig.form.GeneratorPanel.Controls.sldSweepTime.UserReleases();
    rig.form.GeneratorPanel.Controls.Command1.Press();
    rig.loop.OnYield([&] {
        window.close();
        EXPECT_FALSE(unloaded);
    });
    rig.form.Instrument.HiTimer1.Tick();
    rig.loop.OnYield({});
    rig.loop.DeliverSignals();
    EXPECT_TRUE(unloaded);
}

}  // namespace
}  // namespace sonavex
