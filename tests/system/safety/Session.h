#pragma once

#include <optional>

#include "support/ChildProcess.h"

namespace sonavex {

// Runs the whole program through the test executable: opens it, performs the steps in order and closes the
// window. Every message box is confirmed. Texts shown go to standard output, one per line ("message: ...",
// "error: ..."), and "done" at the end. The status is the program's.
// measure starts the generator and waits for some blocks
// help opens the help and reads all pages
// file=PATH prints the report to this PDF file
// print=NAME prints the report on this printer
// run=PATH runs this program
// settings waits until the settings are written
// An error of the sound devices at the start is answered with the button that ends the program.
Arguments Session(const Arguments& steps);

std::optional<int> RunSession(int argc, char** argv);

}  // namespace sonavex
