#pragma once

#include <string>
#include <vector>

namespace sonavex::fuzz {

// A file inside a help file.
struct HelpPart {
    std::string name;  // with a leading slash
    std::string content;
};

// A sealed help file with these parts, uncompressed. The names must fit into one directory block.
std::string MakeHelpFile(const std::vector<HelpPart>& parts);

// The content with the checksum line that the compilation adds.
std::string Sealed(const std::string& content);

}  // namespace sonavex::fuzz
