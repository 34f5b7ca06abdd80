#pragma once

#include <string>
#include <string_view>

namespace sonavex {

// Checks made before libchm opens a file: it trusts the file's lengths and writes out of bounds on damaged
// compressed data. Each check throws HelpFileError.

// The content of the file. Refuses a file that is too large for a help file.
std::string ReadHelpFile(const std::string& file);

// Requires the content to be as it was compiled. The build appends a last line with the checksum and the
// length of the content before it, as the program cksum prints them.
void CheckSeal(std::string_view content);

// Requires a valid structure: headers, directory blocks and their entries, extents inside the file, tables of
// the compressed part.
void CheckStructure(std::string_view content);

}  // namespace sonavex
