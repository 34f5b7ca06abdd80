#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "support/ChildProcess.h"

namespace sonavex {

// The help window with a book of one page, run by the test executable in the folder `inFolder`: it shows
// the page, follows each of its links with the keyboard, prints what there is to read and ends.
Arguments ShowHelpPage(const std::filesystem::path& page, const std::filesystem::path& inFolder);

// Asks the platform for this address, as a page must not.
Arguments OpenAddress(const std::string& address);

std::optional<int> RunShowHelpPage(int argc, char** argv);
std::optional<int> RunOpenAddress(int argc, char** argv);

}  // namespace sonavex
