#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/support/RuntimeError.h"

namespace sonavex {

// The calls of a test's fakes in order, one line per call: the operation, then its arguments, separated by
// blanks. An operation can be made to fail.
class CallLog {
public:
    // Records the call; raises the error set for the operation.
    void Call(const std::string& operation, const std::string& arguments = {}) {
        Note(arguments.empty() ? operation : operation + ' ' + arguments);
        const auto failing = failing_.find(operation);
        if (failing != failing_.end()) throw failing->second;
    }
    // Records without failing, for destructors and calls that must not fail.
    void Note(const std::string& line) {
        if (!countsOnly_) return lines_.push_back(line);
        Counted& counted = counted_[line.substr(0, line.find(' '))];
        ++counted.count;
        counted.last = line;
    }

    void Fail(const std::string& operation, const RuntimeError& error) {
        failing_.insert_or_assign(operation, error);
    }
    void Heal(const std::string& operation) { failing_.erase(operation); }

    // From now on keeps the count and the last line of each operation instead of all lines, so that the log
    // does not grow.
    void CountOnly() { countsOnly_ = true; }
    // The last line of the operation after CountOnly; empty when there is none.
    std::string Last(const std::string& operation) const {
        const auto found = counted_.find(operation);
        return found == counted_.end() ? std::string() : found->second.last;
    }

    const std::vector<std::string>& Lines() const noexcept { return lines_; }
    void Clear() noexcept { lines_.clear(); }

    // Lines of this operation.
    std::vector<std::string> Of(std::string_view operation) const {
        std::vector<std::string> found;
        std::copy_if(lines_.begin(), lines_.end(), std::back_inserter(found),
                     [&](const std::string& line) { return line.substr(0, line.find(' ')) == operation; });
        return found;
    }
    std::size_t Count(std::string_view operation) const {
        const auto found = counted_.find(operation);
        return Of(operation).size() + (found == counted_.end() ? 0 : found->second.count);
    }

    // The first line of this operation with the line before it and the line after it. Empty if one of the
    // three is missing.
    std::vector<std::string> Around(std::string_view operation) const {
        for (std::size_t i = 1; i + 1 < lines_.size(); ++i)
            if (lines_[i].substr(0, lines_[i].find(' ')) == operation)
                return {lines_[i - 1], lines_[i], lines_[i + 1]};
        return {};
    }

private:
    struct Counted {
        std::size_t count = 0;
        std::string last;
    };

    std::vector<std::string> lines_;
    std::map<std::string, RuntimeError> failing_;
    bool countsOnly_ = false;
    std::map<std::string, Counted, std::less<>> counted_;
};

}  // namespace sonavex
