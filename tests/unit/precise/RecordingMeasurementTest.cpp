#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "core/precise/RecordingMeasurement.h"
#include "support/MemoryFiles.h"
#include "unit/precise/HeldBackground.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t kRecordedLength = 4096;
constexpr double kRecordedToneHz = 500.0;

// Second harmonic -60 dBc. The level rises by 6 dB at `louderFrom`.
MemoryFiles::Sound Recorded(std::int64_t frames, std::int64_t louderFrom = -1) {
    MemoryFiles::Sound sound;
    sound.frames = frames;
    sound.sample = [louderFrom](std::int64_t frame) {
        const double turn = 2.0 * std::numbers::pi * kRecordedToneHz / 8000.0 * static_cast<double>(frame);
        const double gain = louderFrom >= 0 && frame >= louderFrom ? 2.0 : 1.0;
        return gain * 0.25 * (std::sin(turn) + 0.001 * std::sin(2.0 * turn));
    };
    return sound;
}

PreciseSettings RecordedSettings() {
    PreciseSettings settings;
    settings.length = kRecordedLength;
    return settings;
}

class RecordingMeasurementTest : public testing::Test {
protected:
    RecordingMeasurementTest() {
        measurement->OnReading = [this](const LinesReading& reading,
                                        std::shared_ptr<const RecordingAnalysis> analysis) {
            readings.push_back(reading.reading);
            last = std::move(analysis);
        };
        measurement->OnFailure = [this](const std::string& sentence) { failures.push_back(sentence); };
        measurement->OnProgress = [this](std::size_t measured, std::optional<std::size_t> records) {
            progress.emplace_back(measured, records.value_or(0));
        };
    }
    void Open(const MemoryFiles::Sound& sound) {
        files.sounds["r.wav"] = sound;
        measurement->Open("r.wav");
    }
    void Complete() {
        while (measurement->Measuring()) background.Complete();
    }

    MemoryFiles files;
    HeldBackground background;
    std::unique_ptr<RecordingMeasurement> measurement =
        std::make_unique<RecordingMeasurement>(RecordingMeasurement::Needs{files, background});
    std::vector<Reading> readings;
    std::vector<std::string> failures;
    std::vector<std::pair<std::size_t, std::size_t>> progress;
    std::shared_ptr<const RecordingAnalysis> last;
};

TEST_F(RecordingMeasurementTest, MeasuresAllRecordsToTheLastFrame) {
    Open(Recorded(7000));
    EXPECT_EQ(measurement->RecordsOfLength(kRecordedLength), 4U);
    measurement->MeasureAll(RecordedSettings());
    EXPECT_THAT(readings, IsEmpty());
    Complete();
    ASSERT_EQ(readings.size(), 1U);
    EXPECT_EQ(readings[0].blocks, 4U);
    EXPECT_NEAR(readings[0].thdDb.value.value(), -60.0, 1e-5);
    EXPECT_NEAR(readings[0].levelDbfs.value.value(), 20.0 * std::log10(0.25), 1e-5);
    EXPECT_EQ(last->Samples().back(), files.sounds["r.wav"].sample(6999));
    EXPECT_EQ(last->Samples().size(), last->Residual().size());
    EXPECT_EQ(last->Spectrum().records, 4U);
    EXPECT_THAT(progress, ElementsAre(testing::Pair(1, 4), testing::Pair(2, 4), testing::Pair(3, 4),
                                      testing::Pair(4, 4)));
}

TEST_F(RecordingMeasurementTest, MeasuresOneRecord) {
    Open(Recorded(7000));
    measurement->MeasureRecord(RecordedSettings(), 1);
    Complete();
    EXPECT_EQ(last->Samples().front(), files.sounds["r.wav"].sample(1024));
    measurement->MeasureRecord(RecordedSettings(), 3);
    Complete();
    EXPECT_EQ(last->Samples().back(), files.sounds["r.wav"].sample(6999));
    ASSERT_EQ(readings.size(), 2U);
    EXPECT_EQ(readings[1].blocks, 1U);
    EXPECT_NEAR(readings[1].thdDb.value.value(), -60.0, 1e-5);
}

// As for the command line: one void record voids the reading, but the other records can be chosen.
TEST_F(RecordingMeasurementTest, OneVoidRecordVoidsTheWhole) {
    Open(Recorded(12000, 7000));
    measurement->MeasureAll(RecordedSettings());
    Complete();
    ASSERT_EQ(readings.size(), 1U);
    ASSERT_FALSE(readings[0].Valid());
    EXPECT_EQ(readings[0].voids.at(0).code, VoidCode::kDisturbed);
    EXPECT_EQ(readings[0].thdDb.value, std::nullopt);
    measurement->MeasureRecord(RecordedSettings(), 0);
    Complete();
    EXPECT_TRUE(readings.at(1).Valid());
}

