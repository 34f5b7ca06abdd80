#pragma once

#include <QString>

#include "core/generator/Generator.h"

namespace sonavex::ui {

// What the generator does, in words for the face: the state, and how its sweeps stand.
struct GeneratorWords {
    QString state;
    QString detail;  // empty when nothing sweeps

    // clockRuns: sweeps that have not ended advance.
    static GeneratorWords Of(const Generator& generator, bool clockRuns);
};

}  // namespace sonavex::ui
