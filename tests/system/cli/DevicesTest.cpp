#include <gmock/gmock.h>

#include <chrono>

#include "support/PulseServer.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;
using testing::HasSubstr;

ordered_json Device(const char* id, const char* name, const char* module) {
    return {{"id", id}, {"name", name}, {"module", module}};
}

TEST(Devices, ListTheSimulatedCardAfterThePrimaryDevice) {
    const Outcome outcome = MeasureSimulated({"devices", "--json"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    const auto lines = outcome.Json();
    ASSERT_EQ(lines.size(), 1U);
    const ordered_json list{Device("", "Primary sound device", ""),
                            Device("simulated", "Simulated sound card (not a measurement)", "simulated")};
    EXPECT_EQ(lines[0], (ordered_json{{"sound", "simulated"}, {"outputs", list}, {"inputs", list}}));
}

TEST(Devices, TextNamesTheOptionsThatTakeTheIdentifiers) {
    const Outcome outcome = MeasureSimulated({"devices"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Outputs (--output):\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Inputs (--input):\n"));
    EXPECT_THAT(outcome.output, HasSubstr("  simulated\n      Simulated sound card (not a measurement)\n"));
}

TEST(Devices, OfASoundServerBeginWithItsDefaults) {
    const PulseServer server({{"card", 48000, "Card"}, {"other", 44100, "Other"}});
    server.Control({"set-default-sink", "other"});
    server.Control({"set-default-source", "other.monitor"});
    const Outcome outcome = Measure({"devices", "--json"}, {{"PULSE_SERVER", server.Address()}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    const auto lines = outcome.Json();
    ASSERT_EQ(lines.size(), 1U);
    const char* const module = "module-null-sink.c";
    EXPECT_EQ(lines[0]["sound"], "system");
    EXPECT_EQ(lines[0]["outputs"],
              (ordered_json{Device("", "Default output device", ""), Device("other", "Other", module),
                            Device("card", "Card", module)}));
    EXPECT_EQ(lines[0]["inputs"], (ordered_json{Device("", "Default input device", ""),
                                                Device("other.monitor", "Monitor of Other", module),
                                                Device("card.monitor", "Monitor of Card", module)}));
}

TEST(Devices, WithoutDevicesNothingIsMeasured) {
    const PulseServer server({});
    const Environment environment{{"PULSE_SERVER", server.Address()}};
    EXPECT_EQ(Measure({"devices", "--json"}, environment).status, 0);
    ExpectRefusal(Measure({"run"}, environment), "There is no input device.");
}

TEST(Devices, WithoutServerFailSoon) {
    for (const Arguments& arguments :
         {Arguments{"devices"}, Arguments{"devices", "--json"}, Arguments{"run"}}) {
        const auto start = std::chrono::steady_clock::now();
        ExpectRefusal(Measure(arguments), "No sound server answers");
        EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
    }
}

TEST(Devices, OfAServerThatDoesNotAnswerFailSoon) {
    PulseServer server({{"card", 48000, "Card"}});
    server.Pause();
    for (const Arguments& arguments : {Arguments{"devices"}, Arguments{"run"}}) {
        const auto start = std::chrono::steady_clock::now();
        ExpectRefusal(Measure(arguments, {{"PULSE_SERVER", server.Address()}}), "No sound server answers");
        EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
    }
    server.Continue();
}

}  // namespace
}  // namespace sonavex
