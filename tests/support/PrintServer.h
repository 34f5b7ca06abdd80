#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace sonavex {

// A private CUPS server, used by this process and its children during the object's lifetime. Its printers
// write every job to a file.
class PrintServer {
public:
    explicit PrintServer(const std::vector<std::string>& printers);
    ~PrintServer();
    PrintServer(const PrintServer&) = delete;
    PrintServer& operator=(const PrintServer&) = delete;

    // Runs a program of the print system and returns its output.
    std::string Control(const Arguments& command) const;

    // Files of the jobs printed on a printer, in order. Waits for `count` files and throws std::runtime_error
    // if they do not arrive.
    std::vector<std::filesystem::path> Jobs(const std::string& printer, std::size_t count) const;

    // Stops and continues the server process.
    void Pause();
    void Continue();

private:
    std::filesystem::path Socket() const { return folder_.Path() / "sock"; }
    void WriteConfiguration() const;
    void WriteBackend() const;
    void WaitUntilReady() const;

    PrivateFolder folder_;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace sonavex
