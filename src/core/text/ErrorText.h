#pragma once

#include <string>

#include "core/support/RuntimeError.h"

namespace sonavex {

// The text of a message box about an error: "Run-time error '13':", an empty line, the error's text.
// Lines end with a carriage return.
std::string ErrorText(const RuntimeError& error);

// The same as one line: "Run-time error '13': Type mismatch".
std::string ErrorLine(const RuntimeError& error);

}  // namespace sonavex
