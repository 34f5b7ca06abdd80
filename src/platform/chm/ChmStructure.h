#pragma once

#include <string>
#include <string_view>

namespace sonavex {

// What is looked at before the library that unpacks help files gets to see one: it believes what a file
// says, and damaged compressed data makes it write where it must not. All of them throw HelpFileError.

// The content of a file that is not too large for a help file.
std::string ReadHelpFile(const std::string& file);

// That the content is as it was compiled: its last line, which the compilation adds, gives the checksum
// and the length of what stands before it, as the program cksum prints them.
void CheckSeal(std::string_view content);

// The frame: headers, directory blocks and their entries, extents inside the file, the tables of the
// compressed part.
void CheckStructure(std::string_view content);

}  // namespace sonavex
