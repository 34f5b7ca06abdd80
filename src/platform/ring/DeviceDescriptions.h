#pragma once

#include <string>

#include "core/ports/SoundSystem.h"

namespace sonavex {

// Appends " [identifier]" to each description that several devices share, so that a description names one
// device. The devices are those of one side. The mixers use these descriptions as names.
void DistinguishDescriptions(SoundDeviceList& devices);

// The description with its identifier, whether or not other devices share the description.
std::string LastingDescription(const SoundDeviceInfo& device);

// Whether the name is the device's distinguished description or its lasting one.
bool IsNamed(const SoundDeviceInfo& device, const std::string& name);

}  // namespace sonavex
