#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "support/ChildProcess.h"
#include "support/Files.h"

namespace sonavex {

// System calls of a program and of those it started, recorded by strace.
class Trace {
public:
    // The command line that runs the program and writes the trace. calls: names joined by commas.
    static Arguments Of(const Arguments& command, const std::string& calls,
                        const std::filesystem::path& file) {
        Arguments line{"strace",         "-f", "-qq",         "-s", "4096",       "-e",
                       "trace=" + calls, "-e", "signal=none", "-o", file.string()};
        line.insert(line.end(), command.begin(), command.end());
        return line;
    }

    explicit Trace(const std::filesystem::path& file) {
        std::istringstream lines(FileText(file));
        for (std::string line; std::getline(lines, line);) {
            // Each line starts with the process number and blanks.
            const std::size_t begin = line.find_first_not_of(" 0123456789");
            if (begin != std::string::npos) Add(line.substr(0, begin), line.substr(begin));
        }
    }

    // The recorded calls of this name.
    std::vector<std::string> Calls(const std::string& name) const {
        std::vector<std::string> found;
        std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(found),
                     [&](const std::string& call) { return call.starts_with(name + "("); });
        return found;
    }
    // The programs started, without failed attempts.
    std::set<std::string> Programs() const {
        std::set<std::string> programs;
        for (const std::string& call : Calls("execve")) {
            const std::size_t begin = call.find('"');
            const std::size_t end = call.find('"', begin + 1);
            const bool missing = call.find(" = -1 ") != std::string::npos;
            if (begin != std::string::npos && !missing)
                programs.insert(call.substr(begin + 1, end - begin - 1));
        }
        return programs;
    }

private:
    // strace splits a call into two lines when other calls occur during it.
    void Add(const std::string& process, const std::string& call) {
        static constexpr std::string_view kUnfinished = " <unfinished ...>";
        static constexpr std::string_view kResumed = " resumed>";
        const std::size_t resumed = call.starts_with("<... ") ? call.find(kResumed) : std::string::npos;
        if (call.ends_with(kUnfinished))
            begun_[process] = call.substr(0, call.size() - kUnfinished.size());
        else if (resumed != std::string::npos)
            calls_.push_back(begun_[process] + call.substr(resumed + kResumed.size()));
        else
            calls_.push_back(call);
    }

    std::vector<std::string> calls_;
    std::map<std::string, std::string> begun_;
};

}  // namespace sonavex
