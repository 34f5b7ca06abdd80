#include "core/run/Settling.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonavex {
namespace {

// What neither record defines does not differ.
bool ValuesAgree(const Value& one, const Value& other, double limitDb) {
    if (!one.value || !other.value) return one.value.has_value() == other.value.has_value();
    const double spread = 2.0 * std::hypot(one.uncertainty.value_or(0.0), other.uncertainty.value_or(0.0));
    return std::abs(*one.value - *other.value) <= std::max(spread, limitDb);
}

}  // namespace

Settling::State Settling::Add(const Reading& record, bool lossReported) {
    if (state_ != State::kSettling) return state_;
    ++records_;
    if (!record.Valid()) {
        const Void& first = record.voids.front();
        if (first.code != VoidCode::kDisturbed || lossReported)
            return Fail({Name(first.code), first.sentence});
        previous_.reset();
    } else {
        if (Agrees(record)) return state_ = State::kSettled;
        previous_ = record;
    }
    if (records_ < limits_.records) return state_;
    return Fail(
        {"not settled", "Level or THD+N still changed after " + std::to_string(records_) + " records."});
}

Settling::State Settling::Fail(PointFault fault) {
    fault_ = std::move(fault);
    return state_ = State::kVoid;
}

bool Settling::Agrees(const Reading& record) const {
    return previous_ && ValuesAgree(previous_->levelDbfs, record.levelDbfs, limits_.levelDb) &&
           ValuesAgree(previous_->thdnDb, record.thdnDb, limits_.thdnDb);
}

}  // namespace sonavex
