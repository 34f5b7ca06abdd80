#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "fuzz/FuzzTarget.h"

namespace sonavex::fuzz {

// A file in memory with a path.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& content) : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
        Require(descriptor_ >= 0, "there is a file in memory");
        Require(write(descriptor_, content.data(), content.size()) == static_cast<ssize_t>(content.size()),
                "a file in memory takes what is written");
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

}  // namespace sonavex::fuzz
