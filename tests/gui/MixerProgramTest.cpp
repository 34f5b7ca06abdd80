// The program on a sound server of the test's own: the user's levels survive it, however it ends.

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "support/ChildProcess.h"
#include "support/PulseServer.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

// Between percents, and not alike.
constexpr const char* kOwnVolumes[] = {"20123", "40111"};
constexpr const char* kProgramLine = "30,False,0,True,0,True,False,True,0,0,0,55,60,";

class MixerProgram : public testing::Test {
protected:
    MixerProgram() {
        server_.Control({"set-sink-volume", "card", kOwnVolumes[0], kOwnVolumes[1]});
        Write(kProgramLine);
    }

    std::filesystem::path Folder() const { return folder_.Path() / "Sonavex"; }
    std::filesystem::path Journal() const { return Folder() / "mixer-levels"; }
    void Write(const std::string& line) {
        std::filesystem::create_directories(Folder());
        std::ofstream(Folder() / "Sonavex.ini") << "[Settings]\nVistaSoundCard=" << line << "\n";
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
    // Within a limit that a loaded machine keeps.
    bool Reaches(const std::string& volume) const {
        const auto end = std::chrono::steady_clock::now() + 30s;
        while (Volumes().find(volume) == std::string::npos) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(20ms);
        }
        return true;
    }
    void ExpectOwnVolumes() const {
        EXPECT_THAT(Volumes(), HasSubstr(kOwnVolumes[0]));
        EXPECT_THAT(Volumes(), HasSubstr(kOwnVolumes[1]));
    }

    PrivateFolder folder_;
    PulseServer server_{{{"card", 48000, "Test-Card"}}};
};

TEST_F(MixerProgram, PutsTheUsersLevelsBackWhenAskedToEnd) {
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

TEST_F(MixerProgram, OfAKilledRunIsMadeGoodByTheNextOne) {
    const auto killed = Start();
    ASSERT_TRUE(Reaches("30%"));
    killed->Kill();
    EXPECT_THAT(Volumes(), HasSubstr("30%"));
    ASSERT_TRUE(std::filesystem::exists(Journal()));
    Write("");
    const auto next = Start();
    ASSERT_TRUE(Reaches(kOwnVolumes[1])) << "given back at the start";
    next->Send(SIGTERM);
    ASSERT_TRUE(next->WaitForEnd(30s));
    ExpectOwnVolumes();
}

}  // namespace
}  // namespace sonavex
