#pragma once

#include <cstdint>
#include <filesystem>

#include "support/ChildProcess.h"

namespace sonavex {

// Command lines that run a program while the folder is a disk of its own (in memory), which holds the
// folder's files. Afterwards the folder holds what was on the disk. The status is the program's. Where users
// may mount nothing, the program is not run: `unshare` or `mount` says so, and the status is 1.

// With room for so many blocks of 4096 bytes more.
Arguments OnDiskWithRoom(const std::filesystem::path& folder, std::uint32_t freeBlocks,
                         const Arguments& command);
// Mounted for reading only.
Arguments OnReadOnlyDisk(const std::filesystem::path& folder, const Arguments& command);

}  // namespace sonavex
