#include <gtest/gtest.h>

#include "core/precise/RecordCollection.h"

namespace sonavex {
namespace {

// Frames numbered as given; the left sample of frame n is n steps of 2^-16, the right one its negative.
class NumberedFrames {
public:
    NumberedFrames(std::uint64_t first, std::size_t frames) : first_(first) {
        for (std::size_t i = 0; i < frames; ++i) {
            const auto number = static_cast<std::int32_t>(first + i);
            samples_.push_back(number << 15);
            samples_.push_back(-(number << 15));
        }
    }
    FineFrames Block(std::uint64_t lostBefore) const { return {samples_, first_, lostBefore, false}; }

private:
    std::uint64_t first_;
    std::vector<std::int32_t> samples_;
};

void AddNumbered(RecordCollection& records, std::uint64_t first, std::size_t frames,
                 std::uint64_t lostBefore = 0) {
    const NumberedFrames numbered(first, frames);
    records.Add(numbered.Block(lostBefore));
}

void ExpectRecordFrom(const std::vector<double>& record, std::size_t length, std::uint64_t first) {
    ASSERT_EQ(record.size(), length);
    for (std::size_t i = 0; i < length; ++i)
        ASSERT_EQ(record[i], 0x1p-16 * static_cast<double>(first + i)) << i;
}

TEST(RecordCollectionTest, DeliversTheNewestFramesAQuarterApart) {
    RecordCollection records(16, 0);
    AddNumbered(records, 100, 15);
    EXPECT_EQ(records.Collected(), 15U);
    EXPECT_FALSE(records.Due());
    AddNumbered(records, 115, 1);
    ASSERT_TRUE(records.Due());
    ExpectRecordFrom(records.Take(), 16, 100);
    EXPECT_FALSE(records.Due());
    AddNumbered(records, 116, 3);
    EXPECT_FALSE(records.Due());
    AddNumbered(records, 119, 1);
    ASSERT_TRUE(records.Due());
    ExpectRecordFrom(records.Take(), 16, 104);
    AddNumbered(records, 120, 50);
    EXPECT_EQ(records.Collected(), 16U);
    EXPECT_EQ(records.NextFrame(), 170U);
    ExpectRecordFrom(records.Take(), 16, 154);
}

TEST(RecordCollectionTest, KeepsOneChannelWithAFullScaleOfOne) {
    const std::vector<std::int32_t> samples{INT32_MIN, 0x40000000, 0, 0, 0, 0, 0, 0};
    RecordCollection left(4, 0);
    RecordCollection right(4, 1);
    for (RecordCollection* const records : {&left, &right}) records->Add({samples, 0, 0, false});
    EXPECT_EQ(left.Take()[0], -1.0);
    EXPECT_EQ(right.Take()[0], 0.5);
}

TEST(RecordCollectionTest, ALossStartsOverWithItsSentence) {
    RecordCollection records(16, 0);
    AddNumbered(records, 0, 20);
    AddNumbered(records, 532, 10, 512);
    EXPECT_EQ(records.Collected(), 10U);
    EXPECT_EQ(records.Cause(), "512 frames lost");
    EXPECT_EQ(records.Restarts(), 1U);
    EXPECT_FALSE(records.Due());
    AddNumbered(records, 542, 6);
    ASSERT_TRUE(records.Due());
    ExpectRecordFrom(records.Take(), 16, 532);
    AddNumbered(records, 549, 1, 1);
    EXPECT_EQ(records.Cause(), "1 frame lost");
}

TEST(RecordCollectionTest, BeginsAtTheGivenFrame) {
    RecordCollection records(16, 0);
    AddNumbered(records, 0, 20);
    records.BeginAt(30, "");
    EXPECT_EQ(records.Collected(), 0U);
    AddNumbered(records, 20, 10);
    EXPECT_EQ(records.Collected(), 0U);
    AddNumbered(records, 30, 1);
    EXPECT_EQ(records.Collected(), 1U);
    records.BeginAt(40, "");
    AddNumbered(records, 31, 30);
    ASSERT_TRUE(records.Due());
    ExpectRecordFrom(records.Take(), 16, 45);
    EXPECT_EQ(records.Cause(), "");
}

// The frames before it still do not count.
TEST(RecordCollectionTest, ALossDoesNotBringTheBeginForward) {
    RecordCollection records(16, 0);
    records.BeginAt(30, "");
    AddNumbered(records, 10, 5, 10);
    EXPECT_EQ(records.Collected(), 0U);
    AddNumbered(records, 15, 20);
    EXPECT_EQ(records.Collected(), 5U);
}

TEST(RecordCollectionTest, RecordsShiftedByTheirLengthDoNotOverlap) {
    RecordCollection records(16, 0, 16);
    AddNumbered(records, 0, 16);
    ASSERT_TRUE(records.Due());
    ExpectRecordFrom(records.Take(), 16, 0);
    AddNumbered(records, 16, 15);
    EXPECT_FALSE(records.Due());
    AddNumbered(records, 31, 3);
    ASSERT_TRUE(records.Due());
    ExpectRecordFrom(records.Take(), 16, 18);
}

}  // namespace
}  // namespace sonavex
