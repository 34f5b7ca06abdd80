#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace sonavex {

// A CUPS of the test's own, in a private folder, which this process and its children use while the object
// lives. Its printers put every job into a file.
class PrintServer {
public:
    explicit PrintServer(const std::vector<std::string>& printers);
    ~PrintServer();
    PrintServer(const PrintServer&) = delete;
    PrintServer& operator=(const PrintServer&) = delete;

    // Runs one of the print system's programs and returns what it printed.
    std::string Control(const Arguments& command) const;

    // Files of the jobs printed so far on a printer, in order; waits until there are so many of them and
    // throws std::runtime_error when they do not come.
    std::vector<std::filesystem::path> Jobs(const std::string& printer, std::size_t count) const;

    // Lets it neither answer nor end, and undoes that.
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
