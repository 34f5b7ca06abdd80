#pragma once

#include <optional>

#include "support/ChildProcess.h"

namespace sonavex {

// The test executable also serves as the other process that some tests need: started with the command of
// one of these it does that instead of testing.

// Writes 1 to `count` under its key in section "Counter", one replacement of the settings file each.
Arguments CountingProgram(const std::filesystem::path& settings, const std::string& key, int count);
// Rewrites section "Signal Generator" with kRewrittenKeys equal numbers, then with the next number, and so
// on until it is killed.
inline constexpr int kRewrittenKeys = 60;
std::string RewrittenKey(int index);
Arguments RewritingProgram(const std::filesystem::path& settings);
// Prints "another" or "alone" and stays until it is ended.
Arguments InstanceProgram(const std::string& instanceName);

// Runs what the command line asks for and returns the exit status; nothing when it asks for no helper.
std::optional<int> RunHelperProgram(int argc, char** argv);

}  // namespace sonavex
