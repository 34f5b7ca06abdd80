#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "core/precise/recordings/RecordingPanel.h"
#include "support/MemoryFiles.h"
#include "unit/precise/HeldBackground.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Keeps the messages.
class KeptMessages : public Dialogs {
public:
    void Message(const std::string& text, MessageIcon) override { texts.push_back(text); }
    bool AskOkCancel(const std::string&) override { return false; }
    bool AskYesNo(const std::string&) override { return false; }
    void SetBusyPointer(bool) override {}
    std::vector<std::string> texts;
};

class RecordingPanelTest : public testing::Test {
protected:
    RecordingPanelTest() {
        Add("a/tone.wav", 7000);
        panel.Settings = [this] { return settings; };
        panel.OnReading = [this](const LinesReading& reading, const auto&) {
            readings.push_back(reading.reading);
        };
        panel.OnChanged = [this] { ++changes; };
        panel.OnStarted = [this] { ++starts; };
        settings.length = 4096;
    }
    void Add(const char* name, std::int64_t frames) {
        MemoryFiles::Sound sound;
        sound.frames = frames;
        sound.sample = [](std::int64_t frame) {
            return 0.25 * std::sin(2.0 * std::numbers::pi * 0.0625 * static_cast<double>(frame));
        };
        files.sounds[name] = sound;
    }
    void Complete() {
        while (panel.Measuring()) background.Complete();
    }

    MemoryFiles files;
    HeldBackground background;
    KeptMessages messages;
    PreciseSettings settings;
    RecordingPanel panel{{files, background, messages}};
    std::vector<Reading> readings;
    int changes = 0;
    int starts = 0;
};

TEST_F(RecordingPanelTest, MeasuresAllAndThenOneRecord) {
    panel.AskForFile = [] { return std::string("a/tone.wav"); };
    panel.cmdOpen.Press();
    EXPECT_TRUE(panel.IsOpen());
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(panel.FileName(), "tone.wav");
    EXPECT_EQ(panel.Note(), "recording, 53 bit (float), 0.9 s");
    background.Complete();
    EXPECT_EQ(panel.lblBlock.Caption(), "1 of 4 records");
    Complete();
    EXPECT_EQ(panel.lblBlock.Caption(), "4 records");
    EXPECT_EQ(readings.at(0).blocks, 4U);
    EXPECT_FALSE(panel.sldBlock.Enabled());
    panel.chkAveraged.UserSets(false);
    EXPECT_TRUE(panel.sldBlock.Enabled());
    panel.sldBlock.UserMoves(99);
    EXPECT_EQ(panel.lblBlock.Caption(), "record 4 of 4 at 0.363 s");
    Complete();
    EXPECT_EQ(readings.back().blocks, 1U);
    EXPECT_EQ(starts, 3);
}

TEST_F(RecordingPanelTest, LeavesTheRecording) {
    EXPECT_FALSE(panel.cmdLive.Enabled());
    panel.Open("a/tone.wav");
    EXPECT_TRUE(panel.cmdLive.Enabled());
    panel.cmdLive.Press();
    background.Complete();
    EXPECT_FALSE(panel.IsOpen());
    EXPECT_FALSE(panel.cmdLive.Enabled());
    EXPECT_EQ(panel.lblBlock.Caption(), "");
    EXPECT_EQ(changes, 2);
    EXPECT_THAT(readings, IsEmpty());
    panel.Close();
    panel.Restart();
    EXPECT_EQ(changes, 2);
}

// The slider keeps to the records that a changed length leaves.
TEST_F(RecordingPanelTest, FollowsTheLength) {
    panel.Open("a/tone.wav");
    panel.chkAveraged.UserSets(false);
    panel.sldBlock.UserMoves(3);
    settings.length = 8192;
    panel.Restart();
    EXPECT_EQ(panel.lblBlock.Caption(), "record 1 of 1 at 0.000 s");
    Complete();
    EXPECT_EQ(readings.back().voids.at(0).code, VoidCode::kTooShort);
}

TEST_F(RecordingPanelTest, MeasuresAllOfUnknownLength) {
    files.sounds["a/tone.wav"].lengthKnown = false;
    panel.Open("a/tone.wav");
    EXPECT_FALSE(panel.chkAveraged.Enabled());
    EXPECT_EQ(panel.Note(), "recording, 53 bit (float)");
    background.Complete();
    EXPECT_EQ(panel.lblBlock.Caption(), "1 record");
    Complete();
    EXPECT_EQ(readings.size(), 1U);
}

TEST_F(RecordingPanelTest, ReportsWhatCannotBeRead) {
    panel.cmdOpen.Press();
    panel.Open("missing.wav");
    EXPECT_THAT(messages.texts, ElementsAre("There is no missing.wav."));
    EXPECT_FALSE(panel.IsOpen());
    panel.Open("a/tone.wav");
    panel.Open("missing.wav");
    EXPECT_EQ(panel.FileName(), "tone.wav");
    files.sounds["a/tone.wav"].damagedAt = 6000;
    Complete();
    EXPECT_THAT(messages.texts, ElementsAre(testing::_, testing::_, "The recording is damaged."));
    EXPECT_FALSE(panel.IsOpen());
}

}  // namespace
}  // namespace sonavex
