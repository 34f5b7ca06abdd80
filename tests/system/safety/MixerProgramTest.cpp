// The program on a private sound server: the user's levels are restored however it ends.

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "support/ChildProcess.h"
#include "support/PulseServer.h"
#include "support/Wait.h"
#include "support/alsa/FakeMixerCards.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

// Two different levels between whole percents.
constexpr const char* kUserVolumes[] = {"20123", "40111"};
constexpr const char* kProgramLine = "30,False,0,True,0,True,False,True,0,0,0,55,60,";

class MixerProgram : public testing::Test {
protected:
    MixerProgram() {
        server_.Control({"set-sink-volume", "card", kUserVolumes[0], kUserVolumes[1]});
        Write(kProgramLine);
    }

    std::filesystem::path Folder() const { return folder_.Path() / "Sonavex"; }
    std::filesystem::path Journal() const { return folder_.Path() / "sonavex-mixer-levels"; }
    void Write(const std::string& line, const std::string& output = "", const std::string& input = "") {
        std::filesystem::create_directories(Folder());
        std::ofstream(Folder() / "Sonavex.ini")
            << "[Settings]\nVistaSoundCard=" << line << "\n[SoundCard]\nOutput=" << output
            << "\nInput=" << input << "\n";
    }
    std::string Stored() const {
        std::ostringstream text;
        text << std::ifstream(Folder() / "Sonavex.ini").rdbuf();
        return text.str();
    }
    std::unique_ptr<ChildProcess> Start() {
        const std::string folder = folder_.Path().string();
        return std::make_unique<ChildProcess>(Arguments{SONAVEX_PROGRAM},
                                              Environment{{"QT_QPA_PLATFORM", "offscreen"},
                                                          {"PULSE_SERVER", server_.Address()},
                                                          {"XDG_CONFIG_HOME", folder},
                                                          {"XDG_RUNTIME_DIR", folder}},
                                              folder_.Path() / "output");
    }
    std::string Volumes() const { return server_.Control({"get-sink-volume", "card"}); }
    // The limit allows for a loaded machine.
    bool Reaches(const std::string& volume) const {
        return WaitUntil([&] { return Volumes().find(volume) != std::string::npos; });
    }
    void ExpectOwnVolumes() const {
        EXPECT_THAT(Volumes(), HasSubstr(kUserVolumes[0]));
        EXPECT_THAT(Volumes(), HasSubstr(kUserVolumes[1]));
    }

    PrivateFolder folder_;
    PulseServer server_{{{"card", 48000, "Test-Card"}}};
};

TEST_F(MixerProgram, RestoresTheUsersLevelsWhenAskedToEnd) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const auto program = Start();
        ASSERT_TRUE(Reaches("30%")) << "the program's own level";
        EXPECT_TRUE(std::filesystem::exists(Journal()));
        program->Send(signal);
        ASSERT_TRUE(program->WaitForEnd(30s));
        EXPECT_EQ(program->Status(), 0);
        ExpectOwnVolumes();
        EXPECT_FALSE(std::filesystem::exists(Journal()));
        EXPECT_THAT(Stored(), HasSubstr("30,False,0,True,0,True,False,True,0,0,0,"));
    }
}

TEST_F(MixerProgram, RestoresTheLevelsOfAKilledRun) {
    const auto killed = Start();
    ASSERT_TRUE(Reaches("30%"));
    killed->Kill();
    EXPECT_THAT(Volumes(), HasSubstr("30%"));
    ASSERT_TRUE(std::filesystem::exists(Journal()));
    Write("");
    const auto next = Start();
    ASSERT_TRUE(Reaches(kUserVolumes[1])) << "restored at the start";
    next->Send(SIGTERM);
    ASSERT_TRUE(next->WaitForEnd(30s));
    ExpectOwnVolumes();
}

