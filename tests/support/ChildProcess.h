#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace sonavex {

using Arguments = std::vector<std::string>;
using Environment = std::vector<std::pair<std::string, std::string>>;

// A program that runs beside the test, in a process group of its own, and ends with it. What it
// prints goes to a file, or to one and its complaints to another.
class ChildProcess {
public:
    // The environment's values come on top of the test's own. Throws std::runtime_error when the
    // program cannot be started.
    ChildProcess(const Arguments& command, const Environment& environment,
                 const std::filesystem::path& output)
        : ChildProcess(command, environment, output, output) {}
    ChildProcess(const Arguments& command, const Environment& environment,
                 const std::filesystem::path& output, const std::filesystem::path& errors);
    // Ends the group: politely, then by force.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // To the process and what it started.
    void Send(int signal) const noexcept;
    // Kills it and waits for its end.
    void Kill() noexcept;
    // True when it has ended by then.
    bool WaitForEnd(std::chrono::milliseconds limit) noexcept;
    // Only after its end: 0 for success, 128 + n for signal n.
    int Status() const noexcept { return status_; }

private:
    pid_t pid_ = -1;
    bool ended_ = false;
    int status_ = -1;
};

// Runs a program to its end and returns what it printed. Throws std::runtime_error when it takes
// longer than the limit or fails.
std::string RunProgram(const Arguments& command, const Environment& environment,
                       std::chrono::milliseconds limit);

// A folder that only the user can enter and that goes with this object.
class PrivateFolder {
public:
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    const std::filesystem::path& Path() const noexcept { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace sonavex
