#include "core/precise/display/frmAnalyzer.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/history/ReadingValues.h"
#include "core/history/RunEntry.h"
#include "core/run/StoredRun.h"
#include "core/stimulus/StimulusPlan.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr auto kAnalyzerTick = 200ms;
// The input is lost when no frame arrives for this time. Devices deliver every 80 ms.
constexpr auto kLongestPause = 600ms;
constexpr std::array<int, 3> kPeriodChoices{1, 2, 5};
constexpr std::array<const char*, 2> kChannelNames{"left", "right"};

constexpr std::int32_t kLeastSize = 100;
constexpr std::int32_t kMostSize = 20000;

std::int32_t StoredSize(const Settings& settings, const SettingsKey& key) {
    const double stored = settings.Value(key);
    if (stored < kLeastSize || stored > kMostSize) return std::stoi(std::string(key.fallback));
    return static_cast<std::int32_t>(stored);
}

void LoadChoice(const Settings& settings, const SettingsKey& key, ComboBox& box) {
    const double stored = settings.Value(key);
    if (stored >= 0 && stored < box.Count()) box.SetListIndex(static_cast<std::int32_t>(stored));
}

std::string NameOfRun(const HistoryEntry& entry) {
    return entry.note.empty() ? entry.time : entry.note;
}

// The lines of a text with carriage returns.
std::string InOneLine(const std::string& text) {
    std::string line;
    for (const char letter : text) {
        if (letter == '\r')
            line += "; ";
        else
            line += letter;
    }
    return line;
}

}  // namespace

frmAnalyzer::frmAnalyzer(const Needs& needs)
    : ModelessForm("frmAnalyzer", "Analyzer"),
      Stimulus(needs.instrument.Settings,
               {[this] { StartStimulus(); }, [this] { measurement_.Player.Stop(); },
                [this] { TakeChangedStimulus(); }}),
      Analysis(needs.instrument.Settings, [this] { TakeChangedAnalysis(); }),
      Readings(needs.instrument.Settings),
      Recording({needs.files, needs.background, needs.dialogs}),
      Sweep({needs.loop, needs.instrument, measurement_, needs.background, needs.dialogs, needs.files,
             needs.simulated, needs.now, needs.version},
            {[this] { return SweepConditions(); },
             [this] {
                 ShowSweepConditions();
                 Recording.Close();
                 SetHeld(false);
                 ClearFigures();
             },
             [this] {
                 if (timer_ != 0) Measure(Play::kKeep);
             },
             [this](const MeasuredRun& run, const std::string& name) {
                 return History.Store(EntryOf(run, name), StoredRunText(run), {});
             }}),
      History({needs.history, needs.dialogs, needs.files, needs.now}),
      needs_(needs),
      measurement_({needs.loop, needs.instrument, needs.background, &needs.generatorPanel}),
      calibrations_(needs.instrument.Settings) {
    cmbPlotUnit.SetItems({"dBFS", "dBc"});
    cmbPlotUnit.SetListIndex(0);
    cmbPeriods.SetItems({"1", "2", "5"});
    cmbPeriods.SetListIndex(1);
    HandleControls();
    HandleRecording();
    measurement_.Meter.OnReading = [this](const LinesReading& reading) { TakeLive(reading); };
    measurement_.OnChanged = [this] { TakePlayer(); };
    SetHeld(false);
    ClearFigures();
}

frmAnalyzer::~frmAnalyzer() {
    Sweep.Close();
}

