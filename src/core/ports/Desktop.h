#pragma once

#include <cstdint>
#include <string>

namespace sonavex {

// Where windows can be, in device-independent pixels from the top left of the primary screen.
struct ScreenArea {
    std::int32_t width = 0;  // primary screen: where a window is centred
    std::int32_t height = 0;
    std::int32_t right = 0;  // edges of all screens together: what a window must not leave
    std::int32_t bottom = 0;
};

// What the instrument asks of the computer it runs on. User-interface thread only.
class Desktop {
public:
    virtual ~Desktop() = default;

    // Whether another instance of the program runs for this user. The first call decides; a previous
    // run that was killed does not count. Until the program ends, others then see this instance.
    virtual bool AnotherInstanceRunning() = 0;

    // Major version number of the operating system's generation.
    virtual std::int32_t OsMajorVersion() = 0;

    // Folder that the program was started from, without a separator at its end.
    virtual std::string ApplicationFolder() = 0;

    virtual ScreenArea Screens() = 0;
};

}  // namespace sonavex
