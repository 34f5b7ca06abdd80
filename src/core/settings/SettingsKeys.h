#pragma once

#include <array>
#include <string>
#include <string_view>

namespace sonavex {

// Section, name and default of a stored value.
struct SettingsKey {
    std::string_view section;
    std::string_view key;
    std::string_view fallback;
};

// All stored values, except the window positions (form name + " Left" and " Top").
namespace keys {

inline constexpr std::string_view kSettings = "Settings";
inline constexpr std::string_view kSoundCard = "SoundCard";
inline constexpr std::string_view kSignalGenerator = "Signal Generator";
inline constexpr std::string_view kWindows = "Windows";
inline constexpr std::string_view kFace = "Face";
inline constexpr std::string_view kAnalyzer = "Analyzer";

// Check boxes of the meter, "1" or "0".
inline constexpr SettingsKey kAuto{kSettings, "Auto", "1"};
inline constexpr SettingsKey kBaseline{kSettings, "Baseline", "0"};
// Baseline of the 2nd to 9th harmonic; Numbered(.., 0) to Numbered(.., 7).
inline constexpr SettingsKey kThd{kSettings, "THD", "0"};
inline constexpr SettingsKey kDb{kSettings, "DB", "0"};
// Conditions of the baseline: frequency and sampling rate in Hz.
inline constexpr SettingsKey kBaselineHz{kFace, "Baseline Frequency", "0"};
inline constexpr SettingsKey kBaselineRate{kFace, "Baseline Rate", "0"};
// Mixer states; empty means "leave the mixer as it is".
inline constexpr SettingsKey kInputMixerState{kSettings, "SoundCard", ""};
inline constexpr SettingsKey kOutputMixerState{kSettings, "OutSoundCard", ""};
inline constexpr SettingsKey kVistaMixerState{kSettings, "VistaSoundCard", ""};

// Device identifiers; empty means the primary device.
inline constexpr SettingsKey kInput{kSoundCard, "Input", ""};
inline constexpr SettingsKey kOutput{kSoundCard, "Output", ""};
// Index into SampleRateTable. This default is the device dialog's; start-up uses DefaultSampleRateIndex
// instead.
inline constexpr SettingsKey kSampleRate{kSoundCard, "SampleRate", "1"};
// One of kExtendedRates in Hz, in place of the indexed rate; empty for the indexed one.
inline constexpr SettingsKey kExtendedSampleRate{kFace, "ExtendedSampleRate", ""};
inline constexpr SettingsKey kLineInput{kSoundCard, "LineInput", ""};
inline constexpr SettingsKey kThreeMixers{kSoundCard, "ThreeMixers", ""};

// Output level in hundredths of a decibel. Its two readers have different defaults.
inline constexpr SettingsKey kLevel{kSignalGenerator, "Level", "-50"};
inline constexpr SettingsKey kSynthesisLevel{kSignalGenerator, "Level", "50"};
inline constexpr SettingsKey kMuteMeter{kSignalGenerator, "MuteMeter", "1"};
inline constexpr SettingsKey kToneType{kSignalGenerator, "ToneType", ""};
inline constexpr SettingsKey kCurrentStart{kSignalGenerator, "Current Signal Start", "1000"};
inline constexpr SettingsKey kCurrentEnd{kSignalGenerator, "Current Signal End", "20"};
inline constexpr SettingsKey kCurrentSweepTime{kSignalGenerator, "Current Signal Sweep Time", "0"};
inline constexpr SettingsKey kCurrentSweep{kSignalGenerator, "Current Signal Sweep", "False"};
inline constexpr SettingsKey kCurrentType{kSignalGenerator, "Current Signal Type", "0"};
inline constexpr SettingsKey kCurrentLoop{kSignalGenerator, "Current Signal Loop", "False"};
inline constexpr SettingsKey kCurrentLoopIncrement{kSignalGenerator, "Current Signal Loop Increment", "0"};
inline constexpr SettingsKey kNumberOfTones{kSignalGenerator, "NumberOfTones", "0"};
// Memory tones, numbered from 1. Defaults at start-up. The start of playback uses others: see
// MemoryTones.cpp.
inline constexpr SettingsKey kMemoryStart{kSignalGenerator, "Memory Signal Start", "1000"};
inline constexpr SettingsKey kMemoryEnd{kSignalGenerator, "Memory Signal End", "0"};
inline constexpr SettingsKey kMemorySweepTime{kSignalGenerator, "Memory Signal Sweep Time", "0"};
inline constexpr SettingsKey kMemoryLoopIncrement{kSignalGenerator, "Memory Signal Loop Increment", "0"};
inline constexpr SettingsKey kMemorySweep{kSignalGenerator, "Memory Signal Sweep", "False"};
inline constexpr SettingsKey kMemoryType{kSignalGenerator, "Memory Signal Type", "0"};
inline constexpr SettingsKey kMemoryLoop{kSignalGenerator, "Memory Signal Loop", "0"};
inline constexpr SettingsKey kMemorySelected{kSignalGenerator, "Memory Signal Selected", "False"};

// The Analyzer. Choices are indices; the length is relative to the default of the rate, 2 being the default.
inline constexpr SettingsKey kAnalyzerOpen{kAnalyzer, "Open", "0"};
inline constexpr SettingsKey kAnalyzerWidth{kAnalyzer, "Width", "1240"};
inline constexpr SettingsKey kAnalyzerHeight{kAnalyzer, "Height", "800"};
inline constexpr SettingsKey kAnalyzerLength{kAnalyzer, "Length", "2"};
inline constexpr SettingsKey kAnalyzerAverages{kAnalyzer, "Averages", "8"};
inline constexpr SettingsKey kAnalyzerBand{kAnalyzer, "Band", "0"};
inline constexpr SettingsKey kAnalyzerWeighting{kAnalyzer, "Weighting", "0"};
inline constexpr SettingsKey kAnalyzerChannel{kAnalyzer, "Channel", "0"};
inline constexpr SettingsKey kAnalyzerHarmonics{kAnalyzer, "Harmonics", "9"};
inline constexpr SettingsKey kAnalyzerShape{kAnalyzer, "Shape", "0"};
inline constexpr SettingsKey kAnalyzerPair{kAnalyzer, "Pair", "0"};
inline constexpr SettingsKey kAnalyzerNoise{kAnalyzer, "Noise", "0"};
inline constexpr SettingsKey kAnalyzerSide{kAnalyzer, "Side", "2"};
inline constexpr SettingsKey kAnalyzerSnap{kAnalyzer, "Snap", "1"};
inline constexpr SettingsKey kAnalyzerDither{kAnalyzer, "Dither", "0"};
inline constexpr SettingsKey kAnalyzerFrequency{kAnalyzer, "Frequency", "1000"};
inline constexpr SettingsKey kAnalyzerFrequency2{kAnalyzer, "Frequency 2", "7000"};
inline constexpr SettingsKey kAnalyzerRatio{kAnalyzer, "Ratio", "4"};
inline constexpr SettingsKey kAnalyzerLevel{kAnalyzer, "Level", "-1"};
inline constexpr SettingsKey kAnalyzerTones{kAnalyzer, "Tones", "3/oct"};
inline constexpr SettingsKey kAnalyzerLevelUnit{kAnalyzer, "Level Unit", "0"};
inline constexpr SettingsKey kAnalyzerThdUnit{kAnalyzer, "THD Unit", "0"};
inline constexpr SettingsKey kAnalyzerThdnUnit{kAnalyzer, "THD+N Unit", "0"};
inline constexpr SettingsKey kAnalyzerNotchFirst{kAnalyzer, "Notch First", "0"};
inline constexpr SettingsKey kAnalyzerNotchUnit{kAnalyzer, "Notch Unit", "0"};
inline constexpr SettingsKey kAnalyzerNoiseUnit{kAnalyzer, "Noise Unit", "0"};
inline constexpr SettingsKey kAnalyzerInputUnit{kAnalyzer, "Input Unit", "0"};
inline constexpr SettingsKey kAnalyzerPlotUnit{kAnalyzer, "Plot Unit", "0"};
inline constexpr SettingsKey kAnalyzerPeriods{kAnalyzer, "Periods", "1"};
inline constexpr SettingsKey kAnalyzerWavesFolded{kAnalyzer, "Waves Folded", "0"};

// The tab with runs; pairs belong to runs over frequency and over level.
inline constexpr std::array<SettingsKey, 2> kSweepFrom{
    {{kAnalyzer, "Sweep From", "20"}, {kAnalyzer, "Sweep Lowest Level", "-60"}}};
inline constexpr std::array<SettingsKey, 2> kSweepTo{
    {{kAnalyzer, "Sweep To", "20000"}, {kAnalyzer, "Sweep Highest Level", "-1"}}};
inline constexpr std::array<SettingsKey, 2> kSweepAmount{
    {{kAnalyzer, "Sweep Points", "6"}, {kAnalyzer, "Sweep Level Points", "2"}}};
inline constexpr std::array<SettingsKey, 2> kSweepSpacing{
    {{kAnalyzer, "Sweep Spacing", "0"}, {kAnalyzer, "Sweep Level Spacing", "0"}}};
inline constexpr std::array<SettingsKey, 2> kSweepOther{
    {{kAnalyzer, "Sweep Levels", "-1"}, {kAnalyzer, "Sweep Tones", "1000"}}};
inline constexpr SettingsKey kSweepOver{kAnalyzer, "Sweep Over", "0"};
inline constexpr SettingsKey kSweepSettleLevel{kAnalyzer, "Sweep Settling Level", "0.01"};
inline constexpr SettingsKey kSweepSettleThdn{kAnalyzer, "Sweep Settling THD+N", "0.3"};
inline constexpr SettingsKey kSweepPreview{kAnalyzer, "Sweep Preview", "0"};
inline constexpr SettingsKey kSweepLimited{kAnalyzer, "Sweep Limited", "0"};
inline constexpr SettingsKey kSweepLimitOf{kAnalyzer, "Sweep Limit Of", "0"};
inline constexpr SettingsKey kSweepLimit{kAnalyzer, "Sweep Limit", "-90"};
// The table with semicolons in place of line ends; empty without one.
inline constexpr SettingsKey kSweepLimitTable{kAnalyzer, "Sweep Limit Table", ""};
inline constexpr SettingsKey kSweepLimitName{kAnalyzer, "Sweep Limit Name", ""};
// Identifiers in the history of the kept runs that the plot shows, newest first, separated by commas.
inline constexpr SettingsKey kSweepKept{kAnalyzer, "Sweep Kept Runs", ""};

inline constexpr SettingsKey kLastTab{kWindows, "LastTab", "0"};
inline constexpr std::string_view kNeverPlaced = "-1";

// Full name of a numbered key: the number follows a blank ("THD 0", "Memory Signal Start 3").
std::string Numbered(const SettingsKey& key, int number);

}  // namespace keys
}  // namespace sonavex