void frmAnalyzer::HandleControls() {
    cmbPlotUnit.Click.Handle([this] { StoreChoices(); });
    cmbPeriods.Click.Handle([this] { StoreChoices(); });
    cmdFit.Click.Handle([this] { Spectrum.Fit(); });
    cmdRemoveKept.Click.Handle([this] {
        Spectrum.Keep(nullptr);
        lblLegendKept.SetCaption("");
        lblLegendKeptSecond.SetCaption("");
    });
    cmdHold.Click.Handle([this] {
        if (held_)
            Measure(Play::kKeep);
        else
            SetHeld(true);
    });
    cmdSingle.Click.Handle([this] { Single(); });
    cmdKeep.Click.Handle([this] { KeepTrace(); });
    mnuKeepReference.Click.Handle([this] { KeepReading(reference_); });
    mnuKeepIdle.Click.Handle([this] { KeepReading(idle_); });
    mnuStoreReading.Click.Handle([this] { StoreReading(); });
    History.OnShowTraces = [this](const std::vector<std::shared_ptr<const SpectrumTrace>>& traces) {
        ShowTraces(traces);
    };
    History.OnOpenRun = [this](const std::string& details, const HistoryEntry& entry) {
        OpenRun(details, entry);
    };
    History.OnChanged = [this] { RestoreRuns(); };
    Sweep.Kept.OnRenamed = [this](const std::string& id, const std::string& name) {
        History.SetNote(id, name);
    };
    History.OnCopy = [this](const std::string& text) {
        if (OnCopy) OnCopy(text);
    };
    cmdExport.Click.Handle([this] { Export(); });
    cmdCopy.Click.Handle([this] {
        if (OnCopy && result_) OnCopy(CopiedText(Exported()));
    });
    Stimulus.cmdCalibrate.Click.Handle([this] { Calibrate(); });
}

void frmAnalyzer::HandleRecording() {
    Recording.Settings = [this] { return ChosenSettings(); };
    Recording.OnChanged = [this] {
        if (Recording.IsOpen()) Sweep.Cancel();
        Measure(Play::kKeep);
    };
    Recording.OnStarted = [this] { ClearFigures(); };
    Recording.OnReading = [this](const LinesReading& reading,
                                 const std::shared_ptr<const RecordingAnalysis>& analysis) {
        TakeRecording(reading, *analysis);
    };
}

std::int32_t frmAnalyzer::StoredWidth() const {
    return StoredSize(needs_.instrument.Settings, keys::kAnalyzerWidth);
}

std::int32_t frmAnalyzer::StoredHeight() const {
    return StoredSize(needs_.instrument.Settings, keys::kAnalyzerHeight);
}

void frmAnalyzer::StoreSize(std::int32_t width, std::int32_t height) {
    needs_.instrument.Settings.Save(keys::kAnalyzerWidth, std::to_string(width));
    needs_.instrument.Settings.Save(keys::kAnalyzerHeight, std::to_string(height));
}

bool frmAnalyzer::WavesFolded() const {
    return needs_.instrument.Settings.Value(keys::kAnalyzerWavesFolded) == 1;
}

void frmAnalyzer::StoreWavesFolded(bool folded) {
    needs_.instrument.Settings.Save(keys::kAnalyzerWavesFolded, folded ? "1" : "0");
}

bool frmAnalyzer::WasOpen() const {
    return needs_.instrument.Settings.Value(keys::kAnalyzerOpen) == 1;
}

void frmAnalyzer::UnloadForNextStart() {
    if (!Loaded()) return;
    Unload();
    needs_.instrument.Settings.Save(keys::kAnalyzerOpen, "1");
}

void frmAnalyzer::OpenRecording(const std::string& path) {
    Show();
    Recording.Open(path);
}

std::vector<std::string> frmAnalyzer::ReportBlock() const {
    if (!Loaded() || !Complete()) return {};
    return ReportLines(Exported());
}

void frmAnalyzer::Form_Load() {
    needs_.instrument.Settings.Save(keys::kAnalyzerOpen, "1");
    LoadChoices();
    Stimulus.Load();
    timer_ = needs_.loop.StartTimer(kAnalyzerTick, [this] { Tick(); });
    Measure(Play::kKeep);
    RestoreRuns();
}

void frmAnalyzer::Form_QueryUnload() {
    needs_.loop.StopTimer(timer_);
    timer_ = 0;
    Recording.OnChanged = {};
    Recording.Close();
    HandleRecording();
    const bool interrupted = Sweep.Active();
    Sweep.Cancel();
    measurement_.Stop();
    SetHeld(false);
    ClearFigures();
    ShowChip({});
    needs_.instrument.Settings.Save(keys::kAnalyzerOpen, "0");
    // Last: a message about the history can end the program.
    if (interrupted) Sweep.StoreInterrupted();
}

