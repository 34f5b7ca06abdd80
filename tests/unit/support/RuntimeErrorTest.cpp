#include <gtest/gtest.h>

#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

TEST(RuntimeError, CarriesNumberAndStandardText) {
    const RuntimeError error(error_number::kSubscript);
    EXPECT_EQ(error.Number(), 9);
    EXPECT_STREQ(error.what(), "Subscript out of range");
}

TEST(RuntimeError, CarriesItsOwnText) {
    const RuntimeError error(13, "Type mismatch: somewhere");
    EXPECT_EQ(error.Number(), 13);
    EXPECT_STREQ(error.what(), "Type mismatch: somewhere");
}

}  // namespace
}  // namespace sonavex
