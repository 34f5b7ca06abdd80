#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace sonavex {

// Describes for the user, in one line, why a file cannot be read or written.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A recording that is open for reading: samples as doubles, never by way of 16 bits. Full scale is 1. Used by
// one thread at a time. Throws FileError when the file is damaged or shorter than its header says.
class OpenRecording {
public:
    virtual ~OpenRecording() = default;

    // 4000 to 192000.
    virtual std::int32_t RateHz() const noexcept = 0;
    // Bits of a sample: those of integers, stored as they are or without loss; 24 for floats of 32 bits and
    // 53 for those of 64; 16 for formats with loss, except that A-law and µ-law have 8.
    virtual int Bits() const noexcept = 0;
    virtual bool FloatingPoint() const noexcept = 0;
    virtual int Channels() const noexcept = 0;
    // Its length. Empty if it is not known, or if the file can only be read from its beginning.
    virtual std::optional<std::int64_t> Frames() const noexcept = 0;

    // Fills `stereo` (interleaved) with the next frames and returns their number, which is smaller at the end
    // only. One channel feeds both; of many the first two count. Floating-point files may deliver infinities
    // and NaN.
    virtual std::size_t Read(std::span<double> stereo) = 0;
    // Reads on from this frame, 0 to Frames(). Only if Frames() is known.
    virtual void MoveTo(std::int64_t frame) = 0;
};

// Recordings that are measured, and the files that results are written to. Paths are UTF-8. Any thread.
class MeasurementFiles {
public:
    virtual ~MeasurementFiles() = default;

    // Throws FileError for a file that cannot be read, is empty, has a rate outside the limits, or is a WAV,
    // AIFF or CAF file that is shorter than its header says.
    virtual std::unique_ptr<OpenRecording> Open(const std::string& path) const = 0;

    // The files that are written replace older ones atomically when they are complete. Both throw FileError
    // and then leave an older file as it was.
    virtual void WriteText(const std::string& path, const std::string& text) const = 0;
    // A WAV file with one channel of 32-bit floats. comment: lines of text stored in the file; may be empty.
    virtual void WriteFloatWav(const std::string& path, std::span<const double> samples, std::int32_t rateHz,
                               const std::string& comment) const = 0;
};

}  // namespace sonavex
