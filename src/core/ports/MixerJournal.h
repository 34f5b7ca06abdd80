#pragma once

#include <string>

namespace sonavex {

// A text that survives the sudden end of the program, stored apart from the settings. Failing to store it is
// not an error: the levels are then restored only at a regular end.
class MixerJournal {
public:
    virtual ~MixerJournal() = default;

    // The text written last; empty if there is none.
    virtual std::string Read() = 0;
    // The text is on the disk when Write returns. An empty text deletes the journal.
    virtual void Write(const std::string& text) = 0;
};

}  // namespace sonavex
