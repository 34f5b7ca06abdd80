#include "ui/GeneratorTabRig.h"

namespace sonavex {
namespace {

class MemoryTonesOnTheTab : public GeneratorTabRig {
protected:
    // Adds an entry with a sweep of sweepMs milliseconds to 2000 Hz (0: none).
    void Add(const QString& hertz, int sweepMs, bool loops = false) {
        TypeAndReturn("txtGenFreq", hertz);
        TypeAndReturn("txtSweepTime", QString::number(sweepMs));
        if (sweepMs != 0) TypeAndReturn("txtGenEndFreq", "2000");
        auto& loop = Find<QCheckBox>("chkLoop");
        if (loop.isEnabled() && loop.isChecked() != loops) loop.click();
        Settle();
        Click("cmdGenAdd");
    }
    QListWidget& List() { return Find<QListWidget>("ToneList"); }
    void ClickEntry(int row) {
        const QRect place = List().visualItemRect(List().item(row));
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, place.center());
        Settle();
    }
    bool Enabled(const char* name) { return Find<QWidget>(name).isEnabled(); }
};

TEST_F(MemoryTonesOnTheTab, AreAddedUpToEight) {
    EXPECT_EQ(Text("memoryCount"), "0 of 8");
    for (int i = 1; i <= 8; ++i) {
        EXPECT_TRUE(Enabled("cmdGenAdd"));
        Add(QString::number(100 * i), 0);
        EXPECT_EQ(Text("memoryCount"), QString("%1 of 8").arg(i));
        EXPECT_EQ(List().item(i - 1)->text(), QString("%1Hz / NA / Sine / NA / No Loop").arg(100 * i));
    }
    EXPECT_FALSE(Enabled("cmdGenAdd"));
    EXPECT_EQ(Stored("NumberOfTones"), "8");
    EXPECT_EQ(Stored("Memory Signal Start 8"), " 800");
}

TEST_F(MemoryTonesOnTheTab, AreSelectedByClicksAndRemoved) {
    for (const char* hertz : {"100", "200", "300"}) Add(hertz, 0);
    EXPECT_FALSE(Enabled("cmdRemove"));
    ClickEntry(0);
    ClickEntry(2);
    EXPECT_TRUE(Enabled("cmdRemove"));
    EXPECT_TRUE(Memory().ToneList.Selected(0));
    EXPECT_FALSE(Memory().ToneList.Selected(1));
    ClickEntry(2);
    EXPECT_FALSE(Memory().ToneList.Selected(2));
    Click("cmdRemove");
    ASSERT_EQ(List().count(), 2);
    EXPECT_EQ(List().item(0)->text(), "200Hz / NA / Sine / NA / No Loop");
    EXPECT_EQ(Text("memoryCount"), "2 of 8");
    EXPECT_FALSE(Enabled("cmdRemove"));
    EXPECT_FALSE(Enabled("cmdStartMemory"));
}

TEST_F(MemoryTonesOnTheTab, PlayWithTheListLocked) {
    for (const char* hertz : {"100", "200", "300"}) Add(hertz, 0);
    ClickEntry(0);
    ClickEntry(1);
    Click("cmdStartMemory");
    EXPECT_EQ(Find<QPushButton>("cmdStartMemory").text(), "Stop Memory");
    EXPECT_EQ(Text("runningWord"), "Generator playing 2 tones");
    EXPECT_EQ(Find<ui::StateDot>("picGenRunning").Colour(), QColor(0, 255, 0));
    for (const char* name : {"ToneList", "cmdGenAdd", "cmdRemove", "Command1", "sldStartFreq", "txtGenFreq",
                             "cmbType", "preset_1000"})
        EXPECT_FALSE(Enabled(name)) << name;
    EXPECT_TRUE(Enabled("sldLevel"));
    ClickEntry(2);
    EXPECT_FALSE(Memory().ToneList.Selected(2));
    Click("cmdStartMemory");
    EXPECT_EQ(Find<QPushButton>("cmdStartMemory").text(), "Start Memory");
    EXPECT_EQ(Text("runningWord"), "Generator stopped");
    for (const char* name : {"ToneList", "cmdGenAdd", "cmdRemove", "Command1", "sldStartFreq", "preset_1000"})
        EXPECT_TRUE(Enabled(name)) << name;
    ClickEntry(2);
    EXPECT_TRUE(Memory().ToneList.Selected(2));
}

TEST_F(MemoryTonesOnTheTab, ShowTheOnlySweep) {
    Add("500", 0);
    Add("1000", 1000);
    ClickEntry(0);
    ClickEntry(1);
    Click("cmdStartMemory");
    Advance(250);
    EXPECT_EQ(Text("runningDetail"), "sweeping, 1250 Hz");
    Advance(800);
    EXPECT_EQ(Text("runningDetail"), "sweep ended at 2000 Hz");
    Click("cmdStartMemory");
    EXPECT_EQ(Text("runningDetail"), "");
}

TEST_F(MemoryTonesOnTheTab, CountTheirSweeps) {
    Add("500", 1000);
    Add("1000", 500);
    Add("1500", 0);
    for (int row = 0; row < 3; ++row) ClickEntry(row);
    Click("cmdStartMemory");
    Advance(100);
    EXPECT_EQ(Text("runningWord"), "Generator playing 3 tones");
    EXPECT_EQ(Text("runningDetail"), "2 tones sweeping");
    Advance(500);
    EXPECT_EQ(Text("runningDetail"), "1 sweeping, 1 ended");
    Advance(500);
    EXPECT_EQ(Text("runningDetail"), "2 sweeps ended");
}

TEST_F(MemoryTonesOnTheTab, NeverEndASweepThatLoops) {
    Add("1000", 100, true);
    ClickEntry(0);
    Click("cmdStartMemory");
    for (const int hertz : {1500, 1990, 1480}) {
        Advance(hertz == 1500 ? 50 : hertz == 1990 ? 49 : 50);
        EXPECT_EQ(Text("runningDetail"), QString("sweeping, %1 Hz").arg(hertz));
    }
}

// The longest possible line; anything longer wraps.
TEST_F(MemoryTonesOnTheTab, AreShownInFull) {
    TypeAndReturn("txtGenFreq", "15999");
    TypeAndReturn("txtSweepTime", "10000");
    TypeAndReturn("txtGenEndFreq", "16000");
    Signal().cmbType.UserSelects(3);
    Settle();
    Click("cmdGenAdd");
    ASSERT_EQ(List().item(0)->text(), "15999Hz / 16000Hz  / Sawtooth / 10000ms / No Loop");
    // Padding of an entry, and the margin of its text.
    constexpr int kAround = 2 * 5 + 2 * 3;
    EXPECT_LE(List().fontMetrics().horizontalAdvance(List().item(0)->text()) + kAround,
              List().viewport()->width());
}

class SweepWords : public GeneratorTabRig {};

TEST_F(SweepWords, FollowTheCurrentSignal) {
    TypeAndReturn("txtSweepTime", "1000");
    TypeAndReturn("txtGenEndFreq", "2000");
    Click("Command1");
    EXPECT_EQ(Text("runningDetail"), "sweeping, 1000 Hz");
    Advance(500);
    EXPECT_EQ(Text("runningDetail"), "sweeping, 1500 Hz");
    Advance(500);
    EXPECT_EQ(Text("runningDetail"), "sweep ended at 2000 Hz");
    Click("Command1");
    EXPECT_EQ(Text("runningDetail"), "");
}

TEST_F(SweepWords, FollowASweepTimeSetWhileTheTonePlays) {
    Click("Command1");
    EXPECT_EQ(Text("runningDetail"), "");
    TypeAndReturn("txtSweepTime", "5000");
    EXPECT_EQ(Text("runningDetail"), "sweeping, 1000 Hz");
    Advance(1000);
    EXPECT_EQ(Text("runningDetail"), "sweeping, 804 Hz");
    TypeAndReturn("txtSweepTime", "0");
    EXPECT_EQ(Text("runningDetail"), "");
    EXPECT_EQ(Tone().Frequency, 1000.0);
}

}  // namespace
}  // namespace sonavex
