#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/precise/RecordAnalysis.h"
#include "core/precise/StimulusPlayer.h"
#include "core/precise/calibration/Calibration.h"
#include "core/settings/Settings.h"

namespace sonavex {

// What the Analyzer plays. The values are stored with every change.
class StimulusPanel {
public:
    enum Shape { kSine, kTwoTones, kMultitone, kSquare, kTriangle, kSawtooth, kNoise };

    struct Events {
        std::function<void()> start;
        std::function<void()> stop;
        // The choice has changed; while it plays, it should be played from now on.
        std::function<void()> changed;
    };

    // The settings must outlive the panel.
    StimulusPanel(Settings& settings, Events events);
    StimulusPanel(const StimulusPanel&) = delete;
    StimulusPanel& operator=(const StimulusPanel&) = delete;

    // Selects the stored values. A stored value that cannot be used counts as the default.
    void Load();
    // Conditions on which the frequencies and the dither depend.
    void SetConditions(double rateHz, std::size_t recordLength, int outputBits);

    // The calibration of the output. Without one levels are in dBFS.
    void SetCalibration(const std::optional<Calibration>& calibration);

    // StimulusError if the texts do not make a stimulus.
    StimulusChoice Chosen() const;
    PreciseMode Mode() const;
    // The tones under the present conditions; empty for noise and if the texts do not make a stimulus.
    std::vector<double> TonesHz() const;
    // "sine:1000 at -1.00 dBFS, left, dither TPDF, 24 bit"
    std::string Description() const;
    // The side whose calibration counts: 0 left, 1 right.
    std::size_t Channel() const noexcept { return cmbSide.ListIndex() == 1 ? 1 : 0; }

    // Lets the user edit the tones of a multitone, one in each line: "1000, -6", in Hz and dB. Empty if the
    // user cancels.
    std::function<std::optional<std::string>(const std::string& lines)> AskForTones;

    // Shows what plays, and why nothing does. Without a sentence the label names what is wrong with the
    // texts.
    void ShowPlaying(StimulusPlayer::State state);
    void ShowTrouble(const std::string& sentence);

    // Which controls belong to the chosen shape.
    bool HasFrequency() const { return cmbShape.ListIndex() != kNoise && cmbShape.ListIndex() != kMultitone; }
    bool HasPair() const { return cmbShape.ListIndex() == kTwoTones; }
    bool HasOwnPair() const;
    bool HasTones() const { return cmbShape.ListIndex() == kMultitone; }
    bool HasNoise() const { return cmbShape.ListIndex() == kNoise; }

    ComboBox cmbShape;
    ComboBox cmbPair;  // the standard pairs, and an own one
    TextBox txtFrequency;
    TextBox txtFrequency2;
    TextBox txtRatio;
    TextBox txtTones;  // "1000@-6,3000@-6" or "3/oct"
    CommandButton cmdEditTones;
    Label lblPlayed;  // "on bin 1365: 999.756 Hz"
    CheckBox chkSnap;
    ComboBox cmbNoise;
    TextBox txtLevel;
    ComboBox cmbLevelUnit;  // dBFS; dBV, dBu and V only with a calibration
    Label lblLevelNote;
    CommandButton cmdCalibrate;
    ComboBox cmbDither;
    ComboBox cmbSide;
    CommandButton cmdStart;
    Label lblPlaying;
    Indicator shpPlaying;
    Label lblTrouble;  // why nothing plays, or could be played

private:
    std::string Notation() const;
    void TakeChange();
    void TakeShape();
    void TakeTexts();
    void EditTones();
    std::string EditedTones() const;
    void ShowPlayed();
    void OfferLevelUnits();
    void ShowLevel();
    std::optional<double> TypedDbfs() const;
    void Store();

    Settings& settings_;
    Events events_;
    double rateHz_ = 48000;
    std::size_t recordLength_ = 65536;
    int outputBits_ = 0;
    double levelDbfs_ = -1;
    std::string shownLevel_;  // as txtLevel shows it
    double hertz_ = 1000;
    double hertz2_ = 7000;
    double ratio_ = 4;
    std::string tones_;  // of a multitone, as ToneNotation; as typed if they cannot be read
    std::optional<Calibration> calibration_;
    int levelUnit_ = 0;  // wanted, also while it is not offered
    bool playing_ = false;
    std::string trouble_;  // why the player does not play
    std::string fault_;    // why the texts do not make a stimulus
};

}  // namespace sonavex
