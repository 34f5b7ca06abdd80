#pragma once

#include <filesystem>

#include "platform/plain/IniText.h"

namespace sonavex {

// Replaces the file atomically by the text of the sections. The new file is readable by its owner only. False
// when that failed; the old file is then unchanged.
// QSettings writes the file, with IniText as its format, because its own format turns commas into lists and
// changes some characters.
// A process that is killed may leave files whose names begin with the file's name and ".new".
bool ReplaceIniFile(const std::filesystem::path& file, const IniSections& sections);

// Removes the files that killed processes left. Call it while no other process writes the file.
void RemoveUnfinished(const std::filesystem::path& file);

}  // namespace sonavex
