// The whole program on the simulated card: its mixer, from the menu to the meter's readings.

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QSlider>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/sonavex/Program.h"
#include "support/ChildProcess.h"
#include "support/DialogUser.h"
#include "support/QtWait.h"

namespace sonavex {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

class ProgramMixers : public testing::Test {
protected:
    ProgramMixers() {
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "userprofile"})
            setenv(name, folder_.Path().c_str(), 1);
        setenv("SONAVEX_SOUND", "simulated", 1);
    }
    ~ProgramMixers() override {
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "userprofile", "SONAVEX_SOUND"})
            unsetenv(name);
    }
    fs::path SettingsFile() const { return folder_.Path() / "Sonavex" / "Sonavex.ini"; }
    fs::path Journal() const { return folder_.Path() / "sonavex-mixer-levels"; }
    void Store(const std::string& line) const {
        fs::create_directories(SettingsFile().parent_path());
        std::ofstream(SettingsFile()) << "[Settings]\nVistaSoundCard=" << line << "\n";
    }
    std::string Stored() const {
        std::ostringstream text;
        text << std::ifstream(SettingsFile()).rdbuf();
        return text.str();
    }
    static void Choose(app::Program& program, const char* action) {
        auto* const item = program.Window().findChild<QAction*>(action);
        ASSERT_NE(item, nullptr);
        item->trigger();
    }
    // The visible window with that title.
    static QDialog* Shown(const QString& title) {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->isVisible() && widget->windowTitle() == title) return qobject_cast<QDialog*>(widget);
        return nullptr;
    }
    static bool PeakReaches(app::Program& program, float least, float most) {
        return WaitInQt(std::chrono::seconds(10), [&] {
            const float peak = program.Form().Instrument.Meter.Controls.prgADC.Value();
            return peak >= least && peak <= most;
        });
    }

private:
    PrivateFolder folder_;
};

TEST_F(ProgramMixers, ActOnWhatTheMeterReads) {
    {
        app::Program program;
        ASSERT_EQ(program.Open(), std::nullopt);
        EXPECT_TRUE(fs::exists(Journal()));
        program.Form().GeneratorPanel.Controls.Command1.Press();
        ASSERT_TRUE(PeakReaches(program, 7000.0F, 9000.0F)) << "a quarter of full scale";
        Choose(program, "mnuSoundCard");
        QDialog* const controls = Shown("Sound Controls");
        ASSERT_NE(controls, nullptr);
        Find<QSlider>(*controls, "sldLine").setValue(10);
        EXPECT_TRUE(PeakReaches(program, 700.0F, 900.0F)) << "the recording level";
        Find<QSlider>(*controls, "sldSpeakers").setValue(50);
        EXPECT_TRUE(PeakReaches(program, 350.0F, 450.0F)) << "and the speakers'";
        Find<QCheckBox>(*controls, "chkMasterMute").click();
        EXPECT_TRUE(PeakReaches(program, 32760.0F, 32760.0F)) << "silence reads as an overload";
        program.Form().Form_QueryUnload();
        EXPECT_EQ(Shown("Sound Controls"), nullptr);
        EXPECT_FALSE(fs::exists(Journal()));
    }
    EXPECT_THAT(Stored(), HasSubstr("VistaSoundCard=50,True,"));
    EXPECT_THAT(Stored(), HasSubstr(",100,10,\n"));
}

TEST_F(ProgramMixers, AreUnloadedWhenDevicesAreSelected) {
    app::Program program;
    ASSERT_EQ(program.Open(), std::nullopt);
    Choose(program, "mnuSoundCard");
    Choose(program, "mnuSoundCard");
    ASSERT_NE(Shown("Sound Controls"), nullptr);
    Click(*Shown("Sound Controls"), "cmdTone");
    ASSERT_NE(Shown("Tone Controls"), nullptr);
    {
        const DialogSteps driver({[](QDialog& devices) {
            EXPECT_EQ(devices.windowTitle(), "Select Sound Devices");
            EXPECT_EQ(Shown("Sound Controls"), nullptr);
            EXPECT_EQ(Shown("Tone Controls"), nullptr);
            devices.reject();
        }});
        Choose(program, "mnuSelectCard");
    }
    Choose(program, "mnuSoundCard");
    EXPECT_NE(Shown("Sound Controls"), nullptr) << "and shown again";
    program.Form().Form_QueryUnload();
}

class BadSavedMixers : public ProgramMixers, public testing::WithParamInterface<const char*> {};
INSTANTIATE_TEST_SUITE_P(Lines, BadSavedMixers,
                         testing::Values("50,True", "50,loud,", "99999999999,", "noise and no comma"));

TEST_P(BadSavedMixers, AreReportedAndTheProgramRuns) {
    Store(GetParam());
    {
        app::Program program;
        {
            const DialogSteps driver({[](QDialog& message) {
                const std::string text = message.property("text").toString().toStdString();
                EXPECT_THAT(text, HasSubstr("could not be applied completely"));
                EXPECT_THAT(text, HasSubstr("key \"VistaSoundCard\""));
                message.accept();
            }});
            ASSERT_EQ(program.Open(), std::nullopt);
        }
        EXPECT_TRUE(program.Window().isVisible());
        EXPECT_TRUE(program.Form().Instrument.Shared.EventsReady);
        program.Form().Form_QueryUnload();
    }
    EXPECT_THAT(Stored(), HasSubstr(",100,100,\n")) << "the levels at the end";
}

}  // namespace
}  // namespace sonavex
