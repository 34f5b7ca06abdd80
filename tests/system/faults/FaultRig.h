#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QLabel>
#include <QSlider>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "app/sonavex/Program.h"
#include "support/ChildProcess.h"
#include "support/FineUser.h"
#include "support/QtWait.h"
#include "system/faults/Attendant.h"

namespace sonavex {

// Resources of a process.
struct Holdings {
    std::ptrdiff_t files = 0;
    std::ptrdiff_t threads = 0;
    double bytes = 0;

    static Holdings Now() {
        const auto entries = [](const char* folder) {
            return std::distance(std::filesystem::directory_iterator(folder),
                                 std::filesystem::directory_iterator());
        };
        return {entries("/proc/self/fd"), entries("/proc/self/task"),
                static_cast<double>(mallinfo2().uordblks)};
    }
};

// The whole program in a private account, on the sound that the environment selects, with its user.
class FaultRig : public testing::Test {
protected:
    using Clock = std::chrono::steady_clock;
    static constexpr auto kHangLimit = std::chrono::milliseconds(3000);
    static constexpr auto kLimit = std::chrono::seconds(20);
    // Memory that a run may leave behind, in bytes; each of the program's buffers is larger.
    static constexpr double kKeptBytes = 96 * 1024;

    FaultRig() {
        for (const char* name : kFolders) setenv(name, folder_.Path().c_str(), 1);
        unsetenv("SONAVEX_SOUND");
    }
    ~FaultRig() override {
        for (const char* name : kFolders) unsetenv(name);
        unsetenv("PULSE_SERVER");
    }

    // Writes the settings before the first start.
    void Store(const std::string& text) {
        std::filesystem::create_directories(SettingsFile().parent_path());
        std::ofstream(SettingsFile()) << text;
    }

    // Runs the story twice in one process, with a new program each time. The first run loads the libraries;
    // whatever the second adds is a leak.
    template <class Story>
    void Twice(Story story) {
        Run(story);
        if (HasFatalFailure()) return;
        const Holdings before = Holdings::Now();
        Run(story);
        ExpectNothingKept(before);
    }
    static void ExpectNothingKept(const Holdings& before) {
        const Holdings after = Holdings::Now();
        EXPECT_EQ(after.files, before.files);
        EXPECT_EQ(after.threads, before.threads);
        // A sanitizer replaces the allocator and finds leaks itself.
#if !defined(SONAVEX_SANITIZED)
        EXPECT_LT(after.bytes - before.bytes, kKeptBytes);
#endif
    }
    template <class Story>
    void Run(Story story) {
        std::filesystem::remove(ErrorFile());
        record_.clear();
        attendant_.emplace();
        attendant_->OnError = [this] { Look(); };
        attendant_->OnSelection = onSelection;
        program_ = std::make_unique<app::Program>();
        const std::optional<int> ended = program_->Open();
        EXPECT_EQ(ended, std::nullopt);
        if (!ended) {
            // Full volume, so that fine frames return bit for bit.
            Form().GeneratorPanel.Controls.sldLevel.UserMoves(0);
            if (usesFine) {
                fine_.emplace(Form().Instrument.Fine, fineBits);
                fine_->Play(true);
            }
            story();
            EXPECT_EQ(fine_ ? fine_->Fault() : "", "");
        }
        EXPECT_LE(attendant_->LongestFreeze(), kHangLimit);
        if (!ended) {
            program_->Form().Form_QueryUnload();
            EXPECT_LE(attendant_->LongestFreeze(), kHangLimit);
        }
        fine_.reset();
        program_.reset();
        EXPECT_THAT(attendant_->Messages, testing::IsEmpty());
        attendant_.reset();
        if (afterRun) afterRun();
    }

    frmMain& Form() {
        return program_->Form();
    }
    frmAnalyzer& Analyzer() {
        return program_->Analyzer().Form();
    }
    Attendant& User() {
        return *attendant_;
    }