void frmAnalyzer::LoadChoices() {
    const Settings& settings = needs_.instrument.Settings;
    LoadChoice(settings, keys::kAnalyzerPlotUnit, cmbPlotUnit);
    LoadChoice(settings, keys::kAnalyzerPeriods, cmbPeriods);
    Readings.Load();
    StoreChoices();
}

void frmAnalyzer::StoreChoices() {
    Settings& settings = needs_.instrument.Settings;
    settings.Save(keys::kAnalyzerPlotUnit, std::to_string(cmbPlotUnit.ListIndex()));
    settings.Save(keys::kAnalyzerPeriods, std::to_string(cmbPeriods.ListIndex()));
    Spectrum.SetUnit(cmbPlotUnit.ListIndex() == 0 ? PlotUnit::kDbfs : PlotUnit::kDbc);
    Waves.SetPeriods(kPeriodChoices[static_cast<std::size_t>(cmbPeriods.ListIndex())]);
}

// What the controls choose, at the rate of the sound card or of the recording. The shape of the stimulus
// decides what is measured, also while none is played.
PreciseSettings frmAnalyzer::ChosenSettings() {
    PreciseSettings settings = Analysis.Chosen();
    settings.spectrum = true;
    settings.mode = playsForCalibration_ ? PreciseMode::kTone : Stimulus.Mode();
    if (settings.mode == PreciseMode::kMultitone) settings.tonesHz = Stimulus.TonesHz();
    mode_ = settings.mode;
    return settings;
}

// When the stimulus ends, the meter begins again, and the figures of the stimulus are over.
void frmAnalyzer::TakePlayer() {
    using State = StimulusPlayer::State;
    const State state = measurement_.Player.Now();
    Stimulus.ShowPlaying(state);
    if (!measurement_.Player.Trouble().empty()) Stimulus.ShowTrouble(measurement_.Player.Trouble());
    const bool ended = heard_ && (state == State::kEnding || state == State::kOff);
    heard_ = state == State::kPlaying;
    if (ended && calibrate_ != nullptr) calibrate_->ShowToneEnded();
    if (ended && timer_ != 0 && !held_ && !Recording.IsOpen()) ClearFigures();
}

frmAnalyzer::Source frmAnalyzer::PresentSource() const {
    const StreamEngine& engine = needs_.instrument.Engine;
    return {static_cast<double>(needs_.instrument.Shared.SampleRate), engine.ListedInputId,
            engine.ListedOutputId};
}

// Begins the averages again with the present choices. A run has the measurement until it has ended.
void frmAnalyzer::Measure(Play play) {
    if (Sweep.Active()) return;
    source_ = PresentSource();
    rateHz_ = Recording.IsOpen() ? Recording.Opened().rateHz : needs_.instrument.Shared.SampleRate;
    outputBits_ = needs_.instrument.Engine.OutputBits();
    const bool mono = Recording.IsOpen() && Recording.Opened().channels == 1;
    Analysis.Load(rateHz_, mono ? AnalysisPanel::Source::kMono : AnalysisPanel::Source::kStereo);
    length_ = Analysis.Chosen().length;
    Stimulus.SetConditions(rateHz_, length_, outputBits_);
    SetHeld(false);
    ClearFigures();
    ShowPath();
    ShowCalibration();
    if (Recording.IsOpen())
        measurement_.Stop();
    else
        MeasureLive(ChosenSettings(), play);
}

void frmAnalyzer::MeasureLive(const PreciseSettings& settings, Play play) {
    captured_ = 0;
    capturedAt_ = needs_.loop.Now();
    try {
        std::optional<StimulusChoice> stimulus;
        if (play == Play::kChosen) stimulus = Stimulus.Chosen();
        measurement_.Start(settings, stimulus);
        if (stimulus) played_ = Stimulus.Description();
        Stimulus.ShowTrouble("");
    } catch (const StimulusError& error) {
        Stimulus.ShowTrouble(error.what());
    }
}

void frmAnalyzer::StartStimulus() {
    if (Recording.IsOpen()) Recording.Close();
    Measure(Play::kChosen);
}

