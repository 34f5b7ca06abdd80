#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "core/settings/Settings.h"

namespace sonavex {

// What a calibration belongs to: one channel of a device at a sampling rate.
struct CalibratedChannel {
    enum class Direction { kInput, kOutput };
    Direction direction = Direction::kInput;
    // Identifier of the device, that of the real one for the primary device. Empty: unknown, and cannot be
    // calibrated.
    std::string deviceId;
    std::size_t channel = 0;  // 0 left, 1 right
    std::int32_t rateHz = 48000;
    friend bool operator==(const CalibratedChannel&, const CalibratedChannel&) = default;
};

// The voltage of a full-scale sine, and when it was found.
struct Calibration {
    double fullScaleVolts = 1;  // rms
    std::string date;           // local time: "2026-11-22 17:05:00"

    // A sine of dbfs has `volts` rms.
    static Calibration From(double dbfs, double volts, std::string date);

    double Volts(double dbfs) const;
    double Dbv(double dbfs) const;
    double Dbu(double dbfs) const;
    double DbfsOfVolts(double volts) const;
    friend bool operator==(const Calibration&, const Calibration&) = default;
};

// The stored calibrations, in the section "Calibration". A stored value that is damaged counts as none.
class Calibrations {
public:
    // The settings must outlive this object.
    explicit Calibrations(Settings& settings) : settings_(settings) {}

    std::optional<Calibration> Of(const CalibratedChannel& channel) const;
    // Does nothing for a channel without a device.
    void Store(const CalibratedChannel& channel, const Calibration& calibration);
    void Remove(const CalibratedChannel& channel);

private:
    Settings& settings_;
};

}  // namespace sonavex
