#pragma once

#include <optional>
#include <span>

#include "core/analyzer/FitLines.h"
#include "core/analyzer/Reading.h"

namespace sonavex {

struct Damage {
    std::optional<Void> disturbed;          // a break or a burst
    std::optional<Warning> impulsiveNoise;  // bursts that recur
};

// Searches a record for samples that were lost, repeated or overwritten. Two detectors compare parts of the
// record with each other, so that noise, distortion, hum, modulation and drift of any size pass.
// - Break: the level or the phase of the carrier steps.
// - Burst: a few pieces of the residual are far louder than most.
// residual: what the fit of the record leaves. carrier: the tone in which a lost sample leaves the largest
// error. thdn: distortion and noise relative to the carrier. startSeconds: added to the times in the
// sentences.
Damage FindDamage(std::span<const double> residual, const FittedLine& carrier, double rateHz, double thdn,
                  double startSeconds = 0.0);

// The same for noise without a carrier: bursts alone. bits: of a sample; a burst is at least as loud as one
// code, because single codes flicker in quiet noise.
Damage FindDamageOfNoise(std::span<const double> noise, int bits, double rateHz, double startSeconds = 0.0);

// A carrier for FindDamage. lines: the tones of the record, at least one.
const FittedLine& DamageCarrier(std::span<const FittedLine> lines);

}  // namespace sonavex
