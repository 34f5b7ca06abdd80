#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace sonavex {

// Where machine-wide and per-user values begin.
enum class RootKey { kClassesRoot, kCurrentUser, kLocalMachine, kUsers };

// A text, with its terminating zero where it was stored with one, or a whole number.
using MachineValue = std::variant<std::string, std::uint32_t>;

// Other programs that the instrument opens: documents, web pages, panels of the system. User-interface
// thread only.
class Launcher {
public:
    virtual ~Launcher() = default;

    // Opens a file, a program or a web address as the desktop would, in front of the instrument. Returns
    // 0, or an error number (2: not found, 31: no program for it).
    virtual std::int32_t Open(const std::string& target) = 0;

    // Starts what a command line of the instrument names, or the program at a path, in a window. Returns
    // 0, or an error number as Open does. Does not wait for the program's end.
    virtual std::int32_t Run(const std::string& commandLine) = 0;

    virtual bool FileExists(const std::string& path) = 0;

    // A value of the machine's configuration, by its key's path and its name; nothing when the key or
    // the value is missing.
    virtual std::optional<MachineValue> ReadMachineValue(RootKey root, const std::string& key,
                                                         const std::string& name) = 0;
};

}  // namespace sonavex
