#pragma once

#include <cstdint>
#include <string>

namespace sonavex {

// Screen geometry in device-independent pixels from the top left of the primary screen.
struct ScreenArea {
    std::int32_t width = 0;  // size of the primary screen's free area, where windows are centred
    std::int32_t height = 0;
    std::int32_t right = 0;  // right and bottom edge of all screens together; windows stay inside
    std::int32_t bottom = 0;
    std::int32_t left = 0;  // top left of the primary screen's free area
    std::int32_t top = 0;
};

// The computer that the program runs on.
class Desktop {
public:
    virtual ~Desktop() = default;

    // Whether another instance of the program runs for this user. The first call decides, and registers this
    // instance until it ends. An instance that was killed does not count.
    virtual bool AnotherInstanceRunning() = 0;

    // Major version of the operating system.
    virtual std::int32_t OsMajorVersion() = 0;

    // Folder of the program file, without a trailing separator.
    virtual std::string ApplicationFolder() = 0;

    virtual ScreenArea Screens() = 0;
};

}  // namespace sonavex
