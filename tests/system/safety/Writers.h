#pragma once

#include <optional>
#include <string>

#include "platform/plain/IniText.h"
#include "support/ChildProcess.h"

namespace sonavex {

// The test executable also serves as the processes that are killed: started with the command of one of
// these it does that instead of testing. It begins with what is not in the file. Each says "writing" once it
// has written for the first time, and goes on until it is killed.

// Two complete sets of settings that share no value, on several pages of the disk.
inline constexpr char kSettingsSets[] = {'A', 'B'};
IniSections SettingsSet(char which);
// Replaces the one set by the other, again and again, through the store. Other sections stay.
Arguments SettingsWriter(const std::filesystem::path& file);

std::string JournalText(char which);
Arguments JournalWriter(const std::filesystem::path& file);

// The first line of the report says which.
Arguments ReportWriter(const std::filesystem::path& file);

// Runs what the command line asks for and returns the exit status; nothing when it asks for no writer.
std::optional<int> RunWriter(int argc, char** argv);

}  // namespace sonavex
