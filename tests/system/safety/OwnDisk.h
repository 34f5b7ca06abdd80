#pragma once

#include <cstdint>
#include <filesystem>

#include "support/ChildProcess.h"

namespace sonavex {

// Command lines that run a program while the folder is a private disk in memory, which holds the folder's
// files. Afterwards the folder holds the disk's content. The status is the program's. Where users may not
// mount, the program is not run: `unshare` or `mount` reports it, and the status is 1.

// With `freeBlocks` free blocks of 4096 bytes.
Arguments OnDiskWithRoom(const std::filesystem::path& folder, std::uint32_t freeBlocks,
                         const Arguments& command);
// Mounted read-only.
Arguments OnReadOnlyDisk(const std::filesystem::path& folder, const Arguments& command);

}  // namespace sonavex
