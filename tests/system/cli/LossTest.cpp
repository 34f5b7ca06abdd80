// A running measurement whose sound is lost ends soon, with status 1 and one line.

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "support/PulseServer.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr auto kSoon = 3s;

// A measurement that does not end by itself during the test.
MeasureProgram Running(const SoundServer& server) {
    return MeasureProgram({"run", "--rate", "48000", "--tone", "sine:1000", "--seconds", "600", "--json"},
                          {{"PULSE_SERVER", server.Address()}});
}

void ExpectEndSoon(MeasureProgram& program, const std::function<void()>& event, const std::string& text) {
    ASSERT_TRUE(program.Prints("\"block\":18", 10s));
    event();
    const auto start = std::chrono::steady_clock::now();
    Outcome outcome = program.End(kSoon);
    ASSERT_TRUE(outcome.ended);
    EXPECT_LT(std::chrono::steady_clock::now() - start, kSoon);
    EXPECT_THAT(outcome.output, testing::StartsWith("{\"block\":18"));
    outcome.output.clear();
    ExpectRefusal(outcome, text);
}

TEST(Loss, KilledServer) {
    PulseServer server({{"card", 48000, "Card"}});
    MeasureProgram program = Running(server);
    ExpectEndSoon(
        program, [&] { server.Kill(); }, "The connection to the sound server was lost.");
}

TEST(Loss, KilledServerIsNotWaitedForByALongBlock) {
    PulseServer server({{"card", 4000, "Card"}});
    MeasureProgram program({"run", "--rate", "4000", "--tone", "sine:500", "--json"},
                           {{"PULSE_SERVER", server.Address()}});
    std::this_thread::sleep_for(1s);
    server.Kill();
    ExpectRefusal(program.End(kSoon), "The connection to the sound server was lost.");
}

TEST(Loss, UnloadedSink) {
    PulseServer server({{"other", 48000, "Other"}});
    const std::string module = server.LoadNullSink({"card", 48000, "Card"});
    MeasureProgram program({"run", "--input", "card.monitor", "--output", "card", "--rate", "48000", "--tone",
                            "sine:1000", "--seconds", "600", "--json"},
                           {{"PULSE_SERVER", server.Address()}});
    ExpectEndSoon(
        program,
        [&] {
            server.Control({"unload-module", module});
        },
        "Card' has been removed.");
}

TEST(Loss, SuspendedSink) {
    PulseServer server({{"card", 48000, "Card"}});
    MeasureProgram program = Running(server);
    ExpectEndSoon(
        program,
        [&] {
            server.Control({"suspend-sink", "card", "1"});
        },
        "has been suspended.");
}

TEST(Loss, StoppedServer) {
    PulseServer server({{"card", 48000, "Card"}});
    MeasureProgram program = Running(server);
    ExpectEndSoon(
        program, [&] { server.Pause(); }, "The input device 'Monitor of Card' has stopped delivering sound.");
    server.Continue();
}

TEST(Loss, StoppedServerAtTheLowestRate) {
    PulseServer server({{"card", 4000, "Card"}});
    MeasureProgram program({"run", "--rate", "4000", "--tone", "sine:500", "--json"},
                           {{"PULSE_SERVER", server.Address()}});
    std::this_thread::sleep_for(2s);
    server.Pause();
    ExpectRefusal(program.End(kSoon), "has stopped delivering sound.");
    server.Continue();
}

// The program itself was stopped, as with the terminal's suspend key. That is not a fault of the device.
TEST(Loss, StoppedProgramContinues) {
    MeasureProgram program({"run", "--rate", "48000", "--tone", "sine:1000", "--seconds", "0", "--json"},
                           kSimulated);
    std::this_thread::sleep_for(300ms);
    program.Send(SIGSTOP);
    std::this_thread::sleep_for(1500ms);
    program.Send(SIGCONT);
    const Outcome outcome = program.End(20s);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, testing::HasSubstr("\"block\":37"));
}

}  // namespace
}  // namespace sonavex
