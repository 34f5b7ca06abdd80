#pragma once

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <sstream>
#include <string>

#include "fuzz/FuzzTarget.h"

// What the targets that measure a recording share.
namespace sonavex::fuzz {

// A file longer than the input: blocks of 2048 bytes that repeat its end are appended, so that a short input
// can be long enough to measure.
inline std::string RecordingOf(const Input& input, unsigned blocks) {
    constexpr std::size_t kBlockBytes = 2048;
    constexpr std::size_t kRepeatedBytes = 256;
    std::string content(input.Rest());
    const std::string end = content.substr(content.size() - std::min(content.size(), kRepeatedBytes));
    if (end.empty()) return content;
    const std::size_t wanted = content.size() + blocks * kBlockBytes;
    while (content.size() < wanted) content += end;
    return content;
}

// Captures the output of a stream during its lifetime.
class CapturedStream {
public:
    explicit CapturedStream(std::ostream& stream) : stream_(stream), own_(stream.rdbuf(text_.rdbuf())) {}
    ~CapturedStream() { stream_.rdbuf(own_); }
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;
    std::string Text() const { return text_.str(); }

private:
    std::ostringstream text_;
    std::ostream& stream_;
    std::streambuf* own_;
};

}  // namespace sonavex::fuzz
