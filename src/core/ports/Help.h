#pragma once

#include <cstdint>

namespace sonavex {

// Numbers of the help file's topics.
namespace help_topic {
inline constexpr std::int32_t kSoundDevices = 210;
inline constexpr std::int32_t kSoundDeviceError = 305;
inline constexpr std::int32_t kAnalyzer = 410;
inline constexpr std::int32_t kHistory = 420;
}  // namespace help_topic

// The help file.
class Help {
public:
    virtual ~Help() = default;

    // Shows a topic of the help file, or a message if the help file is missing or damaged. Never fails.
    virtual void ShowTopic(std::int32_t topic) = 0;

    // Like ShowTopic, for the table of contents.
    virtual void ShowContents() = 0;
};

}  // namespace sonavex