    // Blocks and fine frames arrive, the fine source is played, and the window shows it.
    void ExpectMeasuring() {
        const std::uint64_t blocks = Form().Instrument.Engine.Blocks;
        const std::uint64_t fineFrames = fine_->Frames();
        const std::uint64_t filled = fine_->Filled();
        EXPECT_TRUE(WaitInQt(kLimit, [&] { return Form().Instrument.Engine.Blocks >= blocks + 3; }))
            << Record();
        EXPECT_TRUE(
            WaitInQt(kLimit, [&] { return fine_->Frames() > fineFrames && fine_->Filled() > filled; }));
        EXPECT_FALSE(Form().Instrument.Watch.Stopped());
        // The window is updated with the next event, and one event may deliver several blocks.
        QCoreApplication::processEvents();
        EXPECT_FALSE(Note().isVisible());
    }
    // While the fine source plays, neither generator nor input is heard. It plays at first.
    void PlayFine(bool on) {
        fine_->Play(on);
    }
    // The loop returns the sine without distortion.
    void ExpectLoop(const std::string& reading = "1000") {
        PlayFine(false);
        Form().GeneratorPanel.Controls.Command1.Press();
        EXPECT_TRUE(WaitInQt(kLimit, [&] {
            const MeterView& shown = Form().Instrument.Meter.Display.View();
            return Form().Instrument.Meter.Controls.txtFreq.Text() == reading && shown.totalInPercent &&
                   !shown.settling;
        })) << Form().Instrument.Meter.Controls.txtFreq.Text();
        Form().GeneratorPanel.Controls.Command1.Press();
        PlayFine(true);
        ExpectFineLoop();
    }
    // The loop returns the numbered frames of the fine source.
    void ExpectFineLoop() {
        constexpr std::uint64_t kFrames = 4096;
        fine_->ExpectReturn(true, wire);
        EXPECT_TRUE(WaitInQt(kLimit, [&] { return fine_->Returned() >= kFrames; })) << fine_->Returned();
        fine_->ExpectReturn(false);
        EXPECT_EQ(fine_->Fault(), "");
    }
    // The loss was noticed in time, recorded and reported once, and the readings were marked.
    void ExpectLoss(const std::string& what) {
        const auto limit = Form().Instrument.Watch.Patience() + kHangLimit;
        EXPECT_TRUE(WaitInQt(std::chrono::duration_cast<std::chrono::milliseconds>(limit),
                             [&] { return !User().Errors.empty(); }));
        ASSERT_EQ(User().Errors.size(), 1U);
        EXPECT_THAT(User().Errors[0], testing::AllOf(testing::StartsWith("The sound device in use was lost."),
                                                     testing::HasSubstr(what)));
        EXPECT_THAT(record_, testing::AllOf(testing::HasSubstr("The sound device in use was lost."),
                                            testing::HasSubstr(what)));
        EXPECT_TRUE(markedAtError_);
        EXPECT_EQ(Form().Instrument.Watch.Losses(), 1U);
    }
    // The program continues by itself when the device is back, without another message.
    void ExpectReturn() {
        EXPECT_TRUE(WaitInQt(kLimit, [&] { return !Form().Instrument.Watch.Stopped(); }));
        ExpectMeasuring();
        EXPECT_EQ(User().Errors.size(), 1U);
        EXPECT_EQ(Form().Instrument.Watch.Losses(), 1U);
    }

    // These apply to all later runs. `afterRun` is called when the program has ended.
    std::function<void(QDialog&)> onSelection;
    std::function<void()> afterRun;
    bool usesFine = true;  // false: the Analyzer has the fine path
    int fineBits = 16;     // of the frames of the fine source
    FineUser::Wire wire = FineUser::Wire::kExact;

    QLabel& Note() {
        return *program_->Window().findChild<QLabel*>(QStringLiteral("streamNote"));
    }
    // The record at the time of the last error dialog.
    const std::string& Record() const {
        return record_;
    }
    std::filesystem::path ErrorFile() const {
        return folder_.Path() / "desktop" / "Quenby Error.txt";
    }
    std::filesystem::path SettingsFile() const {
        return folder_.Path() / "Sonavex" / "Sonavex.ini";
    }

private:
    void Look() {
        std::ostringstream text;
        text << std::ifstream(ErrorFile()).rdbuf();
        record_ = text.str();
        markedAtError_ = program_->Window().isVisible() && Note().isVisible();
    }

    static constexpr const char* kFolders[] = {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "userprofile"};

    PrivateFolder folder_;
    std::optional<Attendant> attendant_;
    std::unique_ptr<app::Program> program_;
    std::optional<FineUser> fine_;
    std::string record_;
    bool markedAtError_ = false;
};

}  // namespace sonavex
