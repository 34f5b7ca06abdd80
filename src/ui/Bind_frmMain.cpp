// Binds every control of the main form to its widget.

#include "ui/MainWindow.h"
#include "ui_frmMain.h"

namespace sonavex::ui {

void MainWindow::BindControls() {
    MeasurementControls& meter = form_.Instrument.Meter.Controls;
    SignalControls& signal = form_.GeneratorPanel.Controls;
    MemoryControls& memory = form_.GeneratorPanel.MemoryControls;
    Baseline& baseline = form_.Baseline;

    binder_.Bind(*ui_->lblInput, form_.lblInput);
    binder_.Bind(*ui_->lblOutput, form_.lblOutput);
    binder_.Bind(*ui_->lblSampleRate, form_.lblSampleRate);
    binder_.Bind(*ui_->lblBits, form_.lblBits);
    binder_.Bind(*ui_->pathNote, form_.PathNote);
    binder_.Bind(*ui_->streamText, form_.StreamTrouble);
    binder_.Bind(*ui_->TabStrip1, form_.TabStrip1);
    binder_.Bind(*ui_->mnuExit, form_.mnuExit);
    binder_.Bind(*ui_->mnuPrint, form_.mnuPrint);
    binder_.Bind(*ui_->mnuSoundCard, form_.mnuSoundCard);
    binder_.Bind(*ui_->mnuSelectCard, form_.mnuSelectCard);
    binder_.Bind(*ui_->mnuAbout, form_.Menus.mnuAbout);
    binder_.Bind(*ui_->mnuHelpContents, form_.Menus.mnuHelpContents);
    binder_.Bind(*ui_->mnuCheckVersion, form_.Menus.mnuCheckVersion);
    binder_.Bind(*ui_->mnuemail, form_.Menus.mnuemail);
    binder_.Bind(*ui_->mnuInputControl, form_.Menus.mnuInputControl);
    binder_.Bind(*ui_->mnuPlayControl, form_.Menus.mnuPlayControl);
    binder_.Bind(*ui_->mnuAnalyzer, form_.Menus.mnuAnalyzer);
    binder_.Bind(*ui_->mnuOpenRecording, form_.Menus.mnuOpenRecording);
    binder_.Bind(*ui_->cmdPrint, form_.cmdPrint);

    binder_.Bind(*ui_->lblThd, meter.lblThd);
    binder_.Bind(*ui_->txtFreq, meter.txtFreq);
    binder_.Bind(*ui_->chkAuto, meter.chkAuto);
    binder_.Bind(*ui_->chkMuteOutput, meter.chkMuteOutput);
    binder_.Bind(*ui_->picLocked, meter.picLocked);
    binder_.Bind(*ui_->GenLocked, meter.GenLocked);
    binder_.Bind(*ui_->prgADC, meter.prgADC);
    binder_.Bind(*ui_->prgDAC, meter.prgDAC);
    binder_.Bind(*ui_->LblLevel, meter.LblLevel);
    binder_.Bind(*ui_->lblDACLevel, meter.lblDACLevel);
    binder_.Bind(*ui_->cycleText, meter.Cycle);
    for (std::size_t i = 0; i < meter.lbltest.size(); ++i) {
        const QString number = QString::number(i);
        binder_.Bind(*findChild<QLabel*>("lbltest_" + number), meter.lbltest[i]);
        binder_.Bind(*findChild<QLabel*>("lblDb_" + number), meter.lblDb[i]);
    }
    binder_.Bind(*ui_->chkBaseline, meter.chkBaseline);
    binder_.Bind(*ui_->cmdBaseline, baseline.cmdBaseline);

    binder_.Bind(*ui_->cmbType, signal.cmbType);
    binder_.Bind(*ui_->sldStartFreq, signal.sldStartFreq);
    binder_.Bind(*ui_->sldEndFreq, signal.sldEndFreq);
    binder_.Bind(*ui_->sldSweepTime, signal.sldSweepTime);
    binder_.Bind(*ui_->sldLevel, signal.sldLevel);
    binder_.Bind(*ui_->txtGenFreq, signal.txtGenFreq);
    binder_.Bind(*ui_->txtGenEndFreq, signal.txtGenEndFreq);
    binder_.Bind(*ui_->txtSweepTime, signal.txtSweepTime);
    binder_.Bind(*ui_->chkLoop, signal.chkLoop);
    binder_.Bind(*ui_->lblGenLevel, signal.lblGenLevel);
    binder_.Bind(*ui_->picGenRunning, signal.picGenRunning);
    binder_.Bind(*ui_->Command1, signal.Command1);
    binder_.Bind(*ui_->startCurrentMeter, signal.Command1);

    binder_.Bind(*ui_->ToneList, memory.ToneList);
    binder_.Bind(*ui_->cmdGenAdd, memory.cmdGenAdd);
    binder_.Bind(*ui_->cmdRemove, memory.cmdRemove);
    binder_.Bind(*ui_->cmdStartMemory, memory.cmdStartMemory);
}

}  // namespace sonavex::ui
