#pragma once

#include <optional>

#include "support/ChildProcess.h"

namespace sonavex {

// Helper processes of some tests. The test executable runs them when started with one of these commands.

// Writes 1 to `count` under the key in section "Counter", one replacement of the settings file each.
Arguments CountingProgram(const std::filesystem::path& settings, const std::string& key, int count);
// Rewrites section "Signal Generator" with kRewrittenKeys equal numbers, then with the next number, until it
// is killed.
inline constexpr int kRewrittenKeys = 60;
std::string RewrittenKey(int index);
Arguments RewritingProgram(const std::filesystem::path& settings);
// Prints "another" or "alone" and waits until it is ended.
Arguments InstanceProgram(const std::string& instanceName);

// Runs the helper in the command line and returns its exit status; nothing if there is none.
std::optional<int> RunHelperProgram(int argc, char** argv);

}  // namespace sonavex
