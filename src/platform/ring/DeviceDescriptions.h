#pragma once

#include "core/ports/SoundSystem.h"

namespace sonavex {

// Appends " [identifier]" to each description that several devices share, so that a description names one
// device. The devices are those of one side. The mixers use these descriptions as names.
void DistinguishDescriptions(SoundDeviceList& devices);

}  // namespace sonavex
