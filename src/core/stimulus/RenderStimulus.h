#pragma once

#include "core/stimulus/StimulusPlan.h"
#include "core/stimulus/StimulusSignal.h"

namespace sonavex {

// The samples of a planned stimulus. Pure; any thread. A multitone of 2^20 samples takes seconds.
// The period of noise is always the same one.
StimulusSignal RenderStimulus(const StimulusPlan& plan);

}  // namespace sonavex
