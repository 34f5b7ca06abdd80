#pragma once

#include <string>

#include "core/ports/SoundSystem.h"
#include "platform/pulse/PulseContext.h"

namespace sonavex {

enum class PulseDirection { kPlayback, kCapture };

// The server's sinks or sources: the default device first, then the others in the server's order. Sources
// include the monitors of the sinks. Empty when the server has no device.
SoundDeviceList ListPulseDevices(PulseContext& context, PulseDirection direction,
                                 const PulseDeadline& deadline);

// The device with this name, or the default one for an empty name. Throws kNoDriver when there is none.
SoundDeviceInfo FindPulseDevice(PulseContext& context, PulseDirection direction,
                                const std::string& identifier, const PulseDeadline& deadline);

}  // namespace sonavex
