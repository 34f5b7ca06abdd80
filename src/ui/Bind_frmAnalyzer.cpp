// Binds every control of the Analyzer to its widget.

#include "ui/AnalyzerWindow.h"
#include "ui/widgets/ChevronButton.h"
#include "ui/widgets/ReadingRowView.h"
#include "ui/widgets/UnitChoice.h"
#include "ui_frmAnalyzer.h"

namespace sonavex::ui {

void AnalyzerWindow::BindControls() {
    Binder& binder = Bindings();
    binder.Bind(*ui_->lblInput, form_.lblInput);
    binder.Bind(*ui_->lblOutput, form_.lblOutput);
    binder.Bind(*ui_->lblRate, form_.lblRate);
    binder.Bind(*ui_->lblBits, form_.lblBits);
    binder.Bind(*ui_->note, form_.note);
    binder.Bind(*ui_->Chip, form_.Chip);
    binder.Bind(*ui_->cmdHold, form_.cmdHold);
    binder.Bind(*ui_->cmdSingle, form_.cmdSingle);
    binder.Bind(*ui_->cmdKeep, form_.cmdKeep);
    binder.Bind(*keepReference_, form_.mnuKeepReference);
    binder.Bind(*keepIdle_, form_.mnuKeepIdle);
    binder.Bind(*storeReading_, form_.mnuStoreReading);
    binder.Bind(*ui_->cmdExport, form_.cmdExport);
    binder.Bind(*ui_->cmdCopy, form_.cmdCopy);
    binder.Bind(*ui_->prgAverages, form_.prgAverages);
    binder.Bind(*ui_->lblAverages, form_.lblAverages);
    binder.Bind(*ui_->lblRecording, form_.lblRecording);
    binder.Bind(*ui_->cmdOpen, form_.Recording.cmdOpen);
    binder.Bind(*ui_->cmdLive, form_.Recording.cmdLive);
    binder.Bind(*ui_->chkAveraged, form_.Recording.chkAveraged);
    binder.Bind(*ui_->sldBlock, form_.Recording.sldBlock);
    binder.Bind(*ui_->lblBlock, form_.Recording.lblBlock);
    BindPlots();
    BindStimulus();
    BindAnalysis();
    BindReadings();
}

void AnalyzerWindow::BindPlots() {
    Binder& binder = Bindings();
    binder.Bind(*ui_->Spectrum, form_.Spectrum);
    binder.Bind(*ui_->Waves, form_.Waves);
    binder.Bind(*ui_->lblLegendLive, form_.lblLegendLive);
    binder.Bind(*ui_->lblLegendSide, form_.lblLegendSide);
    binder.Bind(*ui_->lblLegendKept, form_.lblLegendKept);
    binder.Bind(*ui_->lblLegendKeptSecond, form_.lblLegendKeptSecond);
    binder.Bind(*ui_->cmdFit, form_.cmdFit);
    binder.Bind(*ui_->cmdRemoveKept, form_.cmdRemoveKept);
    binder.Bind(*ui_->cmbPlotUnit, form_.cmbPlotUnit);
    binder.Bind(*ui_->cmbPeriods, form_.cmbPeriods);
}

void AnalyzerWindow::BindStimulus() {
    Binder& binder = Bindings();
    StimulusPanel& stimulus = form_.Stimulus;
    binder.Bind(*ui_->cmbShape, stimulus.cmbShape);
    binder.Bind(*ui_->cmbPair, stimulus.cmbPair);
    binder.Bind(*ui_->txtFrequency, stimulus.txtFrequency);
    binder.Bind(*ui_->txtFrequency2, stimulus.txtFrequency2);
    binder.Bind(*ui_->txtRatio, stimulus.txtRatio);
    binder.Bind(*ui_->txtTones, stimulus.txtTones);
    binder.Bind(*ui_->cmdEditTones, stimulus.cmdEditTones);
    binder.Bind(*ui_->lblPlayed, stimulus.lblPlayed);
    binder.Bind(*ui_->chkSnap, stimulus.chkSnap);
    binder.Bind(*ui_->cmbNoise, stimulus.cmbNoise);
    binder.Bind(*ui_->txtLevel, stimulus.txtLevel);
    binder.Bind(*ui_->cmbLevelUnit, stimulus.cmbLevelUnit);
    binder.Bind(*ui_->lblLevelNote, stimulus.lblLevelNote);
    binder.Bind(*ui_->cmdCalibrate, stimulus.cmdCalibrate);
    binder.Bind(*ui_->cmbDither, stimulus.cmbDither);
    binder.Bind(*ui_->cmbSide, stimulus.cmbSide);
    binder.Bind(*ui_->cmdStart, stimulus.cmdStart);
    binder.Bind(*ui_->lblPlaying, stimulus.lblPlaying);
    binder.Bind(*ui_->shpPlaying, stimulus.shpPlaying);
    binder.Bind(*ui_->lblTrouble, stimulus.lblTrouble);
}

void AnalyzerWindow::BindAnalysis() {
    Binder& binder = Bindings();
    AnalysisPanel& analysis = form_.Analysis;
    binder.Bind(*ui_->cmbLength, analysis.cmbLength, analysis.Lengths);
    binder.Bind(*ui_->lblLength, analysis.lblLength);
    binder.Bind(*ui_->txtAverages, analysis.txtAverages);
    binder.Bind(*ui_->cmbBand, analysis.cmbBand);
    binder.Bind(*ui_->cmbWeighting, analysis.cmbWeighting);
    binder.Bind(*ui_->cmbChannel, analysis.cmbChannel);
    binder.Bind(*ui_->txtHarmonics, analysis.txtHarmonics);
    binder.Bind(*ui_->lblHarmonics, analysis.lblHarmonics);
}

void AnalyzerWindow::BindReadings() {
    Binder& binder = Bindings();
    ReadingsPanel& readings = form_.Readings;
    binder.Bind(*ui_->lblThdTitle, readings.lblThdTitle);
    binder.Bind(*ui_->lblThd, readings.lblThd);
    binder.Bind(*ui_->lblThdSpread, readings.lblThdSpread);
    binder.Bind(*ui_->lblThdOther, readings.lblThdOther);
    binder.Bind(*ui_->lblThdReference, readings.lblThdReference);
    binder.Bind(*ui_->cmbThdUnit, readings.cmbThdUnit);
    binder.Bind(*ui_->lblNoiseBand, readings.lblNoiseBand);
    binder.Bind(*ui_->Harmonics, readings.Harmonics);
    binder.Bind(*chooseThdn_, readings.mnuThdn);
    binder.Bind(*chooseNotch_, readings.mnuNotch);
    binder.Bind(*firstName_, readings.Rows[ReadingsPanel::kThdn].name);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (i != ReadingsPanel::kThdn) binder.Bind(rows_[i]->Name(), readings.Rows[i].name);
        binder.Bind(rows_[i]->Value(), readings.Rows[i].value);
        binder.Bind(rows_[i]->Unit(), readings.Rows[i].unit);
        binder.Bind(rows_[i]->Spread(), readings.Rows[i].spread);
    }
}

}  // namespace sonavex::ui
