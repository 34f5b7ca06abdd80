#pragma once

#include <cstdint>

namespace sonavex {

// Numbers of the help file's topics.
namespace help_topic {
inline constexpr std::int32_t kSoundDevices = 210;
inline constexpr std::int32_t kSoundDeviceError = 305;
}  // namespace help_topic

// The help file. User-interface thread only.
class Help {
public:
    virtual ~Help() = default;

    // Shows a topic of the help file; says so where there is no help file. Never fails.
    virtual void ShowTopic(std::int32_t topic) = 0;

    // The same with the help file's table of contents.
    virtual void ShowContents() = 0;
};

}  // namespace sonavex
