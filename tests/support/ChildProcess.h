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

// A running program in a private process group; the destructor ends it. Its output goes to one file, or
// standard output and standard error to two.
class ChildProcess {
public:
    // `environment` is added to the test's environment. Throws std::runtime_error if the program cannot be
    // started.
    ChildProcess(const Arguments& command, const Environment& environment,
                 const std::filesystem::path& output)
        : ChildProcess(command, environment, output, output) {}
    ChildProcess(const Arguments& command, const Environment& environment,
                 const std::filesystem::path& output, const std::filesystem::path& errors);
    // Ends the group: SIGTERM first, then SIGKILL.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Sends a signal to the process and its children.
    void Send(int signal) const noexcept;
    // Kills it and waits for its end.
    void Kill() noexcept;
    // Whether it ends within the limit.
    bool WaitForEnd(std::chrono::milliseconds limit) noexcept;
    // Valid after the process has ended: 0 for success, 128 + n for signal n.
    int Status() const noexcept { return status_; }

private:
    pid_t pid_ = -1;
    bool ended_ = false;
    int status_ = -1;
};

// Runs a program until it ends and returns its output. Throws std::runtime_error if it exceeds the limit or
// fails.
std::string RunProgram(const Arguments& command, const Environment& environment,
                       std::chrono::milliseconds limit);

// A folder that only the user can enter; the destructor removes it.
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
