#include "ui/MixerDialogs.h"

#include <QKeyEvent>
#include <QSlider>
#include <algorithm>

#include "ui_frmSound.h"
#include "ui_frmSoundVista.h"
#include "ui_frmVistaTone.h"

namespace sonavex::ui {
namespace {

constexpr int kPagePercent = 10;

// Shows a level's steps and its percentage. A page is at least one step, so that page keys and the wheel
// also reach another level of the card.
void ShowLevel(QWidget& dialog, const char* name, const Slider& level, int percent) {
    auto* const slider = dialog.findChild<QSlider*>(name);
    slider->setSingleStep(level.Step());
    slider->setPageStep(std::max(kPagePercent, level.Step()));
    ShowPercent(dialog, name, percent, level.Enabled());
}

}  // namespace

SoundDialog::SoundDialog(frmSound& form, HandlerGuard& guard, QWidget& parent)
    : ModelessDialog(form, guard, &parent), form_(form), ui_(std::make_unique<Ui::frmSound>()) {
    ui_->setupUi(this);
    BindControls();
    for (QSlider* slider : findChildren<QSlider*>()) slider->installEventFilter(this);
    Complete();
}

SoundDialog::~SoundDialog() = default;

// The sliders hold negated levels: Home, which stands for level 0, is their maximum.
bool SoundDialog::eventFilter(QObject* watched, QEvent* event) {
    auto* const slider = qobject_cast<QSlider*>(watched);
    if (slider == nullptr || event->type() != QEvent::KeyPress)
        return ModelessDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Home && key != Qt::Key_End) return false;
    slider->triggerAction(key == Qt::Key_Home ? QSlider::SliderToMaximum : QSlider::SliderToMinimum);
    return true;
}

void SoundDialog::Align() {
    AlignColumn(
        {ui_->MasterMute, ui_->WaveMute, ui_->LinePlayMute, ui_->micPlayMute, ui_->chkmic, ui_->chkline});
    AlignColumn({ui_->lblPlayMic, ui_->lblMicrophone, ui_->lblLineRec, ui_->lblMaster});
}

void SoundDialog::Decorate() {
    const std::pair<const char*, const Slider*> sliders[] = {
        {"MasterOut", &form_.MasterOut}, {"WaveOut", &form_.WaveOut}, {"LineOut", &form_.LineOut},
        {"playMic", &form_.playMic},     {"MicIn", &form_.MicIn},     {"LineIn", &form_.LineIn}};
    for (const auto& [name, slider] : sliders) ShowLevel(*this, name, *slider, -slider->Value());
}

SoundVistaDialog::SoundVistaDialog(frmSoundVista& form, HandlerGuard& guard, QWidget& parent)
    : ModelessDialog(form, guard, &parent), form_(form), ui_(std::make_unique<Ui::frmSoundVista>()) {
    ui_->setupUi(this);
    BindControls();
    Complete();
}

SoundVistaDialog::~SoundVistaDialog() = default;

void SoundVistaDialog::Align() {
    AlignColumn({ui_->chkSpeakerMute, ui_->chkMasterMute, ui_->chkLinePlay, ui_->chkMicPlay, ui_->chkBoost,
                 ui_->chkNoMon});
    AlignColumn({ui_->lblMicPlay, ui_->lblMicRecord, ui_->lblSpeaker, ui_->lblLineRecord});
}

void SoundVistaDialog::Decorate() {
    const std::pair<const char*, const Slider*> sliders[] = {
        {"sldSpeakers", &form_.sldSpeakers}, {"sldMaster", &form_.sldMaster},
        {"sldLinePlay", &form_.sldLinePlay}, {"sldMicPlay", &form_.sldMicPlay},
        {"sldMic", &form_.sldMic},           {"sldLine", &form_.sldLine}};
    for (const auto& [name, slider] : sliders) ShowLevel(*this, name, *slider, slider->Value());
    ui_->capMaster->setEnabled(form_.sldMaster.Enabled());
}

VistaToneDialog::VistaToneDialog(frmVistaTone& form, HandlerGuard& guard, QWidget& parent)
    : ModelessDialog(form, guard, &parent), form_(form), ui_(std::make_unique<Ui::frmVistaTone>()) {
    ui_->setupUi(this);
    KeepsPlace = false;
    BindControls();
    Complete();
}

void VistaToneDialog::Align() {
    for (QLabel* value : {ui_->lblBassValue, ui_->lblMidValue, ui_->lblTrebleValue})
        value->setMinimumWidth(value->fontMetrics().horizontalAdvance("-100 dB"));
}

VistaToneDialog::~VistaToneDialog() = default;

}  // namespace sonavex::ui
