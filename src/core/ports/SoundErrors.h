#pragma once

#include <cstdint>

namespace sonavex {

// Published DirectSound result codes with which sound devices report failures, as the signed 32-bit
// numbers that a RuntimeError carries.
namespace sound_error {
constexpr std::int32_t Code(std::uint32_t result) noexcept {
    return static_cast<std::int32_t>(result);
}

inline constexpr std::int32_t kObjectNotFound = Code(0x88781161U);
inline constexpr std::int32_t kBufferLost = Code(0x88780096U);     // the device is gone
inline constexpr std::int32_t kUninitialized = Code(0x887800AAU);  // no sound server
inline constexpr std::int32_t kInvalidCall = Code(0x88780032U);
inline constexpr std::int32_t kBadFormat = Code(0x88780064U);  // rate or format refused
inline constexpr std::int32_t kNoDriver = Code(0x88780078U);   // no such device
inline constexpr std::int32_t kControlUnavailable = Code(0x8878001EU);
inline constexpr std::int32_t kAllocated = Code(0x8878000AU);  // device in use
inline constexpr std::int32_t kInvalidParameter = Code(0x80070057U);
inline constexpr std::int32_t kGeneric = Code(0x80004005U);
}  // namespace sound_error

}  // namespace sonavex
