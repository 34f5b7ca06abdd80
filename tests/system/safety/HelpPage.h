#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "support/ChildProcess.h"

namespace sonavex {

// Runs the help window with a book of one page in the folder `inFolder`: shows the page, follows each link
// with the keyboard, prints the text and ends.
Arguments ShowHelpPage(const std::filesystem::path& page, const std::filesystem::path& inFolder);

// Opens this address through the platform, which a page must not do.
Arguments OpenAddress(const std::string& address);

std::optional<int> RunShowHelpPage(int argc, char** argv);
std::optional<int> RunOpenAddress(int argc, char** argv);

}  // namespace sonavex
