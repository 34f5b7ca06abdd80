#pragma once

#include <optional>
#include <string>

#include "core/analyzer/Reading.h"

namespace sonavex {

// When two successive records agree, beyond their uncertainties.
struct SettlingLimits {
    double levelDb = 0.01;
    double thdnDb = 0.3;
    int records = 10;  // after as many a point is void
};

// Why a point of a run has no value.
struct PointFault {
    std::string code;      // "not settled", "unsteady tone", or the name of a VoidCode
    std::string sentence;  // for the user
};

// Decides when a device under test has settled, from records that do not overlap: two successive ones agree
// in level and THD+N within 2 sqrt(U1^2 + U2^2), U being their uncertainties, or within the limits where
// these are wider.
class Settling {
public:
    enum class State { kSettling, kSettled, kVoid };

    explicit Settling(const SettlingLimits& limits) : limits_(limits) {}

    // The values of the next record alone. A record that is disturbed is one of a device that settles, unless
    // the engine has reported a loss. A record that is void for another reason voids the point.
    State Add(const Reading& record, bool lossReported = false);

    State Now() const noexcept { return state_; }
    // Only when the point is void.
    const PointFault& Fault() const noexcept { return fault_; }
    int Records() const noexcept { return records_; }

private:
    State Fail(PointFault fault);
    bool Agrees(const Reading& record) const;

    SettlingLimits limits_;
    State state_ = State::kSettling;
    PointFault fault_;
    int records_ = 0;
    std::optional<Reading> previous_;
};

}  // namespace sonavex