// A stimulus on bins belongs to the length of the records.
void frmAnalyzer::TakeChangedAnalysis() {
    const bool newLength = Analysis.Chosen().length != length_;
    Measure(newLength && measurement_.Player.Active() ? Play::kChosen : Play::kKeep);
    Recording.Restart();
}

void frmAnalyzer::TakeChangedStimulus() {
    Measure(measurement_.Player.Active() ? Play::kChosen : Play::kKeep);
    Recording.Restart();
}

// Side, dither, snap and the settings of the analysis are those of the spectrum.
RunPlan frmAnalyzer::SweepConditions() const {
    constexpr std::array<StimulusSide, 3> kSides{StimulusSide::kLeft, StimulusSide::kRight,
                                                 StimulusSide::kBoth};
    const PreciseSettings settings = Analysis.Chosen();
    RunPlan plan;
    plan.side = kSides[static_cast<std::size_t>(Stimulus.cmbSide.ListIndex())];
    plan.dither = Stimulus.cmbDither.ListIndex() == 0;
    plan.snap = Stimulus.chkSnap.Checked();
    plan.length = settings.length;
    plan.channel = Analysis.StereoChannel();
    plan.band = settings.tone.band;
    plan.highestOrder = settings.tone.highestOrder;
    return plan;
}

void frmAnalyzer::ShowSweepConditions() {
    const std::string channel = kChannelNames.at(Analysis.StereoChannel());
    Sweep.lblConditions.SetCaption(Analysis.cmbLength.Text() + "\n" + Analysis.BandText() + "\n" + channel +
                                   " channel, " + Analysis.lblHarmonics.Caption() +
                                   (Stimulus.chkSnap.Checked() ? ", on bins" : ""));
}

void frmAnalyzer::TickSweep() {
    ShowPath();
    if (!Sweep.Active()) ShowSweepConditions();
    Sweep.Tick(needs_.streamTrouble.Caption());
    if (Sweep.Active()) ShowChip(Sweep.Chip());
}

void frmAnalyzer::Tick() {
    TickSweep();
    if (Sweep.Active()) return;
    if (!Recording.IsOpen() && source_ != PresentSource()) Measure(Play::kKeep);
    if (outputBits_ != needs_.instrument.Engine.OutputBits()) {
        outputBits_ = needs_.instrument.Engine.OutputBits();
        Stimulus.SetConditions(rateHz_, length_, outputBits_);
    }
    ShowPath();
    ShowCalibration();
    if (Recording.IsOpen() || held_) return;
    if (const std::optional<std::string> trouble = Trouble())
        ShowVoid(*trouble);
    else if (!result_ && measurement_.Meter.State() == PreciseState::kVoid)
        ShowVoid(measurement_.Meter.Interruption());
    else if (measurement_.Meter.State() == PreciseState::kSettling)
        ShowSettling(static_cast<double>(measurement_.Meter.Collected()) /
                     static_cast<double>(std::max<std::size_t>(measurement_.Meter.Length(), 1)));
}

// Why no reading can be true now; empty while frames arrive.
std::optional<std::string> frmAnalyzer::Trouble() {
    const bool stalled = InputStalled();
    if (!needs_.streamTrouble.Caption().empty()) return needs_.streamTrouble.Caption();
    if (stalled) return "nothing arrives from the input";
    return std::nullopt;
}

bool frmAnalyzer::InputStalled() {
    const CaptureBuffer* const buffer = needs_.instrument.Engine.InputBuffer();
    const std::uint64_t captured = buffer != nullptr ? buffer->Statistics().framesCaptured : 0;
    if (captured != captured_) {
        captured_ = captured;
        capturedAt_ = needs_.loop.Now();
    }
    return buffer == nullptr || needs_.loop.Now() - capturedAt_ > kLongestPause;
}

