// Runs a fuzz target over stored inputs: the files and folders on the command line, or the target's corpus.
// An input that violates a property ends the program; the last line names it.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"

namespace {

std::vector<std::filesystem::path> InputsIn(const std::filesystem::path& place) {
    if (!std::filesystem::is_directory(place)) return {place};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(place))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

bool Replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    std::printf("%s\n", file.filename().c_str());
    std::fflush(stdout);
    // A copy of exactly this length, so that a sanitizer detects reads behind it.
    const std::vector<std::uint8_t> bytes(content.begin(), content.end());
    return stream && LLVMFuzzerTestOneInput(bytes.data(), bytes.size()) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> places(argv + 1, argv + argc);
    if (places.empty()) places.emplace_back(SONAVEX_FUZZ_CORPUS);
    const auto begin = std::chrono::steady_clock::now();
    std::size_t replayed = 0;
    for (const std::string& place : places) {
        for (const auto& file : InputsIn(place)) {
            if (!Replay(file)) {
                std::fprintf(stderr, "%s cannot be read\n", file.c_str());
                return 1;
            }
            ++replayed;
        }
    }
    if (replayed == 0) {
        std::fprintf(stderr, "There is nothing to replay.\n");
        return 1;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::printf("%zu inputs replayed in %.1f s\n", replayed, took.count());
    return 0;
}
