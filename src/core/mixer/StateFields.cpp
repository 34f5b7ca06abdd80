#include "core/mixer/StateFields.h"

#include "core/support/RuntimeError.h"

namespace sonavex {

std::string_view StateFields::Next() {
    const std::size_t comma = line_.find(',', position_);
    if (comma == std::string_view::npos) throw RuntimeError(error_number::kInvalidCall);
    const std::string_view field = line_.substr(position_, comma - position_);
    position_ = comma + 1;
    return field;
}

}  // namespace sonavex
