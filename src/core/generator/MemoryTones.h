#pragma once

#include <cstdint>

#include "core/generator/CurrentSignal.h"
#include "core/generator/GeneratorEnvironment.h"
#include "core/generator/PlayInterlock.h"
#include "core/generator/SignalControls.h"

namespace sonavex {

// The stored signals: up to eight lines of a list, kept in the settings under numbered keys. All
// selected ones sound together, each with its own sweep. User-interface thread only.
class MemoryTones {
public:
    // Takes the controls' events. All must outlive this object. chkMuteOutput: stored with the tones.
    MemoryTones(const GeneratorEnvironment& environment, MemoryControls& controls, CurrentSignal& current,
                SignalControls& signal, PlayInterlock& interlock, const CheckBox& chkMuteOutput);
    MemoryTones(const MemoryTones&) = delete;
    MemoryTones& operator=(const MemoryTones&) = delete;

    // Start-up: the list and the records 1 to 8 from the settings, as many as NumTones says. More than
    // eight, or a waveform that does not exist, raise error 9, a value that does not convert 13 or 6;
    // the text names the key.
    void Load();
    // The whole section of the generator anew, from list and controls.
    void WriteMemoryToRegistry();

    void ToneList_Click();
    void cmdGenAdd_Click();
    void cmdRemove_Click();
    // Starts the selected entries or stops. Whatever plays is stopped. More than nine entries raise
    // error 9, a stored value that does not convert 13 or 6, a frequency of 0 Hz 11, one below 5 (both
    // name the key), one without a finite period 6: then nothing plays.
    void cmdStartMemory_Click();

private:
    void WriteEntry(std::int32_t position);
    void Start();
    void StartSelected();
    void StartEntry(std::int32_t position);
    void Stop();

    GeneratorEnvironment env_;
    MemoryControls& controls_;
    CurrentSignal& current_;
    SignalControls& signal_;
    PlayInterlock& interlock_;
    const CheckBox& chkMuteOutput_;
};

}  // namespace sonavex
