// Saves pictures of the window in its states: sonavex-screenshots FOLDER. One scale per run, set by
// QT_SCALE_FACTOR.

#include <QApplication>
#include <QPalette>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>

#include "support/FormRig.h"
#include "support/QtWait.h"
#include "ui/MainWindow.h"
#include "ui/MixerRig.h"
#include "ui/ProgramStyle.h"
#include "ui/pictures/AnalyzerPictures.h"
#include "ui/pictures/DialogPictures.h"
#include "ui/widgets/Theme.h"

namespace {

using namespace sonavex;

struct Scene {
    const char* name;
    std::function<void(FormRig&)> play;
};

void StartSine(FormRig& rig) {
    rig.form.GeneratorPanel.Controls.Command1.Press();
    rig.Step(60);
}

void AddMemoryTones(FormRig& rig) {
    SignalControls& signal = rig.form.GeneratorPanel.Controls;
    for (int i = 1; i <= 8; ++i) {
        signal.sldStartFreq.UserMoves(i == 3 ? 15555 : 250 * i);
        signal.sldStartFreq.UserReleases();
        signal.cmbType.UserSelects(i % 4);
        // Sweeps; the third has the longest possible line.
        signal.sldEndFreq.UserMoves(16000 - 3 * i);
        signal.sldSweepTime.UserMoves(i % 3 == 0 ? 10000 : 0);
        signal.sldSweepTime.UserReleases();
        rig.form.GeneratorPanel.MemoryControls.cmdGenAdd.Press();
    }
    for (int i = 0; i < 8; ++i) rig.form.GeneratorPanel.MemoryControls.ToneList.UserSelects(i, true);
}

void SetDistortion(FormRig& rig) {
    DeviceUnderTestModel model;
    model.harmonicAmplitudes = {0.0004, 0.0002, 0.00008, 0.00005, 0.00003, 0.00002, 0.00002, 0.00001};
    rig.card.Card().SetDeviceUnderTest(model);
}

const Scene kScenes[] = {
    {"meter-start", [](FormRig&) {}},
    {"meter-locked",
     [](FormRig& rig) {
         SetDistortion(rig);
         StartSine(rig);
     }},
    {"meter-settling",
     [](FormRig& rig) {
         SetDistortion(rig);
         rig.form.GeneratorPanel.Controls.Command1.Press();
         rig.Step(20);
     }},
    {"meter-unlocked",
     [](FormRig& rig) {
         StartSine(rig);
         rig.form.Instrument.Meter.Controls.chkAuto.UserSets(false);
         rig.form.Instrument.Meter.Controls.txtFreq.UserTypes("440");
         rig.Step(19);
     }},
    {"meter-overloaded",
     [](FormRig& rig) {
         DeviceUnderTestModel model;
         model.gain = 6.0;
         rig.card.Card().SetDeviceUnderTest(model);
         rig.form.Instrument.Meter.Controls.chkMuteOutput.UserSets(false);
         StartSine(rig);
     }},
    {"meter-path",
     [](FormRig& rig) {
         StartSine(rig);
         rig.form.PathNote.SetCaption("Input: resampled by the sound server, the device runs at 44100 Hz");
     }},
    {"meter-bits",
     [](FormRig& rig) {
         StartSine(rig);
         rig.form.lblBits.SetCaption("24 bit");
     }},
    {"meter-bits-differ",
     [](FormRig& rig) {
         StartSine(rig);
         rig.form.lblBits.SetCaption("in 24 · out 16 bit");
     }},
    {"meter-bits-longest",
     [](FormRig& rig) {
         StartSine(rig);
         rig.form.lblBits.SetCaption("in 24, 16 used · out 16 bit");
         rig.form.PathNote.SetCaption("Output: 16 bit");
     }},
    {"meter-stopped",
     [](FormRig& rig) {
         SetDistortion(rig);
         StartSine(rig);
         rig.card.Unplug();
         rig.loop.DeliverSignals();
     }},
    {"meter-baseline",
     [](FormRig& rig) {
         SetDistortion(rig);
         StartSine(rig);
         rig.form.Baseline.cmdBaseline.Press();
         rig.form.Instrument.Meter.Controls.chkBaseline.UserSets(true);
         rig.form.GeneratorPanel.Controls.sldStartFreq.UserMoves(1500);
         rig.Step(38);
     }},
    {"generator-idle", [](FormRig& rig) { rig.form.TabStrip1.SetIndex(1); }},
    {"generator-playing",
     [](FormRig& rig) {
         rig.form.TabStrip1.SetIndex(1);
         StartSine(rig);
     }},
    {"generator-sweeping",
     [](FormRig& rig) {
         rig.form.TabStrip1.SetIndex(1);
         rig.form.GeneratorPanel.Controls.sldEndFreq.UserMoves(8000);
         rig.form.GeneratorPanel.Controls.sldSweepTime.UserMoves(2000);
         rig.form.GeneratorPanel.Controls.sldSweepTime.UserReleases();
         rig.form.GeneratorPanel.Controls.chkLoop.UserSets(true);
         rig.form.GeneratorPanel.Controls.Command1.Press();
         for (int i = 0; i < 50; ++i) {
             rig.Step(1);
             rig.loop.Advance(std::chrono::milliseconds(64));
         }
     }},
    {"generator-memory",
     [](FormRig& rig) {
         rig.form.TabStrip1.SetIndex(1);
         AddMemoryTones(rig);
         rig.form.GeneratorPanel.MemoryControls.cmdStartMemory.Press();
         rig.Step(30);
     }},
};

QPalette PaletteOf(bool dark) {
    const ui::Theme theme = dark ? ui::Theme::Dark() : ui::Theme::Light();
    QPalette palette(theme.field, theme.window);
    palette.setColor(QPalette::WindowText, theme.text);
    palette.setColor(QPalette::Text, theme.text);
    palette.setColor(QPalette::ButtonText, theme.text);
    palette.setColor(QPalette::Base, theme.card);
    palette.setColor(QPalette::Highlight, theme.accent);
    return palette;
}

// The mixer dialogs with all controls, and with those of a simple USB card.
struct MixerScene {
    const char* name;
    std::int32_t osMajorVersion;
    bool complete;
    QWidget& (*show)(MixerRig&);
};

QWidget& ShowSound(MixerRig& rig) {
    rig.mixers.ShowSoundCard();
    return rig.windows.Sound;
}

QWidget& ShowSoundVista(MixerRig& rig) {
    rig.mixers.ShowSoundCard();
    return rig.windows.SoundVista;
}

QWidget& ShowTone(MixerRig& rig) {
    rig.mixers.SoundVista.ShowTone();
    return rig.windows.Tone;
}

const MixerScene kMixerScenes[] = {
    {"sound", 5, true, ShowSound},
    {"sound-sparse", 5, false, ShowSound},
    {"sound-vista", 10, true, ShowSoundVista},
    {"sound-vista-sparse", 10, false, ShowSoundVista},
    {"tone", 10, true, ShowTone},
    {"tone-sparse", 10, false, ShowTone},
};

const std::vector<MixerFunction> kNotOfAPlainCard{
    MixerFunction::kWaveVolume, MixerFunction::kWaveMute,  MixerFunction::kLineVolume,
    MixerFunction::kLineMute,   MixerFunction::kMicVolume, MixerFunction::kMicMute,
    MixerFunction::kMidRange,   MixerFunction::kMicBoost,  MixerFunction::kMonitorOff,
    MixerFunction::kMicRecord,  MixerFunction::kMicSource, MixerFunction::kLineSource};

bool Picture(const MixerScene& scene, bool dark, const QString& folder) {
    MixerRig rig(scene.osMajorVersion, scene.complete ? std::vector<MixerFunction>{} : kNotOfAPlainCard);
    rig.hardware.SetValues(MixerFunction::kMasterVolume, {52428, 52428});
    rig.hardware.SetValues(MixerFunction::kLineRecord, {45874, 45874});
    rig.hardware.SetValues(MixerFunction::kBass, {-6});
    rig.hardware.SetValues(MixerFunction::kTreble, {3});
    rig.hardware.SetValues(MixerFunction::kMicBoost, {1});
    QWidget& dialog = scene.show(rig);
    rig.Settle();
    const QString name = QStringLiteral("%1/%2-%3-%4.png")
                             .arg(folder, scene.name, dark ? "dark" : "light")
                             .arg(qRound(dialog.devicePixelRatio() * 100));
    return dialog.grab().save(name);
}

bool Picture(const Scene& scene, bool dark, const QString& folder) {
    FormRig rig;
    ui::MainWindow window(rig.form, QString::fromUtf8(SimulatedSoundSystem::kDescription));
    rig.form.Form_Load();
    window.ShowPlaced();
    scene.play(rig);
    // A flush may request a new layout.
    Settle();
    const QString name = QStringLiteral("%1/%2-%3-%4.png")
                             .arg(folder, scene.name, dark ? "dark" : "light")
                             .arg(qRound(window.devicePixelRatio() * 100));
    return window.grab().save(name);
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setStyle(new ui::ProgramStyle);
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr,
                     "usage: sonavex-screenshots FOLDER [SCENES]\n"
                     "SCENES: only those of the Analyzer whose names begin so\n");
        return 2;
    }
    const QString scenes = argc == 3 ? QString::fromLocal8Bit(argv[2]) : QString();
    for (const bool dark : {false, true}) {
        QApplication::setPalette(PaletteOf(dark));
        if (!AnalyzerPictures(dark, QString::fromLocal8Bit(argv[1]), scenes)) return 1;
        if (argc == 3) continue;
        for (const Scene& scene : kScenes)
            if (!Picture(scene, dark, QString::fromLocal8Bit(argv[1]))) return 1;
        for (const MixerScene& scene : kMixerScenes)
            if (!Picture(scene, dark, QString::fromLocal8Bit(argv[1]))) return 1;
        if (!DialogPictures(dark, QString::fromLocal8Bit(argv[1]))) return 1;
    }
    return 0;
}
