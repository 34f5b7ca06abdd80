#pragma once

#include <string>

namespace sonavex {

// A text that survives the sudden end of the program, kept apart from the settings.
// User-interface thread only. A journal that cannot be kept is no error: the instrument then only
// gives the levels back at a regular end.
class MixerJournal {
public:
    virtual ~MixerJournal() = default;

    // What was written last; empty when nothing is kept.
    virtual std::string Read() = 0;
    // On the disk when it returns. An empty text keeps nothing.
    virtual void Write(const std::string& text) = 0;
};

}  // namespace sonavex