// A second device with the same description gives the device in use another name.
TEST_F(MixerProgram, RestoresTheUsersLevelsBesideATwin) {
    const auto program = Start();
    ASSERT_TRUE(Reaches("30%")) << "the program's own level";
    server_.LoadNullSink({"twin", 48000, "Test-Card"});
    program->Send(SIGTERM);
    ASSERT_TRUE(program->WaitForEnd(30s));
    EXPECT_EQ(program->Status(), 0);
    ExpectOwnVolumes();
    EXPECT_THAT(server_.Control({"get-sink-volume", "twin"}), HasSubstr(" 100% "));
    EXPECT_FALSE(std::filesystem::exists(Journal()));
    EXPECT_THAT(Stored(), HasSubstr("30,False,0,True,0,True,False,True,0,0,0,"));
}

// The message about the line is open and not answered.
TEST_F(MixerProgram, EndsRegularlyWithALineThatDoesNotConvert) {
    Write("30,False,loud,");
    const auto program = Start();
    ASSERT_TRUE(Reaches("30%")) << "the fields before are applied";
    program->Send(SIGTERM);
    ASSERT_TRUE(program->WaitForEnd(30s));
    ExpectOwnVolumes();
    EXPECT_FALSE(std::filesystem::exists(Journal()));
    EXPECT_THAT(Stored(), HasSubstr("VistaSoundCard=30,False,loud,"));
}

// A sink with a card behind it, whose mixer has the controls that the server does not manage.
class CardProgram : public MixerProgram {
protected:
    static constexpr int kCard = 3;
    static constexpr const char* kCardLine = "30,False,100,False,0,True,True,False,-10.5,0,6,55,60,";

    CardProgram() {
        cards_.PutIn(kCard);
        server_.Control({"load-module", "module-null-sink", "sink_name=usb",
                         "sink_properties='device.description=Usb alsa.card=3'"});
        Write(kCardLine, "usb", "usb.monitor");
        server_.Control({"set-sink-volume", "usb", "65536"});
    }
    std::vector<std::int32_t> At(FakeControl control) const { return cards_.Values(kCard, control); }
    bool Reaches(FakeControl control, const std::vector<std::int32_t>& values) const {
        return WaitUntil([&] { return At(control) == values; });
    }
    void ExpectOwnLevels() const {
        EXPECT_EQ(At(kFakeLine), (std::vector<std::int32_t>{23, 23}));
        EXPECT_EQ(At(kFakeBass)[0], 7);
        EXPECT_EQ(At(kFakeTreble)[0], 7);
        EXPECT_EQ(At(kFakeMaster), (std::vector<std::int32_t>{60, 50}));
        EXPECT_THAT(server_.Control({"get-sink-volume", "usb"}), HasSubstr("65536"));
    }

    FakeMixerCards cards_;
};

TEST_F(CardProgram, SetsAndRestoresTheCardBehindTheServer) {
    const auto program = Start();
    ASSERT_TRUE(Reaches(kFakeLine, {31, 31}));
    ASSERT_TRUE(Reaches(kFakeTreble, {11, 0}));
    EXPECT_EQ(At(kFakeBass)[0], 0);
    EXPECT_EQ(At(kFakeMaster), (std::vector<std::int32_t>{60, 50})) << "the server manages this level";
    program->Send(SIGTERM);
    ASSERT_TRUE(program->WaitForEnd(30s));
    EXPECT_EQ(program->Status(), 0);
    ExpectOwnLevels();
    EXPECT_THAT(Stored(), HasSubstr("VistaSoundCard=30,False,100,False,0,True,"));
}

TEST_F(CardProgram, RestoresTheLevelsOfAKilledRun) {
    const auto killed = Start();
    ASSERT_TRUE(Reaches(kFakeTreble, {11, 0}));
    killed->Kill();
    EXPECT_EQ(At(kFakeLine), (std::vector<std::int32_t>{31, 31}));
    Write("", "usb", "usb.monitor");
    const auto next = Start();
    ASSERT_TRUE(Reaches(kFakeTreble, {7, 0}));
    next->Send(SIGTERM);
    ASSERT_TRUE(next->WaitForEnd(30s));
    ExpectOwnLevels();
}

}  // namespace
}  // namespace sonavex
