#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace sonavex {

// The help file made by the build.
inline std::string HelpFile() {
    return SONAVEX_HELP_FILE;
}

inline std::string BytesOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string content((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    return content;
}

}  // namespace sonavex
