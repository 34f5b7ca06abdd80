#pragma once

#include <string>

namespace sonavex {

// Names of the two files about failed sound devices.
namespace desktop_file {
inline constexpr const char* kError = "Quenby Error.txt";
inline constexpr const char* kDiagnostics = "Quenby DirectX Test.txt";
}  // namespace desktop_file

// Files on the user's desktop, addressed by name without a folder. Writing creates missing files and folders.
// Failures are RuntimeErrors with a text for the user: 61 disk full, 70 no permission, 75 any other failure.
class DesktopFiles {
public:
    virtual ~DesktopFiles() = default;

    // Appends UTF-8 text to a file.
    virtual void Append(const std::string& name, const std::string& text) = 0;
    // Replaces the content of a file with the text.
    virtual void Replace(const std::string& name, const std::string& text) = 0;
    // Deleting an absent file is no error.
    virtual void Delete(const std::string& name) = 0;
};

}  // namespace sonavex
