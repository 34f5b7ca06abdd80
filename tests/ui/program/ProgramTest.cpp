#include <gmock/gmock.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/common/Sound.h"
#include "app/sonavex/Program.h"
#include "core/settings/SettingsKeys.h"
#include "support/CallLog.h"
#include "support/ChildProcess.h"
#include "support/DialogUser.h"
#include "support/FakeSoundSystem.h"
#include "support/QtWait.h"
#include "support/Recorders.h"
#include "support/VirtualEventLoop.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Presses the button of each message box and stores the texts.
class Reader {
public:
    explicit Reader(QMessageBox::StandardButton button) : button_(button) {}
    std::vector<std::string> Texts;

private:
    void Answer(QDialog& dialog) {
        auto* const box = qobject_cast<QMessageBox*>(&dialog);
        if (box == nullptr) return;
        Texts.push_back(box->text().toStdString());
        QAbstractButton* const wanted = box->button(button_);
        (wanted != nullptr ? wanted : box->buttons().front())->click();
    }

    QMessageBox::StandardButton button_;
    DialogUser user_{[this](QDialog& dialog) { Answer(dialog); }};
};

// The program in a private account on the simulated card.
class ProgramTest : public testing::Test {
protected:
    ProgramTest() {
        setenv("XDG_CONFIG_HOME", folder_.Path().c_str(), 1);
        setenv("XDG_RUNTIME_DIR", folder_.Path().c_str(), 1);
        setenv("SONAVEX_SOUND", "simulated", 1);
    }
    ~ProgramTest() override {
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "SONAVEX_SOUND"}) unsetenv(name);
    }
    std::filesystem::path File() const { return folder_.Path() / "Sonavex" / "Sonavex.ini"; }
    std::string Stored() const {
        std::ostringstream text;
        text << std::ifstream(File()).rdbuf();
        return text.str();
    }
    void Write(const std::string& text) {
        std::filesystem::create_directories(File().parent_path());
        std::ofstream(File()) << text;
    }

    PrivateFolder folder_;
    Reader reader_{QMessageBox::Ok};
};

TEST_F(ProgramTest, OpensMeasuresAndEndsWithStatusZero) {
    {
        app::Program program;
        ASSERT_EQ(program.Open(), std::nullopt);
        EXPECT_TRUE(program.Window().isVisible());
        EXPECT_EQ(program.Form().lblInput.Caption(), "Simulated sound card (not a measurement)");
        program.Form().GeneratorPanel.Controls.Command1.Press();
        EXPECT_TRUE(WaitInQt(kPatience, [&] { return program.Form().Instrument.Meter.Blocks() >= 3; }));
        QTimer::singleShot(0, [&] { program.Window().close(); });
        EXPECT_EQ(QApplication::exec(), 0);
    }
    EXPECT_THAT(Stored(), HasSubstr("LastTab=0"));
    EXPECT_THAT(reader_.Texts, IsEmpty());
}

TEST_F(ProgramTest, LeavesTheSettingsAloneWhenAnErrorEndsTheStart) {
    Write("[Settings]\nAuto=perhaps\n");
    const std::string before = Stored();
    {
        app::Program program;
        EXPECT_EQ(program.Open(), 1);
    }
    EXPECT_EQ(Stored(), before);
    ASSERT_EQ(reader_.Texts.size(), 1U);
    EXPECT_THAT(reader_.Texts[0], HasSubstr("Run-time error '13':"));
    EXPECT_THAT(reader_.Texts[0], HasSubstr("\"Auto\""));
    EXPECT_THAT(reader_.Texts[0], HasSubstr("Sonavex.ini"));
}

TEST_F(ProgramTest, SaysWhichSoundItDoesNotKnow) {
    setenv("SONAVEX_SOUND", "gramophone", 1);
    app::Program program;
    EXPECT_EQ(program.Open(), 1);
    ASSERT_EQ(reader_.Texts.size(), 1U);
    EXPECT_THAT(reader_.Texts[0], HasSubstr("gramophone"));
}

TEST_F(ProgramTest, RefusesToRunTwiceAndTouchesNothing) {
    app::Program first;
    ASSERT_EQ(first.Open(), std::nullopt);
    QApplication::processEvents();
    const std::string before = Stored();
    EXPECT_THAT(before, HasSubstr("Level=-50"));
    {
        app::Program second;
        EXPECT_EQ(second.Open(), 0);
    }
    EXPECT_THAT(reader_.Texts, ElementsAre("Another instance of Quenby Sonavex is running"));
    EXPECT_EQ(Stored(), before);
    first.Form().Form_QueryUnload();
}

