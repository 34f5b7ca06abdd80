#pragma once

#include <cstdint>
#include <string>

namespace sonavex {

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
};

}  // namespace sonavex
