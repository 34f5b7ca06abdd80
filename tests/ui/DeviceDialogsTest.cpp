#include <gmock/gmock.h>

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <chrono>
#include <functional>
#include <optional>

#include "core/ports/SoundErrors.h"
#include "core/support/EndProgram.h"
#include "support/CreatedControls.h"
#include "support/DialogRig.h"
#include "support/DialogUser.h"
#include "support/QtWait.h"
#include "ui/DeviceDialog.h"
#include "ui/ErrorDialog.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string Text(QDialog& dialog, const char* label) {
    return Find<QLabel>(dialog, label).text().toStdString();
}

// The EndProgram thrown by the action.
template <class Action>
std::optional<EndProgram> EndOf(Action action) {
    try {
        action();
    } catch (const EndProgram& end) {
        return end;
    }
    return {};
}

class DeviceDialogs : public testing::Test {
protected:
    void FailToStart() {
        rig.log.Fail("CreateCaptureDevice", RuntimeError(sound_error::kNoDriver, "The line is gone."));
    }
    // Starts the main form; the steps handle the dialogs that it opens.
    void Load(std::vector<std::function<void(QDialog&)>> steps = {}) {
        const DialogSteps driver(std::move(steps));
        rig.form.Form_Load();
    }
    void SelectFromMenu(std::vector<std::function<void(QDialog&)>> steps) {
        const DialogSteps driver(std::move(steps));
        rig.form.Guard.Run([this] { rig.form.mnuSelectCard.UserChooses(); });
    }
    std::string Stored(const char* key) const { return rig.store.Get("SoundCard", key, "(absent)"); }

    DialogRig rig;
};

TEST_F(DeviceDialogs, TheSelectionHasItsTexts) {
    Load();
    SelectFromMenu({[](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Select Sound Devices");
        EXPECT_TRUE(dialog.isModal());
        EXPECT_EQ(Text(dialog, "capFrame1"), "Sound Devices");
        EXPECT_EQ(Text(dialog, "Label1"), "Playback Device:");
        EXPECT_EQ(Text(dialog, "Label2"), "Input Device:");
        EXPECT_EQ(Text(dialog, "Label3"), "Device to use for Output audio (Speakers)");
        EXPECT_EQ(Text(dialog, "lblMic"), "Device to use for Input");
        EXPECT_EQ(Text(dialog, "Label4"), "Sample Rate :");
        EXPECT_EQ(Text(dialog, "Label5"), "Sample Rates above 32000 is not recommended with Vista.");
        EXPECT_EQ(Find<QComboBox>(dialog, "cmbInputMixer").toolTip(),
                  "Sound device to use for input (microphone input Vista)");
        EXPECT_EQ(Find<QComboBox>(dialog, "cmbOutputMixer").toolTip(), "Sound device to use for output");
        EXPECT_EQ(Find<QPushButton>(dialog, "cmdHelp").text(), "Help");
        Click(dialog, "cmdCancel");
    }});
}

TEST_F(DeviceDialogs, TheSelectionJoinsEveryControl) {
    Load();
    std::optional<frmDevices> form;
    std::vector<Control*> created = CreatedControls(
        [&] { form.emplace(rig.form.DevicesNeeds(rig.files, rig.help), rig.form.DevicesLabels()); });
    std::erase(created, &form->Frame);  // the window itself
    const ui::DeviceDialog dialog(*form, rig.form.Guard);
    std::set<Control*> joined;
    for (const auto& pair : dialog.Bindings().Pairs()) joined.insert(pair.control);
    EXPECT_EQ(joined, std::set<Control*>(created.begin(), created.end()));
}

