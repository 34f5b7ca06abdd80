// The whole program on the simulated card, started with a stored device that does not exist.

#include <gmock/gmock.h>

#include <QApplication>
#include <QComboBox>
#include <QTextBrowser>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/sonavex/Program.h"
#include "support/ChildProcess.h"
#include "support/DialogUser.h"

namespace sonavex {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

constexpr const char* kStored = "[SoundCard]\nOutput=gone\n";

class ProgramDevices : public testing::Test {
protected:
    ProgramDevices() {
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "userprofile"})
            setenv(name, folder.Path().c_str(), 1);
        setenv("SONAVEX_SOUND", "simulated", 1);
        fs::create_directories(SettingsFile().parent_path());
        std::ofstream(SettingsFile()) << kStored;
    }
    ~ProgramDevices() override {
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "userprofile", "SONAVEX_SOUND"})
            unsetenv(name);
    }
    fs::path SettingsFile() const { return folder.Path() / "Sonavex" / "Sonavex.ini"; }
    fs::path ErrorFile() const { return folder.Path() / "desktop" / "Quenby Error.txt"; }
    static std::string Content(const fs::path& path) {
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }

    PrivateFolder folder;
};

TEST_F(ProgramDevices, StartsThroughErrorAndSelection) {
    app::Program program;
    {
        const DialogSteps driver({[&](QDialog& error) {
                                      EXPECT_EQ(error.windowTitle(), "Sound Device Error");
                                      const std::string record = Content(ErrorFile());
                                      EXPECT_THAT(record, HasSubstr("Output Guid: gone\n"));
                                      EXPECT_THAT(record, HasSubstr("not a measurement"));
                                      EXPECT_THAT(record, HasSubstr("\nTime: 20"));
                                      Click(error, "closeButton");
                                  },
                                  [](QDialog& devices) {
                                      EXPECT_EQ(devices.windowTitle(), "Select Sound Devices");
                                      for (const char* name : {"cmbOutputMixer", "cmbInputMixer"})
                                          QTest::keyClick(&Find<QComboBox>(devices, name), Qt::Key_Down);
                                      Click(devices, "cmdOkay");
                                  }});
        ASSERT_EQ(program.Open(), std::nullopt);
    }
    EXPECT_TRUE(program.Window().isVisible());
    EXPECT_TRUE(program.Form().Instrument.Shared.EventsReady);
    EXPECT_FALSE(fs::exists(ErrorFile()));
    program.Form().Form_QueryUnload();
}

TEST_F(ProgramDevices, CanBeEndedAtOnce) {
    {
        const DialogSteps driver({[](QDialog& error) { Click(error, "Command1"); }});
        app::Program program;
        EXPECT_EQ(program.Open(), 1);
    }
    EXPECT_THAT(Content(ErrorFile()), HasSubstr("+ END +"));
    EXPECT_THAT(Content(SettingsFile()), HasSubstr("Output=gone\n"));
    EXPECT_THAT(Content(SettingsFile()), testing::Not(HasSubstr("frmMain Left")));
}

TEST_F(ProgramDevices, ShowsTheTopicOfTheSelectionInTheHelp) {
    app::Program program;
    {
        const DialogSteps driver({[](QDialog& error) { Click(error, "closeButton"); },
                                  [](QDialog& devices) {
                                      Click(devices, "cmdHelp");
                                      EXPECT_THAT(
                                          Find<QTextBrowser>(devices, "HelpPage").toPlainText().toStdString(),
                                          testing::StartsWith("Sound devices\n"));
                                      for (const char* name : {"cmbOutputMixer", "cmbInputMixer"})
                                          QTest::keyClick(&Find<QComboBox>(devices, name), Qt::Key_Down);
                                      Click(devices, "cmdOkay");
                                  }});
        ASSERT_EQ(program.Open(), std::nullopt);
    }
    program.Form().Form_QueryUnload();
}

TEST_F(ProgramDevices, ShowsTheTopicOfTheErrorInTheHelp) {
    const DialogSteps driver({[](QDialog& error) {
        Click(error, "Command2");
        EXPECT_THAT(Find<QTextBrowser>(error, "HelpPage").toPlainText().toStdString(),
                    HasSubstr("Sound device errors\n"));
        Click(error, "Command1");
    }});
    app::Program program;
    EXPECT_EQ(program.Open(), 1);
}

}  // namespace
}  // namespace sonavex
