#include <gmock/gmock.h>

#include <map>
#include <memory>

#include "cli/MeasureProgram.h"
#include "support/PulseServer.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// The notes of a short measurement on a card of 48000 Hz.
std::string Notes(const PulseServer& server, const char* rate) {
    MeasureProgram program({"run", "--output", "card", "--input", "card.monitor", "--rate", rate, "--tone",
                            "sine:1000", "--seconds", "0.2", "--json"},
                           sonavex::Environment{{"PULSE_SERVER", server.Address()}});
    const Outcome outcome = program.End(30s);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const auto lines = outcome.Json();
    return lines.empty() ? "no reading" : lines.back()["notes"].dump();
}

TEST(Notes, AreNoneWhereTheSamplesPassUnchanged) {
    const PulseServer server({{"card", 48000, "Card"}});
    EXPECT_EQ(Notes(server, "48000"), "[]");
}

TEST(Notes, TellOfResampling) {
    const PulseServer server({{"card", 48000, "Card"}});
    EXPECT_EQ(Notes(server, "44100"),
              R"(["Input: resampled by the sound server, the device runs at 48000 Hz",)"
              R"("Output: resampled by the sound server, the device runs at 48000 Hz"])");
}

TEST(Notes, TellOfVolumesAndMuting) {
    PulseServer server({{"card", 48000, "Card"}});
    server.Control({"set-sink-volume", "card", "50%"});
    server.Control({"set-source-volume", "card.monitor", "80%"});
    EXPECT_EQ(Notes(server, "48000"),
              R"(["Input: volume of the device 80 %","Output: volume of the device 50 %"])");
}

}  // namespace
}  // namespace sonavex
