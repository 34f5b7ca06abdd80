#include "ui/pictures/AnalyzerPictures.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <functional>
#include <utility>
#include <vector>

#include "support/QtWait.h"
#include "ui/AnalyzerRig.h"
#include "ui/StoredExamples.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// The plots are repainted at most 15 times per second.
constexpr std::chrono::milliseconds kRepaint{150};
constexpr QSize kUsual(1240, 800);
constexpr QSize kSmallest(1000, 640);

struct AnalyzerScene {
    const char* name;
    QSize size;
    std::function<void(AnalyzerRig&)> play;
};

void PlaySine(AnalyzerRig& rig, std::chrono::milliseconds time) {
    rig.form.Stimulus.cmdStart.Press();
    rig.Play(time);
}

void PlayShape(AnalyzerRig& rig, std::int32_t shape) {
    rig.form.Stimulus.cmbShape.UserSelects(shape);
    PlaySine(rig, 5s);
}

void SetModel(AnalyzerRig& rig, const std::function<void(DeviceUnderTestModel&)>& change) {
    DeviceUnderTestModel model = AnalyzerRig::UsualLoop();
    change(model);
    rig.rig.card.Card().SetDeviceUnderTest(model);
}

// Kept at a higher noise.
void KeepNoisyTrace(AnalyzerRig& rig) {
    SetModel(rig, [](DeviceUnderTestModel& model) { model.noiseRms = 1.0; });
    PlaySine(rig, 5s);
    rig.form.cmdKeep.Press();
    SetModel(rig, [](DeviceUnderTestModel&) {});
    rig.form.Stimulus.cmdStart.Press();
    PlaySine(rig, 8s);
    rig.form.Spectrum.UserClicks(0.68, 0.02);
}

// A run of a few points whose distortion rises with the level of the noise. The limit is judged at its end.
void RunSweep(AnalyzerRig& rig, const char* limit, std::chrono::milliseconds time) {
    rig.Find<QTabWidget>("Tabs").setCurrentIndex(1);
    SweepSetup& setup = rig.form.Sweep.Setup;
    for (const auto& [box, text] : {std::pair{&setup.txtFrom, "100"}, std::pair{&setup.txtAmount, "2"},
                                    std::pair{&setup.txtLimit, limit}}) {
        box->UserTypes(text);
        box->UserLeaves();
    }
    setup.chkLimit.UserSets(true);
    rig.form.Sweep.cmdStart.Press();
    for (auto passed = 0ms; passed < time && rig.form.Sweep.Active(); passed += 1000ms) rig.Play(1000ms);
    rig.form.Sweep.UserMovesCursor(1);
}

// The noise of the device hides the tone's steadiness at some points: they become void.
void RunWithLoss(AnalyzerRig& rig) {
    RunSweep(rig, "-90", 15s);
    SetModel(rig, [](DeviceUnderTestModel& model) { model.gain = 0; });
    rig.Play(40s);
    SetModel(rig, [](DeviceUnderTestModel&) {});
    for (auto passed = 0ms; passed < 200s && rig.form.Sweep.Active(); passed += 1000ms) rig.Play(1000ms);
    rig.form.Sweep.UserMovesCursor(1);
}

// A kept run with more distortion, a renamed one that is not shown, and the present run.
void KeepRuns(AnalyzerRig& rig) {
    SetModel(rig, [](DeviceUnderTestModel& model) {
        model.noiseRms = 1.0;
        model.gain = 0.9;
    });
    RunSweep(rig, "-95", 200s);
    KeptRuns& kept = rig.form.Sweep.Kept;
    for (int i = 0; i < 2; ++i) rig.form.Sweep.cmdKeep.Press();
    kept.Rows[1].txtName.UserTypes("before the new capacitors of the output");
    kept.Rows[1].txtName.UserLeaves();
    kept.Rows[1].chkShown.UserSets(false);
    SetModel(rig, [](DeviceUnderTestModel&) {});
    RunSweep(rig, "-95", 200s);
}

// The tab with the newest reading and an older one selected.
void ShowHistory(AnalyzerRig& rig) {
    rig.Play(1s);
    StoreExamples(rig);
    rig.Find<QTabWidget>("Tabs").setCurrentIndex(2);
    rig.Play(100ms);
    HistoryList& list = rig.form.History.List;
    list.UserSelects({list.Rows()[1].id});
    Settle();
}

