#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

const std::string kFourHundredZeros(400, '0');
const std::string kTinyWithoutExponent = "0." + kFourHundredZeros + "1";
const std::string kHugeWithoutExponent = "1" + kFourHundredZeros;

TEST(Val, ReadsTheLeadingNumber) {
    EXPECT_EQ(Val("1000"), 1000.0);
    EXPECT_EQ(Val("1000 Hz"), 1000.0);
    EXPECT_EQ(Val("12.5.7"), 12.5);
    EXPECT_EQ(Val(" \t 3"), 3.0);
    EXPECT_EQ(Val("-.49"), -0.49);
    EXPECT_EQ(Val("+7"), 7.0);
    EXPECT_EQ(Val("5."), 5.0);
    EXPECT_EQ(Val(".5"), 0.5);
    EXPECT_EQ(Val("1E-05"), 0.00001);
    EXPECT_EQ(Val("2e3x"), 2000.0);
    EXPECT_EQ(Val("5.e3"), 5000.0);
    EXPECT_EQ(Val("1e300"), 1e300);
}

TEST(Val, IsZeroWithoutLeadingNumber) {
    for (const char* text : {"", " ", ".", "-", "+", "-.", "e5", ".e5", "N/A", "&H10", "--1", "+-1", "- 1",
                             ",5", "inf", "nan", "\xE4", "x1"})
        EXPECT_EQ(Val(text), 0.0) << text;
}

TEST(Val, StopsBeforeAnIncompleteExponent) {
    EXPECT_EQ(Val("1e"), 1.0);
    EXPECT_EQ(Val("1e+"), 1.0);
    EXPECT_EQ(Val("1e-x"), 1.0);
    EXPECT_EQ(Val("0x10"), 0.0);
    EXPECT_EQ(Val("3,5"), 3.0);
}

TEST(Val, OverflowsAboveTheLargestDouble) {
    for (const std::string& text :
         {std::string("1e999"), std::string("-1e999"), kHugeWithoutExponent, kHugeWithoutExponent + "e-10",
          std::string("1e99999999999999999999"), std::string("1e9223372036854775807"),
          "0." + kFourHundredZeros + "1e1000"})
        EXPECT_EQ(ErrorOf([&] { return Val(text); }), error_number::kOverflow) << text;
}

TEST(Val, ReadsWhatIsTooSmallAsZero) {
    for (const std::string& text :
         {std::string("1e-999"), std::string("-1e-999"), kTinyWithoutExponent, kTinyWithoutExponent + "e10",
          std::string("1e-99999999999999999999"), std::string(".001e-9223372036854775808"),
          kHugeWithoutExponent + "e-1000", "." + kFourHundredZeros + "1", "0." + kFourHundredZeros + "9e+5"})
        EXPECT_EQ(Val(text), 0.0) << text;
}

TEST(Val, ReadsZeroWithAnyExponent) {
    EXPECT_EQ(Val("0e999"), 0.0);
    EXPECT_EQ(Val("0.000e99999999999999999999"), 0.0);
}

