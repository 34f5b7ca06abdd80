#pragma once

#include <cmath>

#include "core/analyzer/Reading.h"

namespace sonavex {

// How often a value's interval contained the truth, and how often a bound lay above it.
struct Score {
    int hits = 0;
    int values = 0;
    int bounds = 0;
    int boundsAbove = 0;

    void Count(const Value& value, double truth) {
        if (value.atMost) {
            ++bounds;
            boundsAbove += *value.value >= truth;
        } else if (value.value) {
            ++values;
            hits += std::abs(*value.value - truth) <= *value.uncertainty;
        }
    }

    double Hits() const { return static_cast<double>(hits) / values; }
    double BoundsAbove() const { return static_cast<double>(boundsAbove) / bounds; }
};

}  // namespace sonavex