// The level falls by 0.02 dB from record to record, and only the first record reaches full scale.
TEST_F(RecordingMeasurementTest, ADriftingToneIsMeasuredInPartWithAWarning) {
    MemoryFiles::Sound sound = Recorded(12000);
    sound.sample = [steady = sound.sample](std::int64_t frame) {
        return 4.004 * std::pow(10.0, -0.001 / 1024.0 * static_cast<double>(frame)) * steady(frame);
    };
    Open(sound);
    measurement->MeasureAll(RecordedSettings());
    Complete();
    ASSERT_EQ(readings.size(), 1U);
    ASSERT_TRUE(readings[0].Valid());
    ASSERT_EQ(progress.size(), 9U);
    EXPECT_EQ(readings[0].blocks, 1U);
    EXPECT_EQ(last->Spectrum().records, 1U);
    ASSERT_EQ(readings[0].warnings.size(), 2U);
    EXPECT_EQ(readings[0].warnings[0].sentence,
              "The level or the frequency of a tone differs between records: the reading contains the newest "
              "1 of 9 records.");
    EXPECT_EQ(readings[0].warnings[1].code, WarningCode::kClipped);
}

TEST_F(RecordingMeasurementTest, ShorterThanARecordIsTooShort) {
    for (const std::int64_t frames : {4095, 0}) {
        readings.clear();
        Open(Recorded(frames));
        EXPECT_EQ(measurement->RecordsOfLength(kRecordedLength), 1U);
        measurement->MeasureAll(RecordedSettings());
        Complete();
        EXPECT_EQ(readings.at(0).voids.at(0).code, VoidCode::kTooShort) << frames;
    }
}

TEST_F(RecordingMeasurementTest, OfUnknownLengthIsMeasuredToItsEnd) {
    MemoryFiles::Sound sound = Recorded(7000);
    sound.lengthKnown = false;
    Open(sound);
    EXPECT_EQ(measurement->RecordsOfLength(kRecordedLength), std::nullopt);
    measurement->MeasureAll(RecordedSettings());
    Complete();
    EXPECT_EQ(readings.at(0).blocks, 4U);
}

// Ten hours are read in steps of a record, one at a time.
TEST_F(RecordingMeasurementTest, ReadsNoMoreThanARecordAtOnce) {
    Open(Recorded(288000000));
    measurement->MeasureAll(RecordedSettings());
    for (int step = 0; step < 20; ++step) background.Complete();
    EXPECT_EQ(files.longestRead, kRecordedLength);
    EXPECT_EQ(background.tasks, 21);
    EXPECT_TRUE(measurement->Measuring());
}

TEST_F(RecordingMeasurementTest, CanBeCancelledAndReplaced) {
    Open(Recorded(7000));
    measurement->MeasureAll(RecordedSettings());
    background.Complete();
    measurement->Cancel();
    EXPECT_FALSE(measurement->Measuring());
    background.Complete();
    EXPECT_EQ(progress.size(), 1U);
    measurement->MeasureAll(RecordedSettings());
    measurement->MeasureRecord(RecordedSettings(), 2);
    Complete();
    ASSERT_EQ(readings.size(), 1U);
    EXPECT_EQ(readings[0].blocks, 1U);
}

TEST_F(RecordingMeasurementTest, MayEndWhileItMeasures) {
    Open(Recorded(7000));
    measurement->MeasureAll(RecordedSettings());
    measurement.reset();
    background.Complete();
    EXPECT_THAT(readings, IsEmpty());
}

TEST_F(RecordingMeasurementTest, ExplainsWhatCannotBeRead) {
    EXPECT_THROW(measurement->Open("missing.wav"), FileError);
    EXPECT_EQ(measurement->Opened().path, "");
    MemoryFiles::Sound sound = Recorded(7000);
    sound.damagedAt = 6000;
    Open(sound);
    EXPECT_THROW(measurement->Open("missing.wav"), FileError);
    EXPECT_EQ(measurement->Opened().path, "r.wav");
    measurement->MeasureAll(RecordedSettings());
    Complete();
    EXPECT_THAT(failures, ElementsAre("The recording is damaged."));
    PreciseSettings right = RecordedSettings();
    right.channel = 1;
    measurement->MeasureAll(right);
    Complete();
    EXPECT_THAT(failures, ElementsAre(testing::_, "The recording has only one channel."));
    EXPECT_THAT(readings, IsEmpty());
}

}  // namespace
}  // namespace sonavex
