#pragma once

#include <pulse/pulseaudio.h>

#include <cstdint>
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

// Those of kExtendedRates at which the device runs now. Throws as FindPulseDevice.
RateList ExtendedPulseRates(PulseContext& context, PulseDirection direction, const std::string& identifier,
                            const PulseDeadline& deadline);

// Whether a device with these properties is software: no card is behind it.
bool IsVirtualDevice(const pa_proplist* properties);

// PipeWire's rate, at which it runs virtual devices, whatever rate they report. 0 for another server.
std::uint32_t GraphRateHz(const pa_server_info& info);

}  // namespace sonavex
