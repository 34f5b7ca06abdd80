#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/audio/SweepTimer.h"
#include "core/generator/GeneratorPanel.h"
#include "support/GeneratorBench.h"
#include "support/RecordingSettings.h"
#include "support/World.h"

namespace sonavex {

// The generator's panel at 44100 Hz with recorded settings and messages and a virtual clock, driven
// through its controls.
class PanelRig : public testing::Test, public WorldOf<VirtualEventLoop, RecordingSettings> {
public:
    PanelRig() {
        panel.CurrentSignal().OnLevel = [this](std::int32_t level) { volumes.push_back(level); };
    }

    // Stores a value of the generator's section without recording it.
    void Store(std::string_view key, std::string_view value) {
        store.Stored.Save("Signal Generator", key, value);
    }
    std::string Stored(std::string_view key) const {
        return store.Stored.Get("Signal Generator", key, "(absent)");
    }
    // Initialises the panel from the stored values and clears the record.
    void Init() {
        panel.InitGenerator();
        log.Clear();
    }

    static void Type(TextBox& box, std::string_view text) { box.UserTypes(text); }
    static void MoveTo(Slider& slider, std::int32_t value) {
        slider.UserMoves(value);
        slider.UserReleases();
    }
    // Sets a sweep.
    void SetSweep(std::int32_t startHz, std::int32_t endHz, std::int32_t timeMs) {
        MoveTo(signal.sldSweepTime, timeMs);
        MoveTo(signal.sldStartFreq, startHz);
        MoveTo(signal.sldEndFreq, endHz);
    }
    void Select(std::int32_t position, bool selected = true) {
        memory.ToneList.UserSelects(position, selected);
    }
    // Adds the current signal `entries` times.
    void Add(int entries = 1) {
        for (int i = 0; i < entries; ++i) memory.cmdGenAdd.Press();
    }
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const ListBox::Item& item : memory.ToneList.Items()) lines.push_back(item.text);
        return lines;
    }
    ToneRecord& Tone(std::size_t index = 0) { return generator.Tones.at(index); }
    bool Shown(Colour colour) const { return signal.picGenRunning.BackColor() == colour; }

    Settings settings{store};
    GeneratorBench bench{44100};
    Generator& generator = bench.generator;
    SweepTimer timer{loop, generator, [] { return false; }};
    MenuItem mnuPrint;
    CheckBox chkMuteOutput;
    GeneratorNeeds needs{bench.shared, settings, dialogs, generator,
                         [this](bool enabled) { timer.SetEnabled(enabled); }};
    GeneratorPanel panel{needs, mnuPrint, chkMuteOutput};
    SignalControls& signal = panel.Controls;
    MemoryControls& memory = panel.MemoryControls;
    std::vector<std::int32_t> volumes;
};

}  // namespace sonavex
