// sonavex-start-time RUNS PROGRAM [ARGUMENT...] prints, for each run, the time in milliseconds from the start
// of a program to its first captured block, and the median. A breakpoint in the analysis of the released
// program marks the block; the program ends there. Runs on x86-64 Linux only; needs nm and a program with
// symbols.

#include <sys/ptrace.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kFirstBlock = " _ZN7sonavex5Meter20ProcessCapturedBlock";
constexpr long kBreakpoint = 0xCC;
constexpr unsigned kLimitSeconds = 20;

// Address of the function in the program file.
std::uintptr_t LinkedAddress(const std::string& program) {
    const std::string command = "nm --defined-only '" + program + "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> names(popen(command.c_str(), "r"), pclose);
    if (!names) throw std::runtime_error("nm cannot be run");
    std::array<char, 4096> line{};
    while (std::fgets(line.data(), static_cast<int>(line.size()), names.get()) != nullptr) {
        const std::string text = line.data();
        if (text.find(kFirstBlock) != std::string::npos && text.find(".cold") == std::string::npos)
            return std::stoull(text, nullptr, 16);
    }
    throw std::runtime_error(program + " has no names, or processes no blocks");
}

// Load address of the program file in the process.
std::uintptr_t BaseAddress(pid_t child, const std::string& program) {
    std::ifstream maps("/proc/" + std::to_string(child) + "/maps");
    const std::string path = std::filesystem::canonical(program).string();
    for (std::string line; std::getline(maps, line);) {
        if (line.size() > path.size() && line.compare(line.size() - path.size(), path.size(), path) == 0)
            return std::stoull(line, nullptr, 16);
    }
    throw std::runtime_error(path + " is not mapped");
}

[[noreturn]] void Become(char** arguments) {
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    alarm(kLimitSeconds);
    execv(arguments[0], arguments);
    std::perror(arguments[0]);
    _exit(127);
}

// Waits for the next stop; throws if the process has ended.
int WaitForStop(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
        throw std::runtime_error("the program ended before its first block");
    return WSTOPSIG(status);
}

void SetBreakpoint(pid_t child, std::uintptr_t address) {
    auto* const at = reinterpret_cast<void*>(address);
    const long word = ptrace(PTRACE_PEEKTEXT, child, at, nullptr);
    if (ptrace(PTRACE_POKETEXT, child, at, (word & ~0xFFL) | kBreakpoint) != 0)
        throw std::runtime_error("no breakpoint can be set");
}

// Milliseconds from just before fork to the breakpoint.
double TimeToFirstBlock(char** arguments, std::uintptr_t linkedAddress) {
    const Clock::time_point begin = Clock::now();
    const pid_t child = fork();
    if (child == 0) Become(arguments);
    if (child < 0) throw std::runtime_error("no process can be made");
    try {
        WaitForStop(child);
        ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_EXITKILL);
        SetBreakpoint(child, BaseAddress(child, arguments[0]) + linkedAddress);
        for (int signal = 0; signal != SIGTRAP; signal = WaitForStop(child))
            ptrace(PTRACE_CONT, child, nullptr, signal);
    } catch (...) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        throw;
    }
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - begin;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    return elapsed.count();
}

int Measure(int runs, char** arguments) {
    const std::uintptr_t address = LinkedAddress(arguments[0]);
    std::vector<double> times;
    // The first run only loads the files into memory.
    for (int run = 0; run <= runs; ++run) {
        const double time = TimeToFirstBlock(arguments, address);
        if (run == 0) continue;
        times.push_back(time);
        std::printf("%.1f\n", time);
    }
    std::sort(times.begin(), times.end());
    std::printf("median %.1f\n", times[times.size() / 2]);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc < 3 ? 0 : std::atoi(argv[1]);
    if (runs < 1) {
        std::fprintf(stderr, "Usage: sonavex-start-time RUNS PROGRAM [ARGUMENT...]\n");
        return 1;
    }
    try {
        return Measure(runs, argv + 2);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "sonavex-start-time: %s\n", error.what());
        return 1;
    }
}
