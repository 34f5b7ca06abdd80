#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace sonavex {

// The sound that measures how long a signal takes from the output to the input: 30 ms of a sine that rises
// from 500 to 1500 Hz, with a smooth start and end. Peak 1. Rates from 4000 Hz.
std::vector<double> PathBurst(double rateHz);

// The sample at which a path burst begins, within about 1 ms. Empty if there is none. The level does not
// matter, nor do noise below the burst, inversion and a change of phase. Correlates with the burst in both
// phases; of several peaks the highest one counts.
std::optional<std::size_t> FindPathBurst(std::span<const double> samples, double rateHz);

}  // namespace sonavex
