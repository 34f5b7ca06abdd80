#pragma once

#include <optional>
#include <string>

#include "support/ChildProcess.h"

namespace sonavex {

// Runs the whole program through the test executable until the dialog of this name is open, and writes
// "open", the number of the process and that of the main window to standard output. The status is the
// program's. The names:
// - about, devices, help, mixers, print: from the menu
// - sweep: the about box during a sweep
// - question: the question before the update check
// - message: a message box over the print dialog
// - files: the file dialog over the print dialog
// - menu: the context menu of that file dialog, in which the documents' folder must have a PDF file
// - delete: the question of that file dialog before it deletes the first PDF file
// - entry: a message of an error, while an entry of 440 Hz is not complete
// - printers: no dialog; the program waits for the list of printers
// - restart=MODULE: unloads this module of the server, the sink "other", which is then selected; the error
//   dialog opens inside the restart of the engine
// - diagnostics=MODULE: the same, with the report of the sound devices running
// - start: the error dialog of a start that fails
Arguments OpenDialog(const std::string& name);

std::optional<int> RunOpenDialog(int argc, char** argv);

}  // namespace sonavex
