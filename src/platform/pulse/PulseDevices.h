#pragma once

#include <string>

#include "core/ports/SoundSystem.h"
#include "platform/pulse/PulseContext.h"

namespace sonavex {

enum class PulseDirection { kPlayback, kCapture };

// The server's sinks or sources: its default device first, then the others in the server's order.
// Sources include the monitors of the sinks. Empty when the server has none.
SoundDeviceList ListPulseDevices(PulseContext& context, PulseDirection direction,
                                 const PulseDeadline& deadline);

// The device of that name, for an empty name the default one. Throws kNoDriver.
SoundDeviceInfo FindPulseDevice(PulseContext& context, PulseDirection direction,
                                const std::string& identifier, const PulseDeadline& deadline);

}  // namespace sonavex
