#pragma once

namespace sonavex {

// Sets a flag to true for the duration of a scope.
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