void frmAnalyzer::ShowPath() {
    const bool recording = Recording.IsOpen();
    lblInput.SetCaption(recording ? std::string() : needs_.lblInput.Caption());
    lblOutput.SetCaption(recording ? std::string() : needs_.lblOutput.Caption());
    lblRecording.SetCaption(recording ? Recording.FileName() : std::string());
    lblRate.SetCaption(std::to_string(static_cast<std::int32_t>(rateHz_)) + " Hz");
    lblBits.SetCaption(recording ? std::to_string(Recording.Opened().bits) + " bit"
                                 : needs_.lblBits.Caption());
    const std::string limit = result_ ? LimitOf(*result_) : std::string();
    const std::string path = recording ? Recording.Note() : InOneLine(needs_.pathNote.Caption());
    const std::string separator = path.empty() || limit.empty() ? "" : recording ? ", " : "; ";
    const std::string remarks = path + separator + limit;
    const bool asAsked = !recording && remarks.empty();
    note.SetCaption(asAsked && needs_.instrument.Engine.OneClock() ? "direct, one clock" : remarks);
    note.SetEmphasis(!asAsked);
}

void frmAnalyzer::ShowCalibration() {
    using Direction = CalibratedChannel::Direction;
    const StreamEngine& engine = needs_.instrument.Engine;
    const auto rate = static_cast<std::int32_t>(rateHz_);
    Stimulus.SetCalibration(
        calibrations_.Of({Direction::kOutput, engine.ListedOutputId, Stimulus.Channel(), rate}));
    // The device of a recording is not known.
    Readings.SetCalibration(Recording.IsOpen() ? std::nullopt
                                               : calibrations_.Of({Direction::kInput, engine.ListedInputId,
                                                                   Analysis.Chosen().channel, rate}));
}

void frmAnalyzer::ShowChip(const ChipState& chip) {
    Chip.Show(chip.kind, chip.text, chip.progress);
}

void frmAnalyzer::ShowAverages(std::size_t records) {
    const std::size_t all = Analysis.Averages();
    lblAverages.SetCaption(std::to_string(std::min(records, all)) + " of " + std::to_string(all));
    prgAverages.SetValue(static_cast<float>(records) / static_cast<float>(all));
}

// records: completed part of the first record.
void frmAnalyzer::ShowSettling(double records) {
    if (result_) return;
    ShowChip(SettlingChip(std::min(records, 0.99), Analysis.Averages()));
    prgAverages.SetValue(static_cast<float>(records / static_cast<double>(Analysis.Averages())));
}

void frmAnalyzer::ShowVoid(const std::string& cause) {
    if (calibrate_ != nullptr) calibrate_->ShowToneEnded();
    ClearFigures();
    ShowChip(VoidChip(cause));
}

// Without a result there is no figure, and the plots show none either.
void frmAnalyzer::ClearFigures() {
    result_.reset();
    live_.reset();
    if (calibrate_ != nullptr) calibrate_->ShowInputLevel(std::nullopt);
    Readings.Clear(LastValidText());
    SpectrumPlot::Data data;
    if (rateHz_ > 0) data.rateHz = rateHz_;
    Spectrum.Show(data);
    Waves.Show(nullptr);
    if (timer_ != 0) ShowChip(SettlingChip(0, Analysis.Averages()));
    ShowAverages(0);
}

void frmAnalyzer::TakeLive(const LinesReading& reading) {
    if (calibrate_ != nullptr)
        calibrate_->ShowInputLevel(reading.reading.Valid() ? reading.reading.levelDbfs.value : std::nullopt);
    if (held_ || Recording.IsOpen() || source_ != PresentSource()) return;
    PreciseMeter& meter = measurement_.Meter;
    AnalyzerResult result;
    result.mode = mode_;
    result.reading = reading;
    result.spectrum = ExportedSpectrum::Of(meter.TakeSpectrum(), meter.Plan());
    result.independentSpectra =
        meter.Plan().Overlap().Of(std::max<std::size_t>(result.spectrum.records, 1)).power;
    RecordAnalysis newest = meter.TakeNewest();
    result.samples = std::move(newest.samples);
    result.residual = std::move(newest.residual);
    for (const StimulusLine& line : measurement_.Player.Lines()) result.playedHz.push_back(line.hertz);
    Take(std::move(result));
    if (single_ && reading.reading.Valid() && reading.reading.blocks >= Analysis.Averages()) SetHeld(true);
}

