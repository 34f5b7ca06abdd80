#pragma once

#include <string>

namespace sonavex {

// Names of the two files about failed sound devices.
namespace desktop_file {
inline constexpr const char* kError = "Quenby Error.txt";
inline constexpr const char* kDiagnostics = "Quenby DirectX Test.txt";
}  // namespace desktop_file

// The instrument's files on the user's desktop, each known by its name without a folder. Writing creates
// what is missing. Failures are RuntimeErrors with a text for the user: 61 when the disk is full, 70
// without permission, 75 otherwise. User-interface thread only.
class DesktopFiles {
public:
    virtual ~DesktopFiles() = default;

    // Adds text in UTF-8 at the end of a file.
    virtual void Append(const std::string& name, const std::string& text) = 0;
    // Makes the text the whole content of a file.
    virtual void Replace(const std::string& name, const std::string& text) = 0;
    // Deleting an absent file is no error.
    virtual void Delete(const std::string& name) = 0;
};

}  // namespace sonavex
