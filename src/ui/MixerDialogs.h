#pragma once

#include <memory>

#include "core/mixer/SoundCardMixers.h"
#include "ui/ModelessDialog.h"

namespace Ui {
class frmSound;
class frmSoundVista;
class frmVistaTone;
}  // namespace Ui

namespace sonavex::ui {

// "Sound Card Controls" of the older generation.
class SoundDialog : public ModelessDialog {
    Q_OBJECT

public:
    SoundDialog(frmSound& form, HandlerGuard& guard, QWidget& parent);
    ~SoundDialog() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BindControls();
    void Align() override;
    void Decorate() override;

    frmSound& form_;
    std::unique_ptr<Ui::frmSound> ui_;
};

// "Sound Controls" of the newer generation.
class SoundVistaDialog : public ModelessDialog {
    Q_OBJECT

public:
    SoundVistaDialog(frmSoundVista& form, HandlerGuard& guard, QWidget& parent);
    ~SoundVistaDialog() override;

private:
    void BindControls();
    void Align() override;
    void Decorate() override;

    frmSoundVista& form_;
    std::unique_ptr<Ui::frmSoundVista> ui_;
};

// "Tone Controls".
class VistaToneDialog : public ModelessDialog {
    Q_OBJECT

public:
    VistaToneDialog(frmVistaTone& form, HandlerGuard& guard, QWidget& parent);
    ~VistaToneDialog() override;

private:
    void BindControls();
    void Align() override;

    frmVistaTone& form_;
    std::unique_ptr<Ui::frmVistaTone> ui_;
};

// The windows of the mixer forms. The mixers must outlive them.
class MixerDialogs {
public:
    MixerDialogs(SoundCardMixers& mixers, HandlerGuard& guard, QWidget& parent)
        : Sound(mixers.Sound, guard, parent),
          SoundVista(mixers.SoundVista, guard, parent),
          Tone(mixers.Tone, guard, parent) {}

    SoundDialog Sound;
    SoundVistaDialog SoundVista;
    VistaToneDialog Tone;
};

}  // namespace sonavex::ui
