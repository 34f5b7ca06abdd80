#include <gtest/gtest.h>

#include "core/run/Settling.h"

namespace sonavex {
namespace {

using State = Settling::State;

Reading SettlingRecord(double levelDbfs, double thdnDb, double levelUncertainty = 1e-6,
                       double thdnUncertainty = 1e-3) {
    Reading reading;
    reading.levelDbfs = {levelDbfs, levelUncertainty};
    reading.thdnDb = {thdnDb, thdnUncertainty};
    return reading;
}

Reading VoidRecord(VoidCode code) {
    Reading reading;
    reading.voids.push_back({code, "The cause."});
    return reading;
}

// The state after the second record.
State AfterTwo(const Reading& first, const Reading& second, const SettlingLimits& limits = {}) {
    Settling settling(limits);
    EXPECT_EQ(settling.Add(first), State::kSettling);
    return settling.Add(second);
}

TEST(Settling, TwoRecordsAgreeWithinTheLimits) {
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90), SettlingRecord(-1.0099, -90.299)), State::kSettled);
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90), SettlingRecord(-1.0101, -90)), State::kSettling);
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90), SettlingRecord(-1, -89.699)), State::kSettling);
}

// 2 sqrt(0.03^2 + 0.04^2) = 0.1
TEST(Settling, UncertaintiesWidenTheLimits) {
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90, 0.03), SettlingRecord(-1.0999, -90, 0.04)), State::kSettled);
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90, 0.03), SettlingRecord(-1.1001, -90, 0.04)), State::kSettling);
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90, 0, 0.3), SettlingRecord(-1, -90.999, 0, 0.4)),
              State::kSettled);
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90, 0, 0.3), SettlingRecord(-1, -91.001, 0, 0.4)),
              State::kSettling);
}

TEST(Settling, BothLimitsCanBeSet) {
    const SettlingLimits wide{.levelDb = 0.5, .thdnDb = 3};
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90), SettlingRecord(-1.49, -92.9), wide), State::kSettled);
    const SettlingLimits narrow{.levelDb = 0.001, .thdnDb = 0.05};
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90), SettlingRecord(-1.002, -90), narrow), State::kSettling);
    EXPECT_EQ(AfterTwo(SettlingRecord(-1, -90), SettlingRecord(-1, -90.06), narrow), State::kSettling);
}

TEST(Settling, OnlySuccessiveRecordsAreCompared) {
    Settling settling({});
    settling.Add(SettlingRecord(-1, -90));
    EXPECT_EQ(settling.Add(SettlingRecord(-2, -90)), State::kSettling);
    EXPECT_EQ(settling.Add(SettlingRecord(-1, -90)), State::kSettling);
    EXPECT_EQ(settling.Add(SettlingRecord(-1, -90)), State::kSettled);
    EXPECT_EQ(settling.Records(), 4);
    EXPECT_EQ(settling.Add(SettlingRecord(-9, -90)), State::kSettled);
}

TEST(Settling, ADisturbedRecordIsOneOfADeviceThatSettles) {
    Settling settling({});
    settling.Add(SettlingRecord(-1, -90));
    EXPECT_EQ(settling.Add(VoidRecord(VoidCode::kDisturbed)), State::kSettling);
    EXPECT_EQ(settling.Add(SettlingRecord(-1, -90)), State::kSettling);
    EXPECT_EQ(settling.Add(SettlingRecord(-1, -90)), State::kSettled);
}

TEST(Settling, ALossThatTheEngineHasReportedVoids) {
    Settling settling({});
    EXPECT_EQ(settling.Add(VoidRecord(VoidCode::kDisturbed), true), State::kVoid);
    EXPECT_EQ(settling.Fault().code, "disturbed");
    EXPECT_EQ(settling.Fault().sentence, "The cause.");
}

TEST(Settling, OtherVoidRecordsVoidAtOnce) {
    for (const VoidCode code :
         {VoidCode::kOverload, VoidCode::kSilence, VoidCode::kNoTone, VoidCode::kNotFinite}) {
        Settling settling({});
        settling.Add(SettlingRecord(-1, -90));
        EXPECT_EQ(settling.Add(VoidRecord(code)), State::kVoid);
        EXPECT_EQ(settling.Fault().code, Name(code));
    }
}

TEST(Settling, AfterTenRecordsThePointIsVoid) {
    Settling settling({});
    for (int i = 0; i < 9; ++i) ASSERT_EQ(settling.Add(SettlingRecord(-1.0 * i, -90)), State::kSettling) << i;
    EXPECT_EQ(settling.Add(SettlingRecord(-20, -90)), State::kVoid);
    EXPECT_EQ(settling.Fault().code, "not settled");
    EXPECT_EQ(settling.Fault().sentence, "Level or THD+N still changed after 10 records.");
}

TEST(Settling, TheTenthRecordMayStillAgree) {
    Settling settling({});
    for (int i = 0; i < 9; ++i) settling.Add(SettlingRecord(-1.0 * i, -90));
    EXPECT_EQ(settling.Add(SettlingRecord(-8, -90)), State::kSettled);
}

TEST(Settling, DisturbedRecordsCountToo) {
    Settling settling({.records = 3});
    settling.Add(VoidRecord(VoidCode::kDisturbed));
    settling.Add(VoidRecord(VoidCode::kDisturbed));
    EXPECT_EQ(settling.Add(VoidRecord(VoidCode::kDisturbed)), State::kVoid);
    EXPECT_EQ(settling.Fault().code, "not settled");
}

}  // namespace
}  // namespace sonavex
