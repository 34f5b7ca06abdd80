#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "core/precise/display/LevelUnits.h"
#include "support/CreatedControls.h"
#include "support/DialogUser.h"
#include "ui/AnalyzerRig.h"
#include "ui/AnalyzerWindow.h"
#include "ui/ClippedTexts.h"
#include "ui/widgets/KeyButton.h"
#include "ui/widgets/SegmentedChoice.h"
#include "ui/widgets/SpectrumView.h"
#include "ui/widgets/UnitChoice.h"

namespace sonavex {
namespace {

using testing::IsEmpty;
using namespace std::chrono_literals;

constexpr QSize kUsualSize(1240, 800);
constexpr QSize kSmallestSize(1000, 640);

class AnalyzerWindowTest : public testing::Test, public AnalyzerRig {};

TEST_F(AnalyzerWindowTest, JoinsEveryControlOfTheForm) {
    std::optional<frmAnalyzer> again;
    std::vector<Control*> created = CreatedControls([&] {
        again.emplace(AnalyzerNeeds(rig.form, rig.loop, background, rig.dialogs, files, stored.history));
    });
    std::erase(created, &again->Frame);  // the window itself
    const ui::AnalyzerWindow analyzer(*again, guard);
    std::map<Control*, std::string> joined;
    for (const auto& pair : analyzer.Bindings().Pairs())
        joined[pair.control] = pair.widget->objectName().toStdString();
    std::string before;
    for (Control* control : created) {
        EXPECT_EQ(joined.count(control), 1U) << "the control after " << before;
        if (joined.count(control) != 0) before = joined[control];
    }
    EXPECT_EQ(joined.size(), created.size());
}

TEST_F(AnalyzerWindowTest, GivesEveryWidgetAnAccessibleName) {
    Open(kUsualSize);
    for (const auto& pair : std::as_const(window).Bindings().Pairs()) {
        const auto* widget = qobject_cast<QWidget*>(pair.widget);
        if (widget == nullptr || widget->objectName() == "Tabs") continue;
        const bool saysItself = !widget->property("text").toString().isEmpty();
        EXPECT_TRUE(saysItself || !widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
    }
}

TEST_F(AnalyzerWindowTest, ReachesEveryControlByTheTabKey) {
    Open(kUsualSize);
    std::set<const QWidget*> unreached;
    // Arrow keys reach the other buttons of a choice.
    const auto reachedByArrows = [](const QWidget* widget) {
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        return button != nullptr && button->group() != nullptr && !button->isChecked();
    };
    for (const QWidget* widget : window.findChildren<QWidget*>())
        if (widget->isVisible() && !reachedByArrows(widget) && widget->isEnabled() &&
            widget->focusProxy() == nullptr && (widget->focusPolicy() & Qt::TabFocus) != 0)
            unreached.insert(widget);
    window.activateWindow();
    for (int i = 0; i < 80; ++i) {
        QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : &window,
                        Qt::Key_Tab);
        unreached.erase(QApplication::focusWidget());
    }
    for (const QWidget* widget : unreached)
        ADD_FAILURE() << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
}

TEST_F(AnalyzerWindowTest, GoesFromTheLeftColumnToThePlotTheStripTheReadingsAndTheButtons) {
    Open(kUsualSize);
    std::vector<std::string> parts;
    QWidget* widget = &Find<QWidget>("txtFrequency");
    widget->setFocus();
    const char* const areas[] = {"leftColumn", "plotCard", "waveCard", "rightColumn", "buttonRow"};
    for (int i = 0; i < 60 && (parts.empty() || parts.back() != "buttonRow"); ++i) {
        for (const char* area : areas)
            if (Find<QWidget>(area).isAncestorOf(QApplication::focusWidget()) &&
                (parts.empty() || parts.back() != area))
                parts.emplace_back(area);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(parts,
                testing::ElementsAre("leftColumn", "plotCard", "waveCard", "rightColumn", "buttonRow"));
}

TEST_F(AnalyzerWindowTest, PressesNoButtonByReturnInAnEntry) {
    Open(kUsualSize);
    QSignalSpy calibrated(&Find<QPushButton>("cmdCalibrate"), &QPushButton::clicked);
    QSignalSpy held(&Find<QPushButton>("cmdHold"), &QPushButton::clicked);
    auto& entry = Find<QLineEdit>("txtFrequency");
    entry.setFocus();
    QTest::keyClick(&entry, Qt::Key_Return);
    EXPECT_EQ(calibrated.count() + held.count(), 0);
    EXPECT_TRUE(window.isVisible());
}

TEST_F(AnalyzerWindowTest, LeavesAnEntryWithItsOldTextByEscape) {
    Open(kUsualSize);
    auto& entry = Find<QLineEdit>("txtFrequency");
    entry.setFocus();
    entry.selectAll();
    QTest::keyClicks(&entry, "440");
    QTest::keyClick(&entry, Qt::Key_Escape);
    EXPECT_EQ(entry.text(), "19999.756");
    EXPECT_FALSE(entry.hasFocus());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_TRUE(window.isVisible());
}

// A key and the button that it presses.
using KeyPress = std::pair<QKeyCombination, const char*>;
class AnalyzerKeys : public testing::TestWithParam<KeyPress>, public AnalyzerRig {};

TEST_P(AnalyzerKeys, PressTheirButton) {
    Open(kUsualSize);
    form.Recording.AskForFile = [] { return std::string(); };
    QSignalSpy pressed(&Find<QPushButton>(GetParam().second), &QPushButton::clicked);
    Find<QWidget>("Spectrum").setFocus();
    QTest::keyClick(QApplication::focusWidget(), GetParam().first.key(),
                    GetParam().first.keyboardModifiers());
    EXPECT_EQ(pressed.count(), 1);
}

INSTANTIATE_TEST_SUITE_P(All, AnalyzerKeys,
                         testing::Values(KeyPress{Qt::Key_Space, "cmdSingle"}, KeyPress{Qt::Key_H, "cmdHold"},
                                         KeyPress{Qt::Key_K, "cmdKeep"}, KeyPress{Qt::Key_F, "cmdFit"},
                                         KeyPress{Qt::Key_R, "cmdFoldWaves"},
                                         KeyPress{Qt::CTRL | Qt::Key_C, "cmdCopy"},
                                         KeyPress{Qt::CTRL | Qt::Key_E, "cmdExport"},
                                         KeyPress{Qt::CTRL | Qt::Key_O, "cmdOpen"},
                                         KeyPress{Qt::Key_F5, "cmdStart"}));

TEST_F(AnalyzerWindowTest, TakesLettersAsTextInAnEntry) {
    Open(kUsualSize);
    QSignalSpy held(&Find<QPushButton>("cmdHold"), &QPushButton::clicked);
    auto& entry = Find<QLineEdit>("txtTones");
    form.Stimulus.cmbShape.UserSelects(StimulusPanel::kMultitone);
    Settle();
    entry.setFocus();
    entry.clear();
    QTest::keyClicks(&entry, "hkfru");
    EXPECT_EQ(entry.text(), "hkfru");
    EXPECT_EQ(held.count(), 0);
}

TEST_F(AnalyzerWindowTest, EditsTonesInADialog) {
    OpenOnCard(kUsualSize);
    form.Stimulus.cmbShape.UserSelects(StimulusPanel::kMultitone);
    Settle();
    const DialogSteps driver({[](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Edit Tones");
        auto* const lines = dialog.findChild<QPlainTextEdit*>();
        ASSERT_NE(lines, nullptr);
        EXPECT_TRUE(lines->toPlainText().startsWith("19.7754, 0\n"));
        EXPECT_FALSE(lines->textCursor().hasSelection());
        lines->setPlainText("1k, -6\n3k");
        dialog.accept();
    }});
    Click(window, "cmdEditTones");
    Settle();
    EXPECT_EQ(Find<QLineEdit>("txtTones").text(), "1000@-6,3000@0");
    EXPECT_EQ(Find<QLabel>("lblPlayed").text(), "999.756 Hz, 3000.732 Hz");
}

TEST_F(AnalyzerWindowTest, ChangesTheUnitOfThdByU) {
    Open(kUsualSize);
    QTest::keyClick(&Find<QWidget>("Spectrum"), Qt::Key_U);
    EXPECT_EQ(form.Readings.cmbThdUnit.ListIndex(), 1);
    QTest::keyClick(&Find<QWidget>("Spectrum"), Qt::Key_U);
    EXPECT_EQ(form.Readings.cmbThdUnit.ListIndex(), 0);
}

TEST_F(AnalyzerWindowTest, IsAWindowThatOthersCanCover) {
    EXPECT_EQ(window.windowType(), Qt::Window);
    EXPECT_EQ(window.parentWidget(), nullptr);
    EXPECT_TRUE(window.minimumSizeHint().width() <= kSmallestSize.width() &&
                window.minimumSizeHint().height() <= kSmallestSize.height());
}

TEST_F(AnalyzerWindowTest, ShowsEverythingAtItsUsualSize) {
    Open(kUsualSize);
    EXPECT_TRUE(Find<QWidget>("Waves").isVisible());
    EXPECT_EQ(Find<QScrollArea>("leftColumn").verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(Find<QScrollArea>("rightColumn").verticalScrollBar()->maximum(), 0);
}

TEST_F(AnalyzerWindowTest, FoldsAndScrollsWhenItIsSmall) {
    Open(kSmallestSize);
    EXPECT_EQ(window.size(), kSmallestSize);
    EXPECT_FALSE(Find<QWidget>("Waves").isVisible());
    EXPECT_GT(Find<QScrollArea>("leftColumn").verticalScrollBar()->maximum(), 0);
    window.resize(kUsualSize);
    Settle();
    EXPECT_TRUE(Find<QWidget>("Waves").isVisible());
}

// Whether a label shows its text without an ellipsis.
bool ShowsAll(const QLabel& label) {
    return label.contentsRect().width() >= label.fontMetrics().horizontalAdvance(label.text());
}

TEST_F(AnalyzerWindowTest, LongNamesOfDevicesLeaveRoomForAQuietNote) {
    Open(kSmallestSize, [](frmAnalyzer& shown) {
        for (Label* device : {&shown.lblInput, &shown.lblOutput})
            device->SetCaption("A device with a name that is longer than its place in the strip");
        shown.note.SetCaption("direct, one clock");
    });
    EXPECT_EQ(window.size(), kSmallestSize);
    EXPECT_TRUE(ShowsAll(Find<QLabel>("note")));
    EXPECT_FALSE(ShowsAll(Find<QLabel>("lblInput")));
}

TEST_F(AnalyzerWindowTest, TheSmallestLegendShowsWholeNames) {
    Open(kSmallestSize);
    EXPECT_FALSE(Find<QLabel>("lblLegendLive").isVisible());
    for (const char* name : {"lblLegendSide", "lblLegendKept"}) {
        EXPECT_TRUE(Find<QLabel>(name).isVisible()) << name;
        EXPECT_TRUE(ShowsAll(Find<QLabel>(name))) << name;
    }
    window.resize(kUsualSize);
    Settle();
    EXPECT_TRUE(Find<QLabel>("lblLegendLive").isVisible());
    EXPECT_FALSE(Find<QLabel>("lblLegendSide").isVisible());
}

TEST_F(AnalyzerWindowTest, TheSmallestLegendShowsTheTimesOfTwoStoredReadings) {
    Open(kSmallestSize, [](frmAnalyzer& shown) {
        shown.lblLegendKept.SetCaption("10:58:21");
        shown.lblLegendKeptSecond.SetCaption("10:51:17");
    });
    EXPECT_FALSE(Find<QLabel>("lblLegendSide").isVisible());
    for (const char* name : {"lblLegendKept", "lblLegendKeptSecond"})
        EXPECT_TRUE(ShowsAll(Find<QLabel>(name))) << name;
}

struct Look {
    const char* name;
    QSize size;
    std::function<void(frmAnalyzer&)> show;
};

class AnalyzerTexts : public testing::TestWithParam<Look>, public AnalyzerRig {};

void ShowShape(frmAnalyzer& form, std::int32_t shape) {
    form.Stimulus.cmbShape.SetListIndex(shape);
}

TEST_P(AnalyzerTexts, FitIn) {
    Open(GetParam().size, GetParam().show);
    EXPECT_THAT(ClippedTexts(window), IsEmpty());
}

std::vector<Look> Looks() {
    const std::pair<const char*, std::function<void(frmAnalyzer&)>> states[] = {
        {"Valid", [](frmAnalyzer&) {}},
        {"Settling",
         [](frmAnalyzer& form) {
             form.Chip.Show(StateChip::Kind::kSettling, "SETTLING 100 of 100", 0.4);
             form.Readings.lblThdSpread.SetCaption("\u00B1 10.11 dB so far");
         }},
        {"Unsteady",
         [](frmAnalyzer& form) {
             form.Chip.Show(StateChip::Kind::kUnsteady, "UNSTEADY -60 dBc within 6 Hz");
         }},
        {"Void",
         [](frmAnalyzer& form) {
             form.Chip.Show(StateChip::Kind::kVoid, "VOID 96000 frames lost");
             form.lblBits.SetCaption("in 24, 16 used \u00B7 out 16 bit");
             form.note.SetCaption("limited by 16 bit");
             form.note.SetEmphasis(true);
             form.Readings.lblThd.SetCaption("none");
             form.Readings.lblThdSpread.SetCaption("last valid 10:42:07");
             form.Readings.lblThdOther.SetCaption("");
         }},
        {"Overload", [](frmAnalyzer& form) { form.Chip.Show(StateChip::Kind::kOverload, "OVERLOAD"); }},
        {"Bound",
         [](frmAnalyzer& form) {
             form.Readings.lblThd.SetCaption("\u2264 -141.2");
             form.Readings.lblThdSpread.SetCaption("in the noise");
             form.Readings.lblThdOther.SetCaption("\u2264 0.000009 %");
         }},
        {"Percent",
         [](frmAnalyzer& form) {
             form.Readings.lblThd.SetCaption("0.000744");
             form.Readings.cmbThdUnit.SetListIndex(1);
         }},
        {"Trouble",
         [](frmAnalyzer& form) {
             form.Stimulus.lblTrouble.SetCaption(
                 "The stimulus cannot start while the generator of the main window plays. Stop the generator "
                 "first.");
         }},
        {"TwoTones", [](frmAnalyzer& form) { ShowShape(form, 1); }},
        {"Multitone", [](frmAnalyzer& form) { ShowShape(form, 2); }},
        {"Noise", [](frmAnalyzer& form) { ShowShape(form, 6); }},
    };
    std::vector<Look> looks;
    for (const auto& [name, show] : states) {
        looks.push_back({name, kUsualSize, show});
        looks.push_back({name, kSmallestSize, show});
    }
    return looks;
}

INSTANTIATE_TEST_SUITE_P(EveryState, AnalyzerTexts, testing::ValuesIn(Looks()), [](const auto& instance) {
    return std::string(instance.param.name) +
           (instance.param.size == kUsualSize ? "AtTheUsualSize" : "AtTheSmallestSize");
});

// The states as the form makes them.
struct State {
    const char* name;
    std::function<void(AnalyzerRig&)> reach;
    StateChip::Kind chip;
};

class AnalyzerStates : public testing::TestWithParam<State>, public AnalyzerRig {};

TEST_P(AnalyzerStates, ClipNoText) {
    OpenOnCard(kUsualSize);
    form.Stimulus.cmdStart.Press();
    Play(std::chrono::seconds(5));
    GetParam().reach(*this);
    Settle();
    EXPECT_EQ(form.Chip.State(), GetParam().chip) << form.Chip.Text();
    EXPECT_THAT(ClippedTexts(window), IsEmpty());
    window.resize(kSmallestSize);
    Settle();
    EXPECT_THAT(ClippedTexts(window), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, AnalyzerStates,
    testing::Values(State{"Valid", [](AnalyzerRig&) {}, StateChip::Kind::kValid},
                    State{"Kept", [](AnalyzerRig& rig) { rig.form.cmdKeep.Press(); },
                          StateChip::Kind::kValid},
                    State{"Percent",
                          [](AnalyzerRig& rig) {
                              rig.form.Readings.ToggleUnit();
                              rig.form.Readings.mnuNotch.UserChooses();
                              for (const auto row : {ReadingsPanel::kThdn, ReadingsPanel::kNotch})
                                  rig.form.Readings.Rows[row].unit.UserSelects(1);
                          },
                          StateChip::Kind::kValid},
                    State{"Volts",
                          [](AnalyzerRig& rig) {
                              rig.Calibrate();
                              rig.Play(std::chrono::seconds(1));
                              for (const auto row : {ReadingsPanel::kNoise, ReadingsPanel::kLevel})
                                  rig.form.Readings.Rows[row].unit.UserSelects(LevelUnits::kVolts);
                              rig.form.Stimulus.cmbLevelUnit.UserSelects(LevelUnits::kVolts);
                              rig.Play(std::chrono::seconds(5));
                          },
                          StateChip::Kind::kValid},
                    State{"Bound",
                          [](AnalyzerRig& rig) {
                              DeviceUnderTestModel clean = AnalyzerRig::UsualLoop();
                              clean.harmonicAmplitudes.clear();
                              rig.rig.card.Card().SetDeviceUnderTest(clean);
                              rig.Play(std::chrono::seconds(8));
                          },
                          StateChip::Kind::kValid},
                    State{"Held", [](AnalyzerRig& rig) { rig.form.cmdHold.Press(); }, StateChip::Kind::kOff},
                    State{"Void",
                          [](AnalyzerRig& rig) {
                              rig.rig.card.Unplug();
                              rig.Play(std::chrono::seconds(1));
                          },
                          StateChip::Kind::kVoid},
                    State{"Overload",
                          [](AnalyzerRig& rig) {
                              DeviceUnderTestModel loud = AnalyzerRig::UsualLoop();
                              loud.gain = 1.3;
                              rig.rig.card.Card().SetDeviceUnderTest(loud);
                              rig.Play(std::chrono::seconds(5));
                          },
                          StateChip::Kind::kOverload},
                    State{"Recording", [](AnalyzerRig& rig) { rig.OpenRecording(AnalyzerRig::ClippingSine); },
                          StateChip::Kind::kValid},
                    State{"UnsteadyRecord",
                          [](AnalyzerRig& rig) {
                              rig.OpenRecording(AnalyzerRig::UnsteadySine);
                              rig.form.Recording.chkAveraged.UserSets(false);
                              rig.Play(std::chrono::seconds(1));
                          },
                          StateChip::Kind::kUnsteady}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(AnalyzerWindowTest, ShowsTheUncertaintyInTheInkOfItsFigure) {
    OpenOnCard(kUsualSize);
    form.Stimulus.cmdStart.Press();
    Play(std::chrono::seconds(2));
    Settle();
    ASSERT_EQ(form.Chip.State(), StateChip::Kind::kSettling);
    EXPECT_EQ(Find<QLabel>("lblThdSpread").property("ink").toByteArray(), "quiet");
    Play(std::chrono::seconds(4));
    Settle();
    EXPECT_EQ(Find<QLabel>("lblThdSpread").property("ink").toByteArray(), "");
}

// An entry would take the name of the file as its text.
TEST_F(AnalyzerWindowTest, OpensAFileThatIsDroppedAnywhere) {
    Open(kUsualSize);
    files.sounds["/recordings/dropped.wav"] = {
        .rateHz = 48000, .channels = 2, .frames = 100000, .sample = UnsteadySine};
    for (QWidget* target : {static_cast<QWidget*>(&Find<ui::SpectrumView>("Spectrum")),
                            static_cast<QWidget*>(&Find<QLineEdit>("txtFrequency"))}) {
        form.lblRecording.SetCaption("");
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile("/recordings/dropped.wav")});
        const QPoint place = target->rect().center();
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        EXPECT_TRUE(enter.isAccepted()) << target->objectName().toStdString();
        QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &drop);
        Play(200ms);
        EXPECT_EQ(form.lblRecording.Caption(), "dropped.wav") << target->objectName().toStdString();
        EXPECT_EQ(form.Stimulus.txtFrequency.Text(), "19999.756");
    }
    QMimeData text;
    text.setText("440");
    QDragEnterEvent enter({0, 0}, Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST_F(AnalyzerWindowTest, TheStripOfARecordingTakesThePlaceOfTheDevices) {
    OpenOnCard(kUsualSize);
    EXPECT_TRUE(Find<QWidget>("lblInput").isVisible());
    EXPECT_FALSE(Find<QWidget>("recordingPane").isVisible());
    OpenRecording(ClippingSine);
    EXPECT_FALSE(Find<QWidget>("lblInput").isVisible());
    EXPECT_TRUE(Find<QWidget>("recordingPane").isVisible());
    EXPECT_EQ(Find<QLabel>("lblRecording").text(), "take 3.wav");
    Find<QPushButton>("cmdLive").click();
    Settle();
    EXPECT_TRUE(Find<QWidget>("lblInput").isVisible());
}

}  // namespace
}  // namespace sonavex