void frmAnalyzer::TakeRecording(const LinesReading& reading, const RecordingAnalysis& analysis) {
    AnalyzerResult result;
    result.mode = mode_;
    result.recording = true;
    result.reading = reading;
    result.spectrum = ExportedSpectrum::Of(analysis.Spectrum(), analysis.Plan());
    result.independentSpectra =
        analysis.Plan().Overlap().Of(std::max<std::size_t>(analysis.Spectrum().records, 1)).power;
    result.samples = analysis.Samples();
    result.residual = analysis.Residual();
    Take(std::move(result));
}

void frmAnalyzer::Take(AnalyzerResult result) {
    result.rules = JudgeReading(result.reading.reading, Comparable(reference_), Comparable(idle_));
    result_ = std::move(result);
    resultTime_ = needs_.now();
    const Reading& reading = result_->reading.reading;
    const ChipState chip = ChipOf(*result_, Analysis.Averages());
    if (chip.kind == StateChip::Kind::kValid && !result_->recording) {
        lastValid_ = TimeOfDay(resultTime_);
        lastValidId_.clear();
    }
    if (reading.Valid())
        Readings.Show(result_->reading, {.mode = result_->mode,
                                         .weighting = Analysis.Weighting(),
                                         .band = Analysis.BandText(),
                                         .settling = chip.kind == StateChip::Kind::kSettling,
                                         .quiet = chip.kind != StateChip::Kind::kValid});
    else
        Readings.Clear(LastValidText());
    ShowChip(chip);
    ShowAverages(result_->recording ? Analysis.Averages() : reading.blocks);
    ShowPlots();
    ShowPath();
}

void frmAnalyzer::ShowPlots() {
    live_ = PlottedTrace(*result_, LiveName());
    Spectrum.Show(PlottedSpectrum(*result_, live_));
    Waves.Show(PlottedWaves(*result_));
    lblLegendLive.SetCaption(LiveName());
    lblLegendSide.SetCaption(Analysis.cmbChannel.Text());
}

std::string frmAnalyzer::LiveName() const {
    const std::string side = Analysis.cmbChannel.Text();
    return side + (Recording.IsOpen() ? ", recording" : ", live");
}

// While it holds, the last reading stays on the screen with its time.
void frmAnalyzer::SetHeld(bool held) {
    held_ = held && result_.has_value() && !Recording.IsOpen();
    single_ = false;
    cmdHold.SetCaption(held_ ? "Go on" : "Hold");
    if (!held_ || !result_->reading.reading.Valid()) return;
    const ChipState chip = ChipOf(*result_, Analysis.Averages());
    if (chip.kind == StateChip::Kind::kValid)
        ShowChip({StateChip::Kind::kOff, "HELD " + TimeOfDay(resultTime_)});
    else
        ShowChip({chip.kind, chip.text + ", held " + TimeOfDay(resultTime_), chip.progress});
}

void frmAnalyzer::Single() {
    if (Recording.IsOpen()) return;
    Measure(Play::kKeep);
    single_ = true;
}

void frmAnalyzer::KeepTrace() {
    if (!live_) return;
    auto kept = std::make_shared<SpectrumTrace>(*live_);
    kept->name = "A, " + TimeOfDay(resultTime_).substr(0, 5);
    lblLegendKept.SetCaption(kept->name);
    lblLegendKeptSecond.SetCaption("");
    Spectrum.Keep(std::move(kept));
    StoreReading();
}

// A void reading is stored without figures and without a curve.
void frmAnalyzer::StoreReading() {
    if (!result_) {
        needs_.dialogs.Message("There is no reading to store.", MessageIcon::kInformation);
        return;
    }
    const ExportedMeasurement measurement = Exported();
    const Reading& reading = result_->reading.reading;
    const StateChip::Kind state = ChipOf(*result_, Analysis.Averages()).kind;
    HistoryEntry entry = EntryOf(measurement);
    if (state == StateChip::Kind::kSettling)
        entry.reason = std::to_string(reading.blocks) + " of " + std::to_string(Analysis.Averages()) +
                       " averages" + (entry.reason.empty() ? "" : "; " + entry.reason);
    const HistoryCurve curve =
        reading.Valid() ? HistoryCurve::Of(result_->spectrum, result_->independentSpectra) : HistoryCurve();
    const std::string id = History.Store(entry, DetailsOf(measurement.reading), curve);
    if (state == StateChip::Kind::kValid && !result_->recording) lastValidId_ = id;
}

