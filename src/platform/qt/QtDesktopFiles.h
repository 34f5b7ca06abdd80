#pragma once

#include <QString>
#include <string>

#include "core/ports/DesktopFiles.h"

namespace sonavex {

// Files in the user's desktop folder: "desktop" in the folder that the environment variable "userprofile"
// names, where it is set, else the desktop folder of the platform.
class QtDesktopFiles : public DesktopFiles {
public:
    // A folder that is missing is created. On a disk that is full the file keeps what was written.
    void Append(const std::string& name, const std::string& text) override;
    // Where the folder allows it, the old content stays until the new one is complete.
    void Replace(const std::string& name, const std::string& text) override;
    void Delete(const std::string& name) override;

    static QString Folder();
};

}  // namespace sonavex