void CompareInHistory(AnalyzerRig& rig) {
    ShowHistory(rig);
    HistoryList& list = rig.form.History.List;
    list.UserSelects({list.Rows()[1].id, list.Rows()[4].id});
    Settle();
}

void ShowTwoTraces(AnalyzerRig& rig) {
    CompareInHistory(rig);
    rig.form.History.cmdCompare.Press();
    PlaySine(rig, 8s);
    rig.form.Spectrum.UserClicks(0.68, 0.02);
}

const AnalyzerScene kAnalyzerScenes[] = {
    {"history", kUsual, ShowHistory},
    {"history-empty", kUsual,
     [](AnalyzerRig& rig) {
         rig.Find<QTabWidget>("Tabs").setCurrentIndex(2);
         rig.Play(100ms);
     }},
    {"history-compared", kUsual, CompareInHistory},
    {"history-compared-small", kSmallest, CompareInHistory},
    {"history-traces", kUsual, ShowTwoTraces},
    {"history-traces-small", kSmallest, ShowTwoTraces},
    {"sweep-kept", kUsual, KeepRuns},
    {"sweep-running", kUsual, [](AnalyzerRig& rig) { RunSweep(rig, "-90", 20s); }},
    {"sweep-preview", kUsual,
     [](AnalyzerRig& rig) {
         SetModel(rig, [](DeviceUnderTestModel& model) {
             model.gain = 0.9;
             model.polynomial = {0, 1, 2e-4, 1e-4};
         });
         rig.form.Sweep.Setup.chkPreview.UserSets(true);
         RunSweep(rig, "-70", 24s);
     }},
    {"sweep-passed", kUsual, [](AnalyzerRig& rig) { RunSweep(rig, "-90", 200s); }},
    {"sweep-failed", kUsual, [](AnalyzerRig& rig) { RunSweep(rig, "-103", 200s); }},
    {"sweep-failed-small", kSmallest, [](AnalyzerRig& rig) { RunSweep(rig, "-103", 200s); }},
    {"sweep-not-complete", kUsual, RunWithLoss},
    {"idle", kUsual, [](AnalyzerRig& rig) { rig.Play(5s); }},
    {"valid", kUsual, KeepNoisyTrace},
    {"valid-small", kSmallest, KeepNoisyTrace},
    {"silence", kUsual,
     [](AnalyzerRig& rig) {
         SetModel(rig, [](DeviceUnderTestModel& model) { model.noiseRms = 0; });
         rig.form.Stimulus.cmbShape.UserSelects(6);
         rig.Play(8s);
     }},
    {"settling", kUsual, [](AnalyzerRig& rig) { PlaySine(rig, 2500ms); }},
    {"settling-small", kSmallest, [](AnalyzerRig& rig) { PlaySine(rig, 2500ms); }},
    {"void", kUsual,
     [](AnalyzerRig& rig) {
         PlaySine(rig, 5s);
         rig.rig.card.Unplug();
         rig.Play(1s);
     }},
    {"overload", kUsual,
     [](AnalyzerRig& rig) {
         PlaySine(rig, 5s);
         SetModel(rig, [](DeviceUnderTestModel& model) { model.gain = 1.3; });
         rig.Play(5s);
     }},
    {"unsteady", kUsual, [](AnalyzerRig& rig) { rig.OpenRecording(AnalyzerRig::UnsteadySine); }},
    {"calibrated", kUsual,
     [](AnalyzerRig& rig) {
         rig.Calibrate();
         PlaySine(rig, 5s);
         rig.form.Readings.Rows[ReadingsPanel::kLevel].unit.UserSelects(3);
         rig.form.Readings.Rows[ReadingsPanel::kNoise].unit.UserSelects(3);
     }},
    {"bound", kUsual,
     [](AnalyzerRig& rig) {
         SetModel(rig, [](DeviceUnderTestModel& model) { model.harmonicAmplitudes.clear(); });
         PlaySine(rig, 5s);
     }},
    {"percent", kUsual,
     [](AnalyzerRig& rig) {
         PlaySine(rig, 5s);
         rig.form.Readings.ToggleUnit();
         rig.form.Readings.Rows[ReadingsPanel::kThdn].unit.UserSelects(1);
         rig.form.Readings.Rows[ReadingsPanel::kNotch].unit.UserSelects(1);
         rig.form.cmbPlotUnit.UserSelects(1);
     }},
    {"held", kUsual,
     [](AnalyzerRig& rig) {
         PlaySine(rig, 5s);
         rig.form.cmdHold.Press();
     }},
    {"recording", kUsual, [](AnalyzerRig& rig) { rig.OpenRecording(AnalyzerRig::ClippingSine); }},
    {"recording-mono", kUsual, [](AnalyzerRig& rig) { rig.OpenRecording(AnalyzerRig::ClippingSine, 1); }},
    {"recording-small", kSmallest, [](AnalyzerRig& rig) { rig.OpenRecording(AnalyzerRig::ClippingSine); }},
    {"record", kUsual,
     [](AnalyzerRig& rig) {
         rig.OpenRecording(AnalyzerRig::ClippingSine);
         rig.form.Recording.chkAveraged.UserSets(false);
         rig.Play(1s);
     }},
    {"two-tones", kUsual, [](AnalyzerRig& rig) { PlayShape(rig, 1); }},
    {"multitone", kUsual, [](AnalyzerRig& rig) { PlayShape(rig, 2); }},
    {"multitone-fault", kUsual,
     [](AnalyzerRig& rig) {
         rig.form.Stimulus.txtTones.UserTypes("1k@-6, 3000@loud");
         rig.form.Stimulus.txtTones.UserLeaves();
         PlayShape(rig, 2);
     }},
    {"square", kUsual, [](AnalyzerRig& rig) { PlayShape(rig, 3); }},
    {"noise", kUsual,
     [](AnalyzerRig& rig) {
         rig.form.Stimulus.txtLevel.UserTypes("-10");
         rig.form.Stimulus.txtLevel.UserLeaves();
         PlayShape(rig, 6);
     }},
    {"trouble", kUsual, [](AnalyzerRig& rig) { PlayShape(rig, 6); }},
};

