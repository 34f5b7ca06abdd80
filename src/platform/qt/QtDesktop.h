#pragma once

#include <optional>
#include <string>

#include "core/ports/Desktop.h"

namespace sonavex {

// The computer as the toolkit and the system see it. An application object must exist.
class QtDesktop : public Desktop {
public:
    // The name of the lock file by which instances see each other.
    explicit QtDesktop(std::string instanceName = "sonavex");
    ~QtDesktop() override;
    QtDesktop(const QtDesktop&) = delete;
    QtDesktop& operator=(const QtDesktop&) = delete;

    // The instance holds a lock in the user's run-time folder, or in the folder of the settings where that
    // one is missing or open to others; the system releases it however the program ends, at the latest with
    // this object. Where no lock can be had, no other instance is seen.
    bool AnotherInstanceRunning() override;
    // 10, or SONAVEX_OS_MAJOR when it is a whole number.
    std::int32_t OsMajorVersion() override;
    std::string ApplicationFolder() override;
    ScreenArea Screens() override;

private:
    std::string instanceName_;
    std::optional<bool> anotherRuns_;
    int lock_ = -1;
};

}  // namespace sonavex
