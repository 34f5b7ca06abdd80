#include "app/measure/PlotProgram.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <thread>

#include "app/measure/MeasureError.h"

namespace sonavex::measure {
namespace {

using namespace std::chrono_literals;

constexpr auto kLongestDrawing = 60s;
constexpr auto kDrawingPoll = 20ms;
constexpr int kNotStarted = 127;

using TemporaryFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// The text in a file without a name. A program that reads it cannot block its writer.
TemporaryFile FileWith(const std::string& text) {
    TemporaryFile file(std::tmpfile(), std::fclose);
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file.get()) != text.size() ||
        std::fflush(file.get()) != 0 || std::fseek(file.get(), 0, SEEK_SET) != 0)
        throw MeasureError("The picture was not drawn: there is no room for a temporary file.");
    return file;
}

// Between fork and execv only calls that are safe in a process with several threads.
pid_t Start(const std::string& program, const std::string& picture, int input) {
    std::string name = program;
    std::string target = picture;
    std::array<char*, 3> arguments{name.data(), target.data(), nullptr};
    const pid_t child = fork();
    if (child != 0) return child;
    if (dup2(input, STDIN_FILENO) >= 0) execv(name.c_str(), arguments.data());
    _exit(kNotStarted);
}

// The state of the ended program, as waitpid gives it. A program that takes too long is killed.
int StateOf(pid_t child) {
    int state = 0;
    const auto end = std::chrono::steady_clock::now() + kLongestDrawing;
    while (waitpid(child, &state, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) kill(child, SIGKILL);
        std::this_thread::sleep_for(kDrawingPoll);
    }
    return state;
}

}  // namespace

std::string PlotProgram() {
    std::error_code error;
    const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path program = own.parent_path() / "sonavex-plot";
    if (error || access(program.c_str(), X_OK) != 0)
        throw MeasureError("sonavex-plot is not installed beside sonavex-measure; --png needs it.");
    return program;
}

void DrawRun(const std::string& program, const std::string& run, const std::string& picture) {
    const TemporaryFile input = FileWith(run);
    const pid_t child = Start(program, picture, fileno(input.get()));
    if (child < 0) throw MeasureError("sonavex-plot could not be started.");
    const int state = StateOf(child);
    if (!WIFEXITED(state) || WEXITSTATUS(state) != 0)
        throw MeasureError("sonavex-plot failed; the picture was not drawn.");
}

}  // namespace sonavex::measure
