#pragma once

#include <pulse/sample.h>

namespace sonavex {

// Detects that an open device changes the format or the rate of its samples. The server is asked once a
// second.
class FormatWatch {
public:
    // The server's next answer.
    void Take(const pa_sample_spec& format) noexcept {
        // A channel more or less changes nothing for a stream.
        const bool same = format.format == format_.format && format.rate == format_.rate;
        if (answers_ < kProvisionalAnswers)
            ++answers_;
        else if (!same)
            changed_ = true;
        format_ = format;
    }
    bool Changed() const noexcept { return changed_; }

private:
    // PipeWire may report a format that the device can have until the device runs.
    static constexpr int kProvisionalAnswers = 4;

    pa_sample_spec format_{};
    int answers_ = 0;
    bool changed_ = false;
};

}  // namespace sonavex
