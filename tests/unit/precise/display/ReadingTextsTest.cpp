#include <gtest/gtest.h>

#include "core/precise/display/ReadingTexts.h"

namespace sonavex {
namespace {

TEST(ReadingTextsTest, AValueHasItsDecimalsAndItsSpread) {
    const ValueText text = TextOf({-102.566, 0.0712, false}, 2);
    EXPECT_EQ(text.value, "-102.57");
    EXPECT_EQ(text.spread, "± 0.07");
    EXPECT_FALSE(text.bound);
    EXPECT_EQ(TextOf({999.75586, 0.00012, false}, 4, 4).spread, "± 0.0001");
    EXPECT_EQ(TextOf({999.75586, 1e-9, false}, 4, 4).spread, "± 0.0001");
}

TEST(ReadingTextsTest, ABoundHasOneDecimalAndNoSpread) {
    const ValueText text = TextOf({-141.23, std::nullopt, true}, 2);
    EXPECT_EQ(text.value, "≤ -141.2");
    EXPECT_EQ(TextOf({-141.27, std::nullopt, true}, 2).value, "≤ -141.2");
    EXPECT_EQ(TextOf({-141.2, std::nullopt, true}, 2).value, "≤ -141.2");
    EXPECT_EQ(text.spread, "");
    EXPECT_TRUE(text.bound);
}

TEST(ReadingTextsTest, AnUndefinedValueHasNoText) {
    EXPECT_EQ(TextOf({}, 2).value, "");
    EXPECT_EQ(TextOf({}, 2).spread, "");
    EXPECT_EQ(PercentText({}), "");
    EXPECT_FALSE(PercentOfDecibels({}).value);
}

TEST(ReadingTextsTest, DecibelsBecomePercent) {
    const Value percent = PercentOfDecibels({-40.0, 0.1, false});
    EXPECT_DOUBLE_EQ(*percent.value, 1.0);
    EXPECT_NEAR(*percent.uncertainty, 0.0115129, 1e-7);
    EXPECT_EQ(PercentText(PercentOfDecibels({-102.57, 0.07, false})), "0.000744");
    EXPECT_EQ(PercentText(PercentOfDecibels({-141.2, std::nullopt, true})), "≤ 0.000009");
    EXPECT_EQ(PercentText({12.345, std::nullopt, false}), "12.3");
}

TEST(ReadingTextsTest, QuantitiesHaveSuffixesAndUnits) {
    EXPECT_EQ(QuantityIn("997", "Hz"), 997.0);
    EXPECT_EQ(QuantityIn(" 1k ", "Hz"), 1000.0);
    EXPECT_EQ(QuantityIn("1.5 kHz", "Hz"), 1500.0);
    EXPECT_EQ(QuantityIn("20 Hz", "Hz"), 20.0);
    EXPECT_EQ(QuantityIn("1 k Hz", "Hz"), 1000.0);
    EXPECT_EQ(QuantityIn("1 khz", "Hz"), 1000.0);
    EXPECT_EQ(QuantityIn("+3 dbfs", "dBFS"), 3.0);
    EXPECT_EQ(QuantityIn("775mV", "V"), 0.775);
    EXPECT_EQ(QuantityIn("-1.00 dBFS", "dBFS"), -1.0);
    for (const char* const text :
         {"", " ", "k", "1q", "1kk", "1,5", "Hz", "1 V", "inf", "nan", "1e999", "--1", "+-1", "+"})
        EXPECT_FALSE(QuantityIn(text, "Hz")) << text;
}

}  // namespace
}  // namespace sonavex
