#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "core/ports/Launcher.h"
#include "support/CallLog.h"

namespace sonavex {

// "Open TARGET", "Run COMMAND". Opens nothing.
class RecordingLauncher : public Launcher {
public:
    explicit RecordingLauncher(CallLog& log) noexcept : log_(log) {}
    std::int32_t Open(const std::string& target) override {
        log_.Call("Open", target);
        return error;
    }
    std::int32_t Run(const std::string& commandLine) override {
        log_.Call("Run", commandLine);
        return error;
    }
    bool FileExists(const std::string& path) override { return files.count(path) != 0; }
    std::optional<MachineValue> ReadMachineValue(RootKey root, const std::string& key,
                                                 const std::string& name) override {
        const auto found = values.find(key + "|" + name);
        if (root != RootKey::kLocalMachine || found == values.end()) return std::nullopt;
        return found->second;
    }

    std::int32_t error = 0;  // what Open and Run return
    std::set<std::string> files;
    std::map<std::string, MachineValue> values;  // "KEY|NAME", machine-wide

private:
    CallLog& log_;
};

}  // namespace sonavex
