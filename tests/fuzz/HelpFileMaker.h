#pragma once

#include <string>
#include <vector>

namespace sonavex::fuzz {

// A file inside a help file.
struct HelpPart {
    std::string name;  // with its slash
    std::string content;
};

// A help file with these parts, stored as they are, sealed. The names must fit one directory block.
std::string MakeHelpFile(const std::vector<HelpPart>& parts);

// The content with the checksum line that its compilation would add.
std::string Sealed(const std::string& content);

}  // namespace sonavex::fuzz
