#pragma once

#include <string>

#include "core/ports/Dialogs.h"
#include "core/ports/Launcher.h"

namespace sonavex {

// Opens a file, program or web address; shows a message if that fails.
void OpenDocument(Launcher& launcher, Dialogs& dialogs, const std::string& target);

// Starts a command line; shows a message if that fails.
void RunCommand(Launcher& launcher, Dialogs& dialogs, const std::string& commandLine);

}  // namespace sonavex