TEST_F(DeviceDialogs, TheSelectionShowsDevicesAndSaysStopped) {
    Load();
    SelectFromMenu({[&](QDialog& dialog) {
        auto& outputs = Find<QComboBox>(dialog, "cmbOutputMixer");
        auto& rates = Find<QComboBox>(dialog, "cmbSampleRate");
        ASSERT_EQ(outputs.count(), 2);
        EXPECT_EQ(outputs.itemText(0), "Card A");
        EXPECT_EQ(outputs.currentText(), "Card A");
        EXPECT_EQ(Find<QComboBox>(dialog, "cmbInputMixer").currentText(), "Line B");
        EXPECT_EQ(rates.count(), 7);
        EXPECT_EQ(rates.currentText(), "44100");
        EXPECT_TRUE(Find<QLabel>(dialog, "Label5").isVisible());
        EXPECT_EQ(rig.form.lblOutput.Caption(), "Stopped");
        Click(dialog, "cmdCancel");
    }});
    EXPECT_EQ(rig.form.lblOutput.Caption(), "Card A");
    EXPECT_EQ(rig.form.lblInput.Caption(), "Line B");
    EXPECT_EQ(rig.form.lblSampleRate.Caption(), "32000");
}

TEST_F(DeviceDialogs, TheOlderGenerationIsNotWarned) {
    rig.desktop.majorVersion = 5;
    Load();
    SelectFromMenu({[](QDialog& dialog) {
        EXPECT_FALSE(Find<QLabel>(dialog, "Label5").isVisible());
        Click(dialog, "cmdCancel");
    }});
}

