#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace sonavex {

// Lets only one process run at a time, by a lock on a file. The destructor releases the lock; the system does
// so when the process ends in any other way.
class SingleInstance {
public:
    // Lock files, best first. A missing folder is created. The next file is used where one cannot be opened
    // or locked, and where it is a link or belongs to another user.
    explicit SingleInstance(std::vector<std::filesystem::path> lockFiles);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    // True when another process holds the lock. The first call decides. False where no lock file can be
    // locked.
    bool AnotherRuns();

private:
    std::vector<std::filesystem::path> files_;
    std::optional<bool> anotherRuns_;
    int lock_ = -1;
};

}  // namespace sonavex
