#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace sonavex {

// Roots of machine-wide and per-user configuration values.
enum class RootKey { kCurrentUser, kLocalMachine };

// A text (including its terminating zero if it was stored with one) or a whole number.
using MachineValue = std::variant<std::string, std::uint32_t>;

// Starts other programs: documents, web pages, system panels.
class Launcher {
public:
    virtual ~Launcher() = default;

    // Opens a file, a program or a web address with the desktop's default program. Returns 0 or an error
    // number (2: not found, 31: no program for it).
    virtual std::int32_t Open(const std::string& target) = 0;

    // Starts a command line or the program at a path. Returns 0 or an error number as Open does. Does not
    // wait for the program to end.
    virtual std::int32_t Run(const std::string& commandLine) = 0;

    virtual bool FileExists(const std::string& path) = 0;

    // A configuration value, by the path of its key and its name; nothing if the key or the value is missing.
    virtual std::optional<MachineValue> ReadMachineValue(RootKey root, const std::string& key,
                                                         const std::string& name) = 0;
};

}  // namespace sonavex
