#include "core/precise/recordings/RecordingPanel.h"

#include <algorithm>
#include <utility>

#include "core/analyzer/Record.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

std::string RecordsText(std::size_t records) {
    return std::to_string(records) + (records == 1 ? " record" : " records");
}

}  // namespace

RecordingPanel::RecordingPanel(const Needs& needs)
    : needs_(needs), measurement_({needs.files, needs.background}) {
    chkAveraged.SetValue(1);
    cmdOpen.Click.Handle([this] {
        const std::string path = AskForFile ? AskForFile() : std::string();
        if (!path.empty()) Open(path);
    });
    cmdLive.Click.Handle([this] { Close(); });
    sldBlock.Change.Handle([this] { Restart(); });
    chkAveraged.Click.Handle([this] { Restart(); });
    measurement_.OnProgress = [this](std::size_t measured, std::optional<std::size_t>) {
        ShowBlock(measured);
    };
    measurement_.OnReading = [this](const LinesReading& reading,
                                    std::shared_ptr<const RecordingAnalysis> analysis) {
        ShowBlock(std::nullopt);
        if (OnReading) OnReading(reading, std::move(analysis));
    };
    measurement_.OnFailure = [this](const std::string& sentence) { Fail(sentence); };
    ShowControls();
}

void RecordingPanel::Open(const std::string& path) {
    try {
        measurement_.Open(path);
    } catch (const FileError& error) {
        needs_.dialogs.Message(error.what(), MessageIcon::kCritical);
        return;
    }
    chkAveraged.SetValue(1);
    sldBlock.SetValue(0);
    if (OnChanged) OnChanged();
    Restart();
}

void RecordingPanel::Close() {
    if (!IsOpen()) return;
    measurement_.Close();
    ShowControls();
    if (OnChanged) OnChanged();
}

// A file that was replaced by a damaged one is left, because its slider would fail at each step.
void RecordingPanel::Fail(const std::string& sentence) {
    Close();
    needs_.dialogs.Message(sentence, MessageIcon::kCritical);
}

void RecordingPanel::Restart() {
    if (!IsOpen()) return;
    ShowControls();
    if (OnStarted) OnStarted();
    if (chkAveraged.Checked())
        measurement_.MeasureAll(Settings());
    else
        measurement_.MeasureRecord(Settings(), static_cast<std::size_t>(sldBlock.Value()));
}

std::size_t RecordingPanel::RecordLength() const {
    const std::size_t length = Settings().length;
    return length != 0 ? length : DefaultRecordLength(Opened().rateHz);
}

std::optional<std::size_t> RecordingPanel::Records() const {
    if (!IsOpen()) return std::nullopt;
    return measurement_.RecordsOfLength(RecordLength());
}

void RecordingPanel::ShowControls() {
    const std::optional<std::size_t> records = Records();
    cmdLive.SetEnabled(IsOpen());
    if (!records) chkAveraged.SetValue(1);
    chkAveraged.SetEnabled(records.has_value());
    sldBlock.SetEnabled(records.has_value() && !chkAveraged.Checked());
    sldBlock.SetRange(0, static_cast<std::int32_t>(records.value_or(1)) - 1);
    ShowBlock(std::nullopt);
}

// measured: records so far, while all are measured.
void RecordingPanel::ShowBlock(std::optional<std::size_t> measured) {
    const std::optional<std::size_t> records = Records();
    std::string text;
    if (measured)
        text =
            (records ? std::to_string(*measured) + " of " + RecordsText(*records) : RecordsText(*measured));
    else if (records && chkAveraged.Checked())
        text = RecordsText(*records);
    else if (records)
        text = "record " + std::to_string(sldBlock.Value() + 1) + " of " + std::to_string(*records) + " at " +
               WithDecimals(BlockSeconds(), 3) + " s";
    lblBlock.SetCaption(text);
}

// The last record ends at the last frame.
double RecordingPanel::BlockSeconds() const {
    const auto length = static_cast<std::int64_t>(RecordLength());
    const std::int64_t last = std::max<std::int64_t>(Opened().frames.value_or(0) - length, 0);
    return static_cast<double>(std::min(length / 4 * sldBlock.Value(), last)) / Opened().rateHz;
}

std::string RecordingPanel::FileName() const {
    const std::string& path = Opened().path;
    return path.substr(path.find_last_of('/') + 1);
}

std::string RecordingPanel::Note() const {
    const RecordingMeasurement::Recording& file = Opened();
    std::string note =
        "recording, " + std::to_string(file.bits) + " bit" + (file.floatingPoint ? " (float)" : "");
    if (file.frames) note += ", " + WithDecimals(static_cast<double>(*file.frames) / file.rateHz, 1) + " s";
    return note;
}

}  // namespace sonavex
