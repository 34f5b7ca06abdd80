#pragma once

#include <cstdint>
#include <filesystem>

#include "support/ChildProcess.h"

namespace sonavex {

// The command line that runs the program while the folder is a disk of its own (in memory), which holds the
// folder's files and has room for so many blocks of 4096 bytes more. Afterwards the folder holds what was on
// the disk. The status is the program's.
Arguments OnDiskWithRoom(const std::filesystem::path& folder, std::uint32_t freeBlocks,
                         const Arguments& command);

// False where the system lets the user mount nothing, as in some containers.
bool DisksCanBeMounted();

}  // namespace sonavex
