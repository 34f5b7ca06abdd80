#include "core/report/ErrorNames.h"

#include <algorithm>
#include <iterator>

namespace sonavex {
namespace {

struct ErrorName {
    std::uint32_t number;
    const char* name;
};

constexpr ErrorName kNames[] = {
    {0x88781161U, "DSERR_OBJECTNOTFOUND"},
    {7, "DSERR_OUTOFMEMORY"},
    {430, "DSERR_NOINTERFACE"},
    {0x887800BEU, "DSERR_DS8_REQUIRED"},
    {0x88780096U, "DSERR_BUFFERLOST"},
    {0x887800A0U, "DSERR_OTHERAPPHASPRIO"},
    {0x887800AAU, "DSERR_UNINITIALIZED"},
    {0x887800B4U, "DSERR_BUFFERTOOSMALL"},
    {0x88780082U, "DSERR_ALREADYINITIALIZED"},
    {0x88780032U, "DSERR_INVALIDCALL"},
    {0x88780046U, "DSERR_PRIOLEVELNEEDED"},
    {0x88780064U, "DSERR_BADFORMAT"},
    {0x88780078U, "DSERR_NODRIVER"},
    {0x8878001EU, "DSERR_CONTROLUNAVAIL"},
    {0x8878000AU, "DSERR_ALLOCATED"},
    {0x80070057U, "DSERR_INVALIDPARAM"},
    {0x80004001U, "DSERR_UNSUPPORTED"},
    {0x80004005U, "DSERR_GENERIC"},
};

}  // namespace

const char* SoundErrorName(std::int32_t number) noexcept {
    const auto* const found = std::find_if(std::begin(kNames), std::end(kNames), [&](const ErrorName& entry) {
        return entry.number == static_cast<std::uint32_t>(number);
    });
    return found != std::end(kNames) ? found->name : "DSERR_UNKNOWN";
}

}  // namespace sonavex