TEST(Val, KeepsRepresentableExtremes) {
    EXPECT_EQ(Val("1.7976931348623157e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(Val("4.9e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(Val(kHugeWithoutExponent + "e-400"), 1.0);
}

TEST(CDbl, TakesANumberBetweenBlanks) {
    EXPECT_EQ(CDbl(" 12.25 "), 12.25);
    EXPECT_EQ(CDbl("-50"), -50.0);
    EXPECT_EQ(CDbl(" .8399"), 0.8399);
    EXPECT_EQ(CDbl("1E-05"), 1e-5);
    EXPECT_EQ(CDbl(kTinyWithoutExponent), 0.0);
}

TEST(CDbl, RejectsEverythingElse) {
    for (const char* text : {"", " ", ".", "-", "1e", "1e+", "&H10", "12 Hz", "1 2", "1,5", "0x10", "inf",
                             "nan", "--1", "True"}) {
        EXPECT_EQ(ErrorOf([&] { return CDbl(text); }), error_number::kTypeMismatch) << text;
        EXPECT_FALSE(IsNumeric(text)) << text;
    }
    EXPECT_EQ(ErrorOf([] { return CDbl("1e999"); }), error_number::kOverflow);
}

TEST(IsNumeric, AgreesWithCDbl) {
    for (const std::string& text : {std::string("0"), std::string(" -3.5 "), std::string("1e300"),
                                    std::string("1e-999"), std::string("+.5"), kTinyWithoutExponent})
        EXPECT_TRUE(IsNumeric(text)) << text;
    EXPECT_FALSE(IsNumeric("1e999"));
    EXPECT_FALSE(IsNumeric(kHugeWithoutExponent));
}

TEST(CLng, RoundsHalvesToEven) {
    EXPECT_EQ(CLng(0.5), 0);
    EXPECT_EQ(CLng(1.5), 2);
    EXPECT_EQ(CLng(2.5), 2);
    EXPECT_EQ(CLng(-0.5), 0);
    EXPECT_EQ(CLng(-1.5), -2);
    EXPECT_EQ(CLng(-2.5), -2);
    EXPECT_EQ(CLng(2.5000000001), 3);
    EXPECT_EQ(CLng("1.5"), 2);
}

TEST(CLng, EndsAt32Bits) {
    EXPECT_EQ(CLng(2147483647.0), 2147483647);
    EXPECT_EQ(CLng(2147483647.4), 2147483647);
    EXPECT_EQ(CLng(-2147483648.5), std::numeric_limits<std::int32_t>::min());
    for (const double value : {2147483647.5, -2147483648.6, 1e300, -1e300})
        EXPECT_EQ(ErrorOf([&] { return CLng(value); }), error_number::kOverflow) << value;
    EXPECT_EQ(ErrorOf([] { return CLng("2147483648"); }), error_number::kOverflow);
}

TEST(CInt, EndsAt16Bits) {
    EXPECT_EQ(CInt(32767.4), 32767);
    EXPECT_EQ(CInt(-32768.5), -32768);
    EXPECT_EQ(CInt(2.5), 2);
    EXPECT_EQ(CInt("-32768"), -32768);
    for (const double value : {32767.5, 32768.0, -32768.6, 1e300})
        EXPECT_EQ(ErrorOf([&] { return CInt(value); }), error_number::kOverflow) << value;
    EXPECT_EQ(ErrorOf([] { return CInt("32768"); }), error_number::kOverflow);
    EXPECT_EQ(ErrorOf([] { return CInt(""); }), error_number::kTypeMismatch);
}

TEST(WholeNumbers, RejectWhatIsNotFinite) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(ErrorOf([&] { return CLng(value); }), error_number::kOverflow);
        EXPECT_EQ(ErrorOf([&] { return CInt(value); }), error_number::kOverflow);
    }
}

TEST(CBool, TakesWordsInAnyCaseAndNumbers) {
    for (const char* text : {"True", "true", " TRUE ", "1", "-1", "0.5"}) EXPECT_TRUE(CBool(text)) << text;
    for (const char* text : {"False", "fALSE", " false", "0", "-0", "0.0"}) EXPECT_FALSE(CBool(text)) << text;
}

TEST(CBool, RejectsOtherTexts) {
    for (const char* text : {"", " ", "Tru", "Truee", "yes", "T", "True 1"})
        EXPECT_EQ(ErrorOf([&] { return CBool(text); }), error_number::kTypeMismatch) << text;
    EXPECT_EQ(ErrorOf([] { return CBool("1e999"); }), error_number::kOverflow);
}

TEST(RoundHalfEven, KeepsTheSideOfOtherFractions) {
    EXPECT_EQ(RoundHalfEven(3.5), 4.0);
    EXPECT_EQ(RoundHalfEven(4.5), 4.0);
    EXPECT_EQ(RoundHalfEven(-4.5), -4.0);
    EXPECT_EQ(RoundHalfEven(0.49999999999999994), 0.0);
    EXPECT_EQ(RoundHalfEven(4503599627370497.0), 4503599627370497.0);
}

TEST(Trim, RemovesOuterBlanksOnly) {
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Trim(""), "");
    EXPECT_EQ(Trim("\ta "), "\ta");
    EXPECT_EQ(Trim("x"), "x");
}

}  // namespace
}  // namespace sonavex
