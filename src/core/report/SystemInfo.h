#pragma once

#include <optional>
#include <string>

#include "core/ports/Dialogs.h"
#include "core/ports/Launcher.h"

namespace sonavex {

// A value of the machine's configuration as text: without its terminating zero; a number in hexadecimal,
// "&hFF". Nothing when the key or the value is missing.
std::optional<std::string> GetKeyValue(Launcher& launcher, RootKey root, const std::string& key,
                                       const std::string& name);

// Starts the tool that tells about the computer; says so where there is none.
void StartSysInfo(Launcher& launcher, Dialogs& dialogs);

}  // namespace sonavex
