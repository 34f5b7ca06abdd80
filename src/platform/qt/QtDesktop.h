#pragma once

#include <string>

#include "core/ports/Desktop.h"
#include "platform/plain/SingleInstance.h"

namespace sonavex {

// The computer as Qt and the system describe it. An application object must exist.
class QtDesktop : public Desktop {
public:
    // Instances with the same name use the same lock file.
    explicit QtDesktop(const std::string& instanceName = "sonavex");

    // The lock file is in the folder of the settings. Where it cannot be created or locked there, it is in
    // the user's runtime folder.
    bool AnotherInstanceRunning() override { return instance_.AnotherRuns(); }
    // SONAVEX_OS_MAJOR when it is a whole number of 1 to 1000, otherwise 10.
    std::int32_t OsMajorVersion() override;
    std::string ApplicationFolder() override;
    ScreenArea Screens() override;

private:
    SingleInstance instance_;
};

}  // namespace sonavex
