#pragma once

#include <cstddef>
#include <string_view>

namespace sonavex {

// Splits a mixer state line, in which a comma follows every field.
class StateFields {
public:
    // The line must outlive this object.
    explicit StateFields(std::string_view line) noexcept : line_(line) {}

    // Returns the next field without its comma. Error 5 when no further comma follows.
    std::string_view Next();
    bool AtEnd() const noexcept { return position_ >= line_.size(); }

private:
    std::string_view line_;
    std::size_t position_ = 0;
};

}  // namespace sonavex
