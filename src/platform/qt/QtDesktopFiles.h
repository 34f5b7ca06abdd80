#pragma once

#include <QString>
#include <string>

#include "core/ports/DesktopFiles.h"

namespace sonavex {

// Files in the user's desktop folder. When the environment variable "userprofile" is set, that is the folder
// "desktop" in the folder it names; otherwise it is the platform's desktop folder.
class QtDesktopFiles : public DesktopFiles {
public:
    // Creates the folder when it is missing. When the disk becomes full, the file keeps what was written.
    void Append(const std::string& name, const std::string& text) override;
    // Atomic where the rights of the folder allow a rename.
    void Replace(const std::string& name, const std::string& text) override;
    void Delete(const std::string& name) override;

    static QString Folder();
};

}  // namespace sonavex