TEST_F(DeviceDialogs, TheSelectionIsTakenOverByKeys) {
    Load();
    SelectFromMenu({[](QDialog& dialog) {
        for (const char* name : {"cmbOutputMixer", "cmbSampleRate"}) {
            Find<QComboBox>(dialog, name).setFocus();
            QTest::keyClick(&Find<QComboBox>(dialog, name), Qt::Key_Down);
        }
        Find<QComboBox>(dialog, "cmbInputMixer").setFocus();
        QTest::keyClick(&Find<QComboBox>(dialog, "cmbInputMixer"), Qt::Key_Up);
        QTest::keyClick(&dialog, Qt::Key_Return);
    }});
    EXPECT_EQ(Stored("Output"), "out-b");
    EXPECT_EQ(Stored("Input"), "in-a");
    EXPECT_EQ(Stored("SampleRate"), "2");
    EXPECT_EQ(rig.form.lblOutput.Caption(), "Card B");
    EXPECT_TRUE(rig.form.Instrument.Shared.EventsReady);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(DeviceDialogs, TheSelectionReopensWhereItWas) {
    Load();
    QPoint place;
    SelectFromMenu({[&](QDialog& dialog) {
        dialog.move(70, 90);
        Settle();
        place = dialog.pos();
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }});
    EXPECT_EQ(rig.store.Get("Windows", "frmDevices Left", ""), "70");
    EXPECT_EQ(rig.store.Get("Windows", "frmDevices Top", ""), "90");
    SelectFromMenu({[&](QDialog& dialog) {
        EXPECT_EQ(dialog.pos(), place);
        dialog.close();
    }});
}

TEST_F(DeviceDialogs, AFailedStartIsShownAndThenDevicesAreSelected) {
    FailToStart();
    Load({[&](QDialog& dialog) {
              EXPECT_NE(qobject_cast<ui::ErrorDialog*>(&dialog), nullptr);
              EXPECT_EQ(
                  Text(dialog, "lblMessage"),
                  "Unable to find Inpout Sound Card and/or DirectX. Check proper sound card "
                  "installation\n\nA file named 'Quenby Error.txt' has been created on your desktop\nIf "
                  "you are unable to resolve this problem, contact Quenby Software for instuctions to "
                  "email this file");
              rig.log.Heal("CreateCaptureDevice");
              dialog.close();
          },
          [&](QDialog& dialog) {
              EXPECT_NE(qobject_cast<ui::DeviceDialog*>(&dialog), nullptr);
              EXPECT_FALSE(Find<QPushButton>(dialog, "cmdCancel").isEnabled());
              EXPECT_THAT(rig.files.files["Quenby Error.txt"], HasSubstr("DSERR_NODRIVER"));
              Click(dialog, "cmdOkay");
          }});
    EXPECT_TRUE(rig.form.Instrument.Shared.EventsReady);
    EXPECT_THAT(rig.log.Of("ShowError"), ElementsAre("ShowError"));
    EXPECT_THAT(rig.log.Of("ShowDevices"), ElementsAre("ShowDevices"));
    EXPECT_EQ(rig.files.files.count("Quenby Error.txt"), 0U);
}

TEST_F(DeviceDialogs, WithoutAnEngineClosingAsksAndMayEndTheProgram) {
    FailToStart();
    rig.dialogs.Answer = false;
    const auto end = EndOf([&] {
        Load({[](QDialog& error) { error.close(); }, [](QDialog& devices) { devices.close(); }});
    });
    ASSERT_TRUE(end.has_value());
    EXPECT_FALSE(end->atOnce);
    EXPECT_EQ(rig.log.Count("AskOkCancel"), 1U);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(DeviceDialogs, WithoutAnEngineTheSelectionCanBeKeptOpen) {
    FailToStart();
    bool stayed = false;
    Load({[&](QDialog& error) {
              rig.log.Heal("CreateCaptureDevice");
              error.close();
          },
          [&](QDialog& devices) {
              QTest::keyClick(&devices, Qt::Key_Escape);
              Settle();
              stayed = devices.isVisible();
              Click(devices, "cmdOkay");
          }});
    EXPECT_TRUE(stayed);
    EXPECT_EQ(rig.log.Count("AskOkCancel"), 1U);
}

TEST_F(DeviceDialogs, TheErrorHasItsButtonsAndForgetsTheDevices) {
    FailToStart();
    Load({[&](QDialog& dialog) {
              EXPECT_EQ(Find<QPushButton>(dialog, "cmdDirectX").text(), "Run DirectX Diag");
              EXPECT_TRUE(dialog.isModal());
              Click(dialog, "Command2");
              EXPECT_THAT(rig.log.Of("ShowTopic"), ElementsAre("ShowTopic 305"));
              rig.log.Heal("CreateCaptureDevice");
              Click(dialog, "cmdNewSoundCard");
          },
          [&](QDialog& dialog) {
              EXPECT_EQ(Stored("Output"), "");
              EXPECT_EQ(Stored("Input"), "");
              EXPECT_EQ(Find<QComboBox>(dialog, "cmbOutputMixer").currentIndex(), -1);
              QTest::keyClick(&Find<QComboBox>(dialog, "cmbOutputMixer"), Qt::Key_Down);
              QTest::keyClick(&Find<QComboBox>(dialog, "cmbInputMixer"), Qt::Key_Down);
              Click(dialog, "cmdOkay");
          }});
    EXPECT_EQ(Stored("Output"), "out-a");
    EXPECT_TRUE(rig.form.Instrument.Shared.EventsReady);
}

TEST_F(DeviceDialogs, TheErrorReportsOnTheSoundDevices) {
    FailToStart();
    Load({[&](QDialog& dialog) {
              Click(dialog, "cmdDirectX");
              Settle();
              EXPECT_EQ(Text(dialog, "lblStatus"), "Running DxDiag...");
              EXPECT_FALSE(Find<QPushButton>(dialog, "cmdDirectX").isEnabled());
              rig.diagnostics.Finish("cards\n");
              Settle();
              EXPECT_THAT(Text(dialog, "lblStatus"), HasSubstr("'Quenby DirectX Test.txt'"));
              EXPECT_EQ(rig.files.files["Quenby DirectX Test.txt"], "cards\n");
              Click(dialog, "cmdDirectX");
              rig.diagnostics.Finish({});
              Settle();
              EXPECT_EQ(Text(dialog, "lblStatus"), "Unable to find 'DxDiag.exe'");
              rig.log.Heal("CreateCaptureDevice");
              dialog.close();
          },
          [](QDialog& dialog) { Click(dialog, "cmdOkay"); }});
}

TEST_F(DeviceDialogs, TheErrorEndsTheProgramAtOnce) {
    FailToStart();
    const auto end = EndOf([&] { Load({[](QDialog& dialog) { Click(dialog, "Command1"); }}); });
    ASSERT_TRUE(end.has_value());
    EXPECT_TRUE(end->atOnce);
    EXPECT_EQ(rig.log.Count("ShowDevices"), 0U);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(DeviceDialogs, AnErrorOverTheSelectionEndsTheProgramThroughBoth) {
    Load();
    std::optional<EndProgram> end;
    rig.form.Guard.OnEnd = [&](const EndProgram& asked) { end = asked; };
    FailToStart();
    SelectFromMenu({[](QDialog& dialog) { Click(dialog, "cmdOkay"); },
                    [](QDialog& dialog) { Click(dialog, "Command1"); }});
    ASSERT_TRUE(end.has_value());
    EXPECT_TRUE(end->atOnce);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(DeviceDialogs, AnErrorOverTheSelectionLeavesItUsable) {
    Load();
    FailToStart();
    SelectFromMenu({[](QDialog& dialog) { Click(dialog, "cmdOkay"); },
                    [&](QDialog& dialog) {
                        rig.log.Heal("CreateCaptureDevice");
                        dialog.close();
                    },
                    [](QDialog& dialog) { Click(dialog, "cmdOkay"); }});
    EXPECT_TRUE(rig.form.Instrument.Shared.EventsReady);
    EXPECT_THAT(rig.log.Of("ShowError"), ElementsAre("ShowError"));
}

TEST_F(DeviceDialogs, AFatalErrorOffersNoNewSoundCard) {
    rig.sound.playbackDevices.resize(1);
    const auto end = EndOf([&] {
        Load({[&](QDialog& dialog) {
            EXPECT_FALSE(Find<QPushButton>(dialog, "cmdNewSoundCard").isEnabled());
            EXPECT_THAT(Text(dialog, "lblMessage"), testing::EndsWith("\n\nProgram will terminate."));
            dialog.close();
        }});
    });
    ASSERT_TRUE(end.has_value());
    EXPECT_EQ(rig.log.Count("ShowDevices"), 0U);
}

// Notes the dialogs in the order in which they close.
class Closings : public QObject {
public:
    Closings() { qApp->installEventFilter(this); }
    std::vector<std::string> Names;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Hide && qobject_cast<QDialog*>(watched) != nullptr)
            Names.push_back(watched->objectName().toStdString());
        return false;
    }
};

TEST_F(DeviceDialogs, ARequestToEndClosesThemFromTheInnermostOutwards) {
    Load();
    FailToStart();
    std::vector<int> statuses;
    rig.form.OnClosed = [&](int status) { statuses.push_back(status); };
    const Closings closings;
    SelectFromMenu({[](QDialog& dialog) { Click(dialog, "cmdOkay"); },
                    [&](QDialog&) {
                        rig.form.Unload();
                        EXPECT_EQ(rig.log.Count("SaveAndRestoreInitial"), 0U);
                    }});
    EXPECT_THAT(closings.Names, ElementsAre("frmError", "frmDevices"));
    EXPECT_THAT(statuses, ElementsAre(0));
    EXPECT_EQ(rig.log.Count("SaveAndRestoreInitial"), 1U);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(DeviceDialogs, NoneOpensOnceTheEndIsRequested) {
    Load();
    rig.ending.Request({});
    const DialogSteps noSteps({});
    EXPECT_TRUE(EndOf([&] { rig.forms.ShowDevices(); }).has_value());
    EXPECT_TRUE(EndOf([&] { rig.forms.ShowError(); }).has_value());
}

TEST_F(DeviceDialogs, WithoutAListOfDevicesTheProgramEnds) {
    Load();
    std::optional<EndProgram> end;
    rig.form.Guard.OnEnd = [&](const EndProgram& asked) { end = asked; };
    rig.log.Fail("EnumeratePlayback", RuntimeError(sound_error::kUninitialized, "no server"));
    SelectFromMenu({});
    EXPECT_TRUE(end.has_value());
    EXPECT_EQ(rig.log.Count("Message"), 1U);
}

TEST_F(DeviceDialogs, EveryWidgetSaysWhatItIs) {
    Load();
    SelectFromMenu({[](QDialog& dialog) {
        for (const QComboBox* list : dialog.findChildren<QComboBox*>())
            EXPECT_FALSE(list->accessibleName().isEmpty()) << list->objectName().toStdString();
        for (const QPushButton* button : dialog.findChildren<QPushButton*>())
            EXPECT_FALSE(button->text().isEmpty()) << button->objectName().toStdString();
        Click(dialog, "cmdCancel");
    }});
}

}  // namespace
}  // namespace sonavex