void frmAnalyzer::OpenRun(const std::string& details, const HistoryEntry& entry) {
    try {
        Sweep.Open(ParseStoredRun(details), NameOfRun(entry), entry.id);
    } catch (const RunError& error) {
        needs_.dialogs.Message(error.what(), MessageIcon::kCritical);
        return;
    }
    if (ShowTab) ShowTab(Tab::kSweep);
}

// Reading a stored run takes a moment, so it waits until the form is open.
void frmAnalyzer::RestoreRuns() {
    if (!Loaded() || needs_.history.Loading()) return;
    Sweep.RestoreKept([this](const std::string& id) -> std::optional<SweepPanel::Stored> {
        const HistoryEntry* const entry = needs_.history.Find(id);
        if (entry == nullptr) return std::nullopt;
        try {
            const std::optional<HistoryDetails> details = needs_.history.Details(id);
            if (!details) return std::nullopt;
            return SweepPanel::Stored{ParseStoredRun(details->json), NameOfRun(*entry)};
        } catch (const std::runtime_error&) {
            return std::nullopt;
        }
    });
}

std::string frmAnalyzer::LastValidText() const {
    if (lastValid_.empty()) return {};
    return "last valid " + lastValid_ + (History.Contains(lastValidId_) ? ", in History" : "");
}

void frmAnalyzer::ShowTraces(const std::vector<std::shared_ptr<const SpectrumTrace>>& traces) {
    const std::shared_ptr<const SpectrumTrace> second = traces.size() > 1 ? traces[1] : nullptr;
    lblLegendKept.SetCaption(traces.front()->name);
    lblLegendKeptSecond.SetCaption(second ? second->name : std::string());
    Spectrum.Keep(traces.front(), second);
    if (ShowTab) ShowTab(Tab::kSpectrum);
}

// Of the validity rules: a loop-back reading, or one with the generator off.
void frmAnalyzer::KeepReading(std::optional<KeptReading>& place) {
    if (!Complete()) {
        needs_.dialogs.Message("There is no valid reading to keep.", MessageIcon::kInformation);
        return;
    }
    place = KeptReading{SavedReading::Of(result_->reading.reading), RuleConditions()};
    result_->rules = JudgeReading(result_->reading.reading, Comparable(reference_), Comparable(idle_));
    ShowPath();
}

// Readings of another source, rate, channel, band or sum of harmonics say nothing about each other.
std::string frmAnalyzer::RuleConditions() const {
    const PreciseSettings chosen = Analysis.Chosen();
    const std::string source = Recording.IsOpen() ? Recording.Opened().path : source_.input;
    return source + '|' + WithDecimals(rateHz_, 0) + '|' + std::to_string(chosen.channel) + '|' +
           Analysis.BandText() + '|' + std::to_string(chosen.tone.highestOrder);
}

std::optional<SavedReading> frmAnalyzer::Comparable(const std::optional<KeptReading>& kept) const {
    if (!kept || kept->conditions != RuleConditions()) return std::nullopt;
    return kept->reading;
}

bool frmAnalyzer::Complete() const {
    return result_ && ChipOf(*result_, Analysis.Averages()).kind == StateChip::Kind::kValid;
}

ExportedMeasurement frmAnalyzer::Exported() const {
    ExportedMeasurement exported;
    exported.version = needs_.version;
    exported.time = DateAndTime(resultTime_);
    exported.channel = kChannelNames.at(Analysis.Chosen().channel);
    exported.state = ChipOf(*result_, Analysis.Averages()).text;
    exported.reading.mode = result_->mode;
    exported.reading.values = result_->reading;
    exported.reading.rateHz = rateHz_;
    exported.reading.rules = result_->rules;
    if (result_->recording) {
        exported.recording = Recording.Opened().path;
        return exported;
    }
    exported.reading.stream =
        DetailsOf(needs_.instrument.Engine, needs_.instrument.Shared.SampleRate, needs_.simulated);
    if (!result_->playedHz.empty() || measurement_.Player.Active()) exported.reading.stimulus = played_;
    exported.reading.playedHz = result_->playedHz;
    return exported;
}