TEST_F(ProgramTest, KeepsADamagedSettingsFileAside) {
    std::string noise("[Settings\n\0\x01\xff=\n", 15);
    Write(noise);
    {
        app::Program program;
        ASSERT_EQ(program.Open(), std::nullopt);
        program.Form().Form_QueryUnload();
    }
    bool kept = false;
    for (const auto& entry : std::filesystem::directory_iterator(File().parent_path())) {
        std::ostringstream text;
        text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        kept = kept || text.str() == noise;
    }
    EXPECT_TRUE(kept);
    EXPECT_EQ(reader_.Texts.size(), 1U);
}

// A message within the step would stop the sweep. A file has the place of the settings' folder.
TEST_F(ProgramTest, ReportsUnwritableSettingsAfterTheStepOfASweep) {
    app::Program program;
    ASSERT_EQ(program.Open(), std::nullopt);
    QApplication::processEvents();
    const std::filesystem::path folder = File().parent_path();
    const std::filesystem::path moved = folder_.Path() / "moved";
    std::filesystem::rename(folder, moved);
    std::ofstream{folder};
    Instrument& instrument = program.Form().Instrument;
    instrument.HiTimer1.SetEnabled(true);
    instrument.Settings.Save(keys::kLastTab, "1");
    instrument.HiTimer1.Tick();
    EXPECT_THAT(reader_.Texts, IsEmpty());
    EXPECT_TRUE(WaitInQt(kPatience, [&] { return !reader_.Texts.empty(); }));
    std::filesystem::remove(folder);
    std::filesystem::rename(moved, folder);
    program.Form().Form_QueryUnload();
    EXPECT_THAT(reader_.Texts, ElementsAre(HasSubstr("The settings cannot be stored in ")));
}

TEST(DisplayProbe, ReportsWhetherThereIsADisplay) {
    const PrivateFolder folder;
    const auto status = [&](const Environment& environment) {
        ChildProcess probe({SONAVEX_PROGRAM, "--probe-display"}, environment, folder.Path() / "output");
        EXPECT_TRUE(probe.WaitForEnd(20s));
        return probe.Status();
    };
    EXPECT_EQ(status({{"QT_QPA_PLATFORM", "offscreen"}}), 0);
    EXPECT_NE(status({{"QT_QPA_PLATFORM", "xcb"}, {"DISPLAY", ":987"}}), 0);
}

// The selected kind of sound, identified by its device lists.
struct Offer {
    CallLog log;
    RecordingDialogs dialogs{log};
    CallLog systemLog;
    CallLog simulatedLog;
    std::function<void(FakeSoundSystem&)> prepare = [](FakeSoundSystem&) {};

    bool Simulated(app::Sound wanted) {
        const auto make = [](CallLog& callLog, const std::function<void(FakeSoundSystem&)>& change) {
            auto system = std::make_unique<FakeSoundSystem>(callLog);
            change(*system);
            return system;
        };
        const auto chosen = app::OfferSound(
            wanted,
            [&](app::Sound sound) {
                return sound == app::Sound::kSystem ? make(systemLog, prepare)
                                                    : make(simulatedLog, [](auto&) {});
            },
            dialogs);
        return &dynamic_cast<FakeSoundSystem&>(*chosen).log == &simulatedLog;
    }
};

TEST(SoundOffer, IsNotMadeWhereTheSystemHasSound) {
    Offer offer;
    EXPECT_FALSE(offer.Simulated(app::Sound::kSystem));
    EXPECT_TRUE(offer.Simulated(app::Sound::kSimulated));
    EXPECT_THAT(offer.log.Lines(), IsEmpty());
}

TEST(SoundOffer, IsMadeWhereSomethingIsMissing) {
    const std::vector<std::pair<std::function<void(FakeSoundSystem&)>, std::string>> cases{
        {[](FakeSoundSystem& system) { system.playbackDevices.resize(1); }, "The system has no sound card."},
        {[](FakeSoundSystem& system) { system.captureDevices.resize(1); }, "The system has no sound input."},
        {[](FakeSoundSystem& system) {
             system.log.Fail("EnumeratePlayback", RuntimeError(error_number::kInvalidCall, "no server"));
         },
         "no server"},
        {[](FakeSoundSystem& system) {
             system.log.Fail("EnumerateCapture", RuntimeError(error_number::kInvalidCall, "gone"));
         },
         "gone"}};
    for (const auto& [prepare, text] : cases) {
        for (const bool accepted : {true, false}) {
            Offer offer;
            offer.prepare = prepare;
            offer.dialogs.Answer = accepted;
            EXPECT_EQ(offer.Simulated(app::Sound::kSystem), accepted);
            ASSERT_EQ(offer.log.Count("AskOkCancel"), 1U);
            EXPECT_THAT(offer.log.Lines()[0], HasSubstr(text));
            EXPECT_THAT(offer.log.Lines()[0], HasSubstr("not a measurement"));
        }
    }
}

}  // namespace
}  // namespace sonavex
