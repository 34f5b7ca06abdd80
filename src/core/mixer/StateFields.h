#pragma once

#include <cstddef>
#include <string_view>

namespace sonavex {

// The fields of a mixer state line, each followed by one comma.
class StateFields {
public:
    // The line must outlive this object.
    explicit StateFields(std::string_view line) noexcept : line_(line) {}

    // The next field, without its comma. Error 5 when there is no further comma.
    std::string_view Next();
    bool AtEnd() const noexcept { return position_ >= line_.size(); }

private:
    std::string_view line_;
    std::size_t position_ = 0;
};

}  // namespace sonavex
