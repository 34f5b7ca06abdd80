#pragma once

#include <string>

#include "core/text/Numbers.h"

namespace sonavex {

// Version number and descriptive texts of the program.
struct ApplicationVersion {
    int major = 0;
    int minor = 0;
    int revision = 0;
    std::string comment;
};

// "2.1.14"
inline std::string VersionNumber(const ApplicationVersion& version) {
    return CStr(version.major) + "." + CStr(version.minor) + "." + CStr(version.revision);
}

}  // namespace sonavex