// The reading of the moment of the click is exported, whatever is measured while the user chooses a file.
void frmAnalyzer::Export() {
    if (!result_) {
        needs_.dialogs.Message("There is no reading to export.", MessageIcon::kInformation);
        return;
    }
    if (!AskForExport) return;
    const AnalyzerResult result = *result_;
    const ExportedMeasurement measurement = Exported();
    const SpectrumPlot::Data plotted = Spectrum.Shown();
    const std::optional<ExportTarget> target = AskForExport(measurement);
    if (!target) return;
    // DrawPlot draws what the plot shows.
    struct Plotted {
        SpectrumPlot& plot;
        SpectrumPlot::Data present;
        Plotted(SpectrumPlot& drawn, const SpectrumPlot::Data& data) : plot(drawn), present(drawn.Shown()) {
            plot.Show(data);
        }
        ~Plotted() { plot.Show(present); }
        Plotted(const Plotted&) = delete;
        Plotted& operator=(const Plotted&) = delete;
    };
    const Plotted shown(Spectrum, plotted);
    try {
        WriteExport(needs_.files, target->path, target->kind,
                    {measurement, result.spectrum, result.samples, result.residual, DrawPlot});
    } catch (const FileError& error) {
        needs_.dialogs.Message(error.what(), MessageIcon::kCritical);
    }
}

void frmAnalyzer::Calibrate() {
    using Direction = CalibratedChannel::Direction;
    if (!ShowCalibrate || Recording.IsOpen() || Sweep.Active()) return;
    const StreamEngine& engine = needs_.instrument.Engine;
    const std::int32_t rate = needs_.instrument.Shared.SampleRate;
    frmCalibrate form(
        {needs_.instrument.Settings, needs_.now, [this](bool on) { return PlayForCalibration(on); }});
    std::vector<frmCalibrate::Entry> entries;
    for (const std::size_t channel : {0U, 1U})
        entries.push_back(
            {{Direction::kOutput, engine.ListedOutputId, channel, rate}, engine.OutputDeviceName});
    for (const std::size_t channel : {0U, 1U})
        entries.push_back({{Direction::kInput, engine.ListedInputId, channel, rate}, engine.InputDeviceName});
    form.OnChanged = [this] { ShowCalibration(); };
    form.Form_Load(std::move(entries));
    // The end of the program leaves ShowCalibrate by an exception.
    struct Shown {
        frmAnalyzer& analyzer;
        Shown(frmAnalyzer& owner, frmCalibrate& dialog) : analyzer(owner) { analyzer.calibrate_ = &dialog; }
        ~Shown() {
            analyzer.calibrate_ = nullptr;
            analyzer.playsForCalibration_ = false;
        }
        Shown(const Shown&) = delete;
        Shown& operator=(const Shown&) = delete;
    };
    const Shown shown(*this, form);
    form.ShowInputLevel(InputLevel());
    ShowCalibrate(form);
    if (playsForCalibration_ && timer_ != 0) PlayForCalibration(false);
}

// Returns why the tone cannot be played; empty if it plays.
std::string frmAnalyzer::PlayForCalibration(bool on) {
    playsForCalibration_ = on;
    if (!on) {
        measurement_.Player.Stop();
        Measure(Play::kKeep);
        return {};
    }
    StimulusChoice tone;
    tone.stimulus = {StimulusShape::kSine, {{frmCalibrate::kToneHz}}};
    tone.levelDbfs = frmCalibrate::kToneDbfs;
    tone.recordLength = length_;
    try {
        measurement_.Start(ChosenSettings(), tone);
        played_ = "sine:" + WithDigits(frmCalibrate::kToneHz, 6) + " at " +
                  WithDecimals(frmCalibrate::kToneDbfs, 2) + " dBFS, both sides, for the calibration";
    } catch (const StimulusError& error) {
        playsForCalibration_ = false;
        return error.what();
    }
    return {};
}

std::optional<double> frmAnalyzer::InputLevel() const {
    if (!result_ || !result_->reading.reading.Valid()) return std::nullopt;
    return result_->reading.reading.levelDbfs.value;
}

}  // namespace sonavex
