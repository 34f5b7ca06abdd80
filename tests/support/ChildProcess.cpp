#include "support/ChildProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace sonavex {
namespace {

using namespace std::chrono_literals;

std::vector<std::string> MergedEnvironment(const Environment& additions) {
    std::vector<std::string> merged;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string line = *entry;
        bool replaced = false;
        for (const auto& [name, value] : additions) replaced = replaced || line.rfind(name + "=", 0) == 0;
        if (!replaced) merged.push_back(line);
    }
    for (const auto& [name, value] : additions) merged.push_back(name + "=" + value);
    return merged;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// A file opened for appending; closed by the destructor.
class OpenFile {
public:
    explicit OpenFile(const std::filesystem::path& path)
        : descriptor_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NOCTTY | O_CLOEXEC, 0600)) {
        if (descriptor_ < 0) throw std::runtime_error("cannot write " + path.string());
    }
    ~OpenFile() { close(descriptor_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    int Descriptor() const noexcept { return descriptor_; }

private:
    int descriptor_;
};

// Runs in the new process, where only calls that are safe between fork and exec are allowed.
[[noreturn]] void Become(char** command, char** environment, int output, int errors) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    execvpe(command[0], command, environment);
    _exit(127);
}

}  // namespace

ChildProcess::ChildProcess(const Arguments& command, const Environment& environment,
                           const std::filesystem::path& output, const std::filesystem::path& errors) {
    Arguments commandCopy = command;
    std::vector<std::string> environmentCopy = MergedEnvironment(environment);
    const std::vector<char*> commandPointers = Pointers(commandCopy);
    const std::vector<char*> environmentPointers = Pointers(environmentCopy);
    const OpenFile outputFile(output);
    const OpenFile errorsFile(errors);
    pid_ = fork();
    if (pid_ == 0)
        Become(const_cast<char**>(commandPointers.data()), const_cast<char**>(environmentPointers.data()),
               outputFile.Descriptor(), errorsFile.Descriptor());
    if (pid_ < 0) throw std::runtime_error("cannot start " + command.front());
    // Parent and child both set the group, because either can be first.
    setpgid(pid_, pid_);
}

ChildProcess::~ChildProcess() {
    if (!ended_) {
        Send(SIGTERM);
        Send(SIGCONT);
        WaitForEnd(1s);
    }
    Kill();
}

void ChildProcess::Send(int signal) const noexcept {
    if (!ended_) kill(-pid_, signal);
}

void ChildProcess::Kill() noexcept {
    // Until it is waited for, the process keeps its number, so the signal cannot reach another process.
    Send(SIGKILL);
    WaitForEnd(5s);
}

bool ChildProcess::WaitForEnd(std::chrono::milliseconds limit) noexcept {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!ended_) {
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) == pid_) {
            ended_ = true;
            status_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        } else if (std::chrono::steady_clock::now() >= end) {
            return false;
        } else {
            std::this_thread::sleep_for(2ms);
        }
    }
    return true;
}

std::string RunProgram(const Arguments& command, const Environment& environment,
                       std::chrono::milliseconds limit) {
    const PrivateFolder folder;
    const auto output = folder.Path() / "output";
    ChildProcess process(command, environment, output);
    const bool ended = process.WaitForEnd(limit);
    std::ostringstream text;
    text << std::ifstream(output).rdbuf();
    if (ended && process.Status() == 0) return text.str();
    throw std::runtime_error(command.front() + (ended ? " failed: " : " takes too long: ") + text.str());
}

PrivateFolder::PrivateFolder() {
    // mkdtemp replaces the last six characters.
    std::string pattern =
        (std::filesystem::temp_directory_path() / "sonavex-").string() + std::string(6, 'X');
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

PrivateFolder::~PrivateFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace sonavex
