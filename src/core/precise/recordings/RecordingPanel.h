#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/ports/Dialogs.h"
#include "core/precise/RecordingMeasurement.h"

namespace sonavex {

// The controls of a recording in the Analyzer. While one is open the live measurement must be stopped.
class RecordingPanel {
public:
    // All must outlive the panel.
    struct Needs {
        const MeasurementFiles& files;
        Background& background;
        Dialogs& dialogs;
    };

    explicit RecordingPanel(const Needs& needs);

    CommandButton cmdOpen;
    CommandButton cmdLive;  // leaves the recording; enabled while one is open
    Slider sldBlock;        // number of the record, from 0; enabled while one record is chosen
    Label lblBlock;         // "record 3 of 12 at 0.683 s", "12 records", "5 of 12 records"
    CheckBox chkAveraged;   // all records; checked and disabled while the length is not known

    // Opens a recording and measures all of it. A file that cannot be read is reported and changes nothing.
    void Open(const std::string& path);
    // Leaves the recording; does nothing without one.
    void Close();
    bool IsOpen() const noexcept { return !Opened().path.empty(); }
    const RecordingMeasurement::Recording& Opened() const noexcept { return measurement_.Opened(); }
    // The name of the file without folders.
    std::string FileName() const;
    // "recording, 24 bit, 12.3 s", "recording, 24 bit (float)"
    std::string Note() const;

    // Measures again, after a change of the settings.
    void Restart();
    bool Measuring() const noexcept { return measurement_.Measuring(); }

    // Asks the user for a file; returns an empty text if the user cancels. May be empty.
    std::function<std::string()> AskForFile;
    // The settings of the measurement; the rate does not count. Must be set before Open.
    std::function<PreciseSettings()> Settings;
    // Called when a recording was opened or left.
    std::function<void()> OnChanged;
    // Called when a measurement starts: the reading shown is over.
    std::function<void()> OnStarted;
    // As RecordingMeasurement::OnReading.
    std::function<void(const LinesReading& reading, std::shared_ptr<const RecordingAnalysis> analysis)>
        OnReading;

private:
    std::optional<std::size_t> Records() const;
    std::size_t RecordLength() const;
    double BlockSeconds() const;
    void ShowControls();
    void ShowBlock(std::optional<std::size_t> measured);
    void Fail(const std::string& sentence);

    Needs needs_;
    RecordingMeasurement measurement_;
};

}  // namespace sonavex
