#pragma once

namespace sonavex {

// Holds a flag true for the length of a scope.
class ScopedFlag {
public:
    explicit ScopedFlag(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    ~ScopedFlag() { flag_ = false; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

private:
    bool& flag_;
};

}  // namespace sonavex
