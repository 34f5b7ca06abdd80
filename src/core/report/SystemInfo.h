#pragma once

#include <optional>
#include <string>

#include "core/ports/Dialogs.h"
#include "core/ports/Launcher.h"

namespace sonavex {

// A configuration value as text: strings without their terminating zero, numbers in hexadecimal ("&hFF").
// Nothing if the key or the value is missing.
std::optional<std::string> GetKeyValue(Launcher& launcher, RootKey root, const std::string& key,
                                       const std::string& name);

// Starts the system information tool; shows a message if there is none.
void StartSysInfo(Launcher& launcher, Dialogs& dialogs);

}  // namespace sonavex
