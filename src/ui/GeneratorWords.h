#pragma once

#include <QString>

#include "core/generator/Generator.h"

namespace sonavex::ui {

// Describes the generator's state and its sweeps.
struct GeneratorWords {
    QString state;
    QString detail;  // empty when nothing sweeps

    // clockRuns: the sweep clock runs, so unfinished sweeps advance.
    static GeneratorWords Of(const Generator& generator, bool clockRuns);
};

}  // namespace sonavex::ui
