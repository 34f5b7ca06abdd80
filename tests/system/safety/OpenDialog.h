#pragma once

#include <optional>
#include <string>

#include "support/ChildProcess.h"

namespace sonavex {

// Runs the whole program through the test executable until the dialog of this name is open, and writes "open"
// and the number of the process to standard output. The status is the program's.
// about, devices, help, mixers, print: from the menu
// sweep: the about box during a sweep
// question: the question before the update check
// message: a message box over the print dialog
// files: the file dialog over the print dialog
// printers: no dialog; the program waits for the list of printers
// restart=MODULE: unloads this module of the server, the sink "other", which is then selected; the error
//   dialog opens inside the restart of the engine
// diagnostics=MODULE: the same, with the report of the sound devices running
// start: the error dialog of a start that fails
Arguments OpenDialog(const std::string& name);

std::optional<int> RunOpenDialog(int argc, char** argv);

}  // namespace sonavex
