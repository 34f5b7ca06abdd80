#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/support/RuntimeError.h"

namespace sonavex {

// What the fakes of one test were asked to do, in order, one line a call: the operation, then its
// arguments separated by blanks. An operation can be made to fail.
class CallLog {
public:
    // Records the call; raises the error that the operation was given.
    void Call(const std::string& operation, const std::string& arguments = {}) {
        lines_.push_back(arguments.empty() ? operation : operation + ' ' + arguments);
        const auto failing = failing_.find(operation);
        if (failing != failing_.end()) throw failing->second;
    }
    // Records without ever failing: destructors and calls that may not fail.
    void Note(const std::string& line) { lines_.push_back(line); }

    void Fail(const std::string& operation, const RuntimeError& error) {
        failing_.insert_or_assign(operation, error);
    }
    void Heal(const std::string& operation) { failing_.erase(operation); }

    const std::vector<std::string>& Lines() const noexcept { return lines_; }
    void Clear() noexcept { lines_.clear(); }

    // Lines whose operation is this one.
    std::vector<std::string> Of(std::string_view operation) const {
        std::vector<std::string> found;
        std::copy_if(lines_.begin(), lines_.end(), std::back_inserter(found),
                     [&](const std::string& line) { return line.substr(0, line.find(' ')) == operation; });
        return found;
    }
    std::size_t Count(std::string_view operation) const { return Of(operation).size(); }

    // The line before the first one of this operation, that line, and the one after it; empty without all
    // three.
    std::vector<std::string> Around(std::string_view operation) const {
        for (std::size_t i = 1; i + 1 < lines_.size(); ++i)
            if (lines_[i].substr(0, lines_[i].find(' ')) == operation)
                return {lines_[i - 1], lines_[i], lines_[i + 1]};
        return {};
    }

private:
    std::vector<std::string> lines_;
    std::map<std::string, RuntimeError> failing_;
};

}  // namespace sonavex
