#pragma once

#include <filesystem>

#include "platform/plain/IniText.h"

namespace sonavex {

// Replaces the file by the sections' text in one step, readable by its owner only: whoever reads it sees
// the old file or the new one. False when that did not succeed; the old file then stands as it was.
// The toolkit's settings class does the writing with IniText as its format, because its own format turns
// commas into lists and does not keep every character.
// A process that is killed leaves no more than files whose names begin with the file's and ".new".
bool ReplaceIniFile(const std::filesystem::path& file, const IniSections& sections);

// Removes what killed processes left beside the file. Nobody else may be writing it.
void RemoveUnfinished(const std::filesystem::path& file);

}  // namespace sonavex
