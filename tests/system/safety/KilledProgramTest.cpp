// The whole program, killed between start and end: the user's levels are restored, and the next start works.

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <thread>

#include "platform/plain/IniText.h"
#include "support/Files.h"
#include "support/PulseServer.h"
#include "support/Wait.h"
#include "system/safety/Account.h"
#include "system/safety/Amount.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

// Not whole percents, and different per channel.
constexpr const char* kOwnVolumes[] = {"20123", "40111"};
constexpr const char* kLine = "30,False,0,True,0,True,False,True,0,0,0,55,60,";
constexpr auto kStart = 30s;

class KilledProgram : public testing::Test {
protected:
    KilledProgram() {
        server_.Control({"set-sink-volume", "card", kOwnVolumes[0], kOwnVolumes[1]});
        WriteFile(account_.SettingsFile(), std::string("[Settings]\nVistaSoundCard=") + kLine +
                                               "\n[SoundCard]\nOutput=card\nInput=card.monitor\n");
    }

    std::unique_ptr<ChildProcess> Start() {
        return std::make_unique<ChildProcess>(
            Arguments{SONAVEX_PROGRAM},
            account_.Variables({{"PULSE_SERVER", server_.Address()}, {"SONAVEX_SOUND", ""}}),
            account_.Output());
    }
    std::string Volumes() const { return server_.Control({"get-sink-volume", "card"}); }
    bool OwnVolumes() const {
        const std::string volumes = Volumes();
        return volumes.find(kOwnVolumes[0]) != std::string::npos &&
               volumes.find(kOwnVolumes[1]) != std::string::npos;
    }
    // At any moment the changes can be undone and the settings can be read.
    void ExpectOrder(const std::string& when) const {
        if (!OwnVolumes()) {
            EXPECT_THAT(FileText(account_.Journal()),
                        AllOf(HasSubstr(kOwnVolumes[0]), HasSubstr(kOwnVolumes[1])))
                << when << ": " << Volumes();
        }
        const IniReading settings = ReadIni(FileText(account_.SettingsFile()));
        EXPECT_FALSE(settings.damaged) << when;
        EXPECT_THAT(FileText(account_.SettingsFile()), HasSubstr(kLine)) << when;
    }
    // The program captures, with its own level on the card.
    bool Runs() const {
        return !server_.Control({"list", "short", "source-outputs"}).empty() &&
               Volumes().find("30%") != std::string::npos;
    }
    // A complete run: the program sets its own levels, is asked to end, and ends normally.
    void RunInOrder(const std::string& when) {
        ASSERT_TRUE(WaitUntil([&] {
            return server_.Control({"list", "short", "source-outputs"}).empty();
        })) << when
            << ": the server still knows the killed run";
        const auto begin = std::chrono::steady_clock::now();
        const auto program = Start();
        ASSERT_TRUE(WaitUntil([&] { return Runs(); }, kStart)) << when << ": " << FileText(account_.Output());
        start_ = std::chrono::steady_clock::now() - begin;
        program->Send(SIGTERM);
        ASSERT_TRUE(program->WaitForEnd(kStart)) << when;
        EXPECT_EQ(program->Status(), 0) << when;
        EXPECT_TRUE(OwnVolumes()) << when << ": " << Volumes();
        EXPECT_FALSE(std::filesystem::exists(account_.Journal())) << when;
        ExpectOrder(when);
    }

    std::chrono::duration<double, std::micro> start_{};  // duration of the last complete start
    Account account_;
    PulseServer server_{{{"card", 48000, "Test-Card"}}};
};

TEST_F(KilledProgram, RestoresTheLevelsAndStartsAgain) {
    Chance chance("program");
    const unsigned long kills = Kills(240) / 10;
    unsigned long changed = 0;
    RunInOrder("at first");
    unsigned long ending = 0;
    for (unsigned long kill = 1; kill <= kills && !HasFailure(); ++kill) {
        const std::string when = "kill " + std::to_string(kill);
        const auto program = Start();
        std::this_thread::sleep_for(
            std::chrono::microseconds(chance.Below(static_cast<unsigned long>(1.5 * start_.count()))));
        // Every third one is killed while it ends.
        if (chance.Below(3) == 0) {
            program->Send(SIGTERM);
            std::this_thread::sleep_for(std::chrono::microseconds(chance.Below(60000)));
            ++ending;
        }
        program->Kill();
        changed += OwnVolumes() ? 0 : 1;
        ExpectOrder(when);
        if (kill % 10 == 0) RunInOrder(when);
    }
    RunInOrder("at last");
    EXPECT_THAT(NamesIn(account_.SettingsFolder()), testing::ElementsAre("Sonavex.ini", "sonavex.lock"));
    std::cout << kills << " kills: " << changed << " with the program's levels on the card, " << ending
              << " after the request to end\n";
    EXPECT_GT(changed, 0U);
}

}  // namespace
}  // namespace sonavex
