#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <locale>
#include <string>

#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

namespace fs = std::filesystem;

// Writes a C library locale with a decimal comma in the library's binary form: a magic number, the count and
// the offsets of six items, then the items (decimal sign, thousands sign, grouping, both signs as wide
// characters, code set).
void WriteCommaLocale(const fs::path& folder) {
    fs::create_directories(folder);
    const std::array<std::uint32_t, 8> head{0x20031114U, 6, 32, 34, 36, 40, 44, 48};
    const char items[] =
        ",\0"
        ".\0"
        "\3\3\0\0"
        ",\0\0\0"
        ".\0\0\0"
        "ANSI_X3.4-1968";
    std::ofstream file(folder / "LC_NUMERIC", std::ios::binary);
    file.write(reinterpret_cast<const char*>(head.data()), sizeof head);
    file.write(items, sizeof items);
}

struct CommaSign : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

// The process runs with a decimal comma, for the C and the C++ library.
class CommaDesktop : public testing::Test {
protected:
    void SetUp() override {
        WriteCommaLocale(folder_ / "comma");
        ASSERT_EQ(::setenv("LOCPATH", folder_.c_str(), 1), 0);
        ASSERT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr);
        std::locale::global(std::locale(std::locale::classic(), new CommaSign));
        std::setlocale(LC_NUMERIC, "comma");
    }
    void TearDown() override {
        std::locale::global(std::locale::classic());
        std::setlocale(LC_ALL, "C");
        ::unsetenv("LOCPATH");
        fs::remove_all(folder_);
    }

private:
    fs::path folder_ = fs::temp_directory_path() / ("locale-test-" + std::to_string(::getpid()));
};

TEST_F(CommaDesktop, TheCLibraryDoesUseTheComma) {
    char text[16];
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    EXPECT_STREQ(text, "1,5");
}

TEST_F(CommaDesktop, TextsKeepThePoint) {
    EXPECT_EQ(Str(0.8399), " .8399");
    EXPECT_EQ(CStr(-1234567.25), "-1234567.25");
    EXPECT_EQ(Format(12345.678, Pattern::kTwoDecimals), "12345.68");
    EXPECT_EQ(Format(0.5, Pattern::kPercent), "0.5000");
    EXPECT_EQ(CStr(std::int32_t{1000000}), "1000000");
}

TEST_F(CommaDesktop, OnlyThePointIsRead) {
    EXPECT_EQ(Val("1.5"), 1.5);
    EXPECT_EQ(Val("1,5"), 1.0);
    EXPECT_EQ(CDbl("0.25"), 0.25);
    EXPECT_FALSE(IsNumeric("1,5"));
    EXPECT_THROW((void)CDbl("1,5"), RuntimeError);
}

}  // namespace
}  // namespace sonavex