bool SaveAnalyzer(QWidget& window, const QString& name, bool dark, const QString& folder) {
    return window.grab().save(QStringLiteral("%1/analyzer-%2-%3-%4.png")
                                  .arg(folder, name, dark ? "dark" : "light")
                                  .arg(qRound(window.devicePixelRatio() * 100)));
}

bool SaveScene(const AnalyzerScene& scene, bool dark, const QString& folder) {
    AnalyzerRig rig;
    rig.OpenOnCard(scene.size);
    scene.play(rig);
    WaitInQt(kRepaint);
    return SaveAnalyzer(rig.window, scene.name, dark, folder);
}

// The open list of lengths.
bool SaveLengths(bool dark, const QString& folder) {
    AnalyzerRig rig;
    rig.OpenOnCard(kUsual);
    auto& lengths = rig.Find<QComboBox>("cmbLength");
    lengths.showPopup();
    Settle();
    return SaveAnalyzer(*lengths.view()->window(), "lengths", dark, folder);
}

bool SaveKeepMenu(bool dark, const QString& folder) {
    AnalyzerRig rig;
    rig.OpenOnCard(kUsual);
    QMenu& menu = *rig.Find<QPushButton>("keepMenu").menu();
    menu.popup({});
    Settle();
    return SaveAnalyzer(menu, "keep-menu", dark, folder);
}

// The dialog in which the tones of a multitone are edited.
bool SaveTones(bool dark, const QString& folder) {
    AnalyzerRig rig;
    rig.OpenOnCard(kUsual);
    rig.form.Stimulus.cmbShape.UserSelects(2);
    bool saved = false;
    QTimer::singleShot(kRepaint, [&] {
        auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) return;
        saved = SaveAnalyzer(*dialog, "tones", dark, folder);
        dialog->reject();
    });
    rig.form.Stimulus.cmdEditTones.Press();
    return saved;
}

}  // namespace

bool AnalyzerPictures(bool dark, const QString& folder, const QString& scenes) {
    for (const AnalyzerScene& scene : kAnalyzerScenes)
        if (QString(scene.name).startsWith(scenes) && !SaveScene(scene, dark, folder)) return false;
    return SaveLengths(dark, folder) && SaveKeepMenu(dark, folder) && SaveTones(dark, folder);
}

}  // namespace sonavex
