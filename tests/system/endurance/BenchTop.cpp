#include "system/endurance/BenchTop.h"

#include "core/audio/frmDevices.h"
#include "core/support/EndProgram.h"

namespace sonavex {
namespace {

// Tries in the selection of devices before the program is ended.
constexpr int kPatience = 12;

}  // namespace

std::chrono::nanoseconds BenchTop::BlockTime() const {
    const std::int32_t rateHz = form_ ? form_->Instrument.Shared.SampleRate : 48000;
    return std::chrono::nanoseconds(std::int64_t{kBlockFrames} * 1'000'000'000 / rateHz);
}

std::uint64_t BenchTop::Messages() const {
    std::uint64_t count = 0;
    for (const char* operation : {"Message", "AskOkCancel", "AskYesNo", "WriteErrorLog"})
        count += log.Count(operation);
    return count;
}

bool BenchTop::Start() {
    TakeAway();
    ended_ = false;
    ++starts_;
    MakeForm();
    try {
        form_->Form_Load();
    } catch (const EndProgram& end) {
        form_->ShutDown(end);
        TakeAway();
        return false;
    } catch (const RuntimeError&) {
        form_->Guard.Fatal(std::current_exception());
        form_->Form_QueryUnload();
        TakeAway();
        return false;
    }
    LeaveWhenEnded();
    return Running();
}

void BenchTop::MakeForm() {
    ending = {};
    form_ = std::make_unique<frmMain>(On(card_));
    form_->Frame.SetSize(980, 640);
    form_->OnClosed = [this](int) { ended_ = true; };
    form_->ShowDeviceDialog = [this] { ChooseDevices(); };
    UseFinePath(useFine_);
    if (!useAnalyzer_) return;
    analyzer_.emplace(AnalyzerNeeds(*form_, loop, background_, dialogs, Recordings, history_.history));
    form_->BeforeShutdown = [this] { analyzer_->UnloadForNextStart(); };
}

void BenchTop::UseFinePath(bool on) {
    useFine_ = on;
    fineBefore_ = FineFramesSeen();
    fine_.reset();
    if (on && form_) fine_.emplace(form_->Instrument.Fine, kFineBits);
}

void BenchTop::TakeAway() {
    fineBefore_ = FineFramesSeen();
    fine_.reset();
    analyzer_.reset();
    form_.reset();
    loop.DeliverSignals();
}

void BenchTop::End() {
    if (!Running()) return;
    form_->Unload();
    LeaveWhenEnded();
}

void BenchTop::LeaveWhenEnded() {
    if (ended_ && depth_ == 0) TakeAway();
}

void BenchTop::Act(const std::function<void()>& action) {
    if (!Running()) return;
    ++depth_;
    form_->Guard.Run(action);
    --depth_;
    LeaveWhenEnded();
}

void BenchTop::Pass(std::chrono::nanoseconds time) {
    ++depth_;
    const auto end = loop.Now() + time;
    for (bool through = false; !through;) {
        try {
            loop.Advance(end - loop.Now());
            through = true;
        } catch (...) {
            form_->StreamError(std::current_exception());
        }
    }
    --depth_;
    LeaveWhenEnded();
}

void BenchTop::Block() {
    const auto time = BlockTime();
    card_.Card().Step(kBlockFrames);
    if (Running()) Pass(time);
}

void BenchTop::HoldUp(int blocks) {
    const auto time = BlockTime();
    for (int i = 0; i < blocks; ++i) {
        card_.Card().Step(kBlockFrames);
        loop.Skip(time);
    }
    if (Running()) Pass(std::chrono::nanoseconds{0});
}

void BenchTop::SelectRate(std::int32_t index) {
    wantedRate_ = index;
    Act([this] { form_->mnuSelectCard.UserChooses(); });
    wantedRate_ = -1;
}

// Selects what is offered, tries Okay and then Cancel, and gives up in the end.
void BenchTop::ChooseDevices() {
    frmDevices devices(form_->DevicesNeeds(files, help), form_->DevicesLabels());
    bool closed = false;
    devices.OnClosed = [&] { closed = true; };
    devices.Form_Load();
    if (devices.cmbOutputMixer.Count() > 0) devices.cmbOutputMixer.UserSelects(0);
    if (devices.cmbInputMixer.Count() > 0) devices.cmbInputMixer.UserSelects(0);
    // Without a card the extended rates are not offered.
    if (wantedRate_ >= 0 && wantedRate_ < devices.cmbSampleRate.Count())
        devices.cmbSampleRate.UserSelects(wantedRate_);
    for (int tries = 0; tries < kPatience && !closed && !ended_; ++tries) {
        form_->Guard.Run([&] { devices.cmdOkay.Press(); });
        if (closed || ended_) return;
        Block();
        form_->Guard.Run([&] { devices.cmdCancel.Press(); });
    }
    if (!closed && !ended_) throw EndProgram{0};
}

}  // namespace sonavex
