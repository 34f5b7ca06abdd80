#include "ui/GeneratorTabRig.h"

namespace sonavex {
namespace {

// Levels in hundredths of a decibel, times in milliseconds.
class SlidersWithNotches : public GeneratorTabRig {
protected:
    ~SlidersWithNotches() override { QApplication::setWheelScrollLines(linesPerNotch); }
    std::int32_t Level() { return Signal().sldLevel.Value(); }
    std::int32_t Time() { return Signal().sldSweepTime.Value(); }

    const int linesPerNotch = QApplication::wheelScrollLines();
};

TEST_F(SlidersWithNotches, MoveByTheSameStepOnEveryDesktop) {
    for (const int lines : {1, 3, 20}) {
        QApplication::setWheelScrollLines(lines);
        Wheel("sldLevel", -120);
        EXPECT_EQ(Level(), -100);
        EXPECT_EQ(Text("lblGenLevel"), "-1.00 dB");
        Wheel("sldLevel", 120);
        EXPECT_EQ(Level(), -50);
        Wheel("sldSweepTime", 240);
        EXPECT_EQ(Time(), 200);
        EXPECT_EQ(Box("txtSweepTime"), "200");
        EXPECT_TRUE(Tone().Sweep);
        Wheel("sldSweepTime", -240);
        EXPECT_EQ(Time(), 0);
    }
    EXPECT_EQ(Stored("Level"), "-50");
}

TEST_F(SlidersWithNotches, AddUpTheFractionsOfAFineWheel) {
    for (int i = 0; i < 7; ++i) Wheel("sldLevel", -15);
    EXPECT_EQ(Level(), -50);
    Wheel("sldLevel", 0);
    Wheel("sldLevel", -15);
    EXPECT_EQ(Level(), -100);
    for (int i = 0; i < 16; ++i) Wheel("sldSweepTime", 15);
    EXPECT_EQ(Time(), 200);
}

TEST_F(SlidersWithNotches, EndAtTheirLimits) {
    Wheel("sldLevel", 360);
    EXPECT_EQ(Level(), 0);
    Wheel("sldSweepTime", -120);
    EXPECT_EQ(Time(), 0);
}

TEST_F(SlidersWithNotches, MoveByTheirOwnStepsOfKeys) {
    const std::tuple<Qt::Key, std::int32_t, std::int32_t> steps[] = {
        {Qt::Key_PageDown, -350, 0}, {Qt::Key_PageUp, -50, 1000}, {Qt::Key_Left, -60, 990},
        {Qt::Key_Right, -50, 1000},  {Qt::Key_Down, -60, 990},    {Qt::Key_Up, -50, 1000}};
    for (const auto& [key, level, time] : steps) {
        Key("sldLevel", key);
        EXPECT_EQ(Level(), level);
        Key("sldSweepTime", key);
        EXPECT_EQ(Time(), time);
    }
}

}  // namespace
}  // namespace sonavex
