#pragma once

#include <cstdint>

#include "core/generator/CurrentSignal.h"
#include "core/generator/GeneratorNeeds.h"
#include "core/generator/PlayInterlock.h"
#include "core/generator/SignalControls.h"

namespace sonavex {

// The memory tones: up to eight lines of a list, stored in the settings under numbered keys. All selected
// tones play together, each with its own sweep.
class MemoryTones {
public:
    // Handles the events of the controls. All referenced objects must outlive this object. chkMuteOutput is
    // stored with the tones.
    MemoryTones(const GeneratorNeeds& needs, MemoryControls& controls, CurrentSignal& current,
                SignalControls& signal, PlayInterlock& interlock, const CheckBox& chkMuteOutput);
    MemoryTones(const MemoryTones&) = delete;
    MemoryTones& operator=(const MemoryTones&) = delete;

    // At start-up: loads the list and the records 1 to NumTones from the settings. More than eight tones, or
    // an unknown waveform, raise error 9, a value that does not convert 13 or 6; the text names the key.
    void Load();
    // Stores the generator's whole section from the list and the controls.
    void WriteMemoryToRegistry();

    void ToneList_Click();
    void cmdGenAdd_Click();
    void cmdRemove_Click();
    // Starts the selected entries or stops. Stops whatever is playing. If a selected entry starts, or ends
    // its sweep, above half the sampling rate, shows a message and does nothing. Nothing plays after these
    // errors: 9 for more than nine entries, 13 or 6 for a stored value that does not convert, 11 for a
    // frequency of 0 Hz and 5 for one below (the text names the key), 6 for a frequency without a finite
    // period.
    void cmdStartMemory_Click();

private:
    void WriteEntry(std::int32_t position);
    void Start();
    // False after a message.
    bool StartSelected();
    // Reads the selected entries into a table. False after a message.
    bool ReadSelected(ToneTable& tones, std::int32_t& count);
    void ReadEntry(std::int32_t position, ToneRecord& tone);
    bool CheckRange(std::int32_t position, const ToneRecord& tone);
    void Stop();

    GeneratorNeeds needs_;
    MemoryControls& controls_;
    CurrentSignal& current_;
    SignalControls& signal_;
    PlayInterlock& interlock_;
    const CheckBox& chkMuteOutput_;
};

}  // namespace sonavex
