#include <gmock/gmock.h>

#include <map>
#include <memory>

#include "support/PulseServer.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// The last reading of a short measurement on a card of 48000 Hz.
nlohmann::ordered_json Reading(const PulseServer& server, const char* rate, const char* output,
                               const char* input, int status) {
    MeasureProgram program({"run", "--output", output, "--input", input, "--rate", rate, "--tone",
                            "sine:1000", "--seconds", "0.2", "--json"},
                           sonavex::Environment{{"PULSE_SERVER", server.Address()}});
    const Outcome outcome = program.End(30s);
    EXPECT_EQ(outcome.status, status) << outcome.errors;
    const auto lines = outcome.Json();
    return lines.empty() ? nlohmann::ordered_json{{"notes", "no reading"}} : lines.back();
}

std::string Notes(const PulseServer& server, const char* rate, const char* output = "card",
                  const char* input = "card.monitor", int status = 0) {
    return Reading(server, rate, output, input, status)["notes"].dump();
}

TEST(Notes, AreNoneWhereTheSamplesPassUnchanged) {
    const PulseServer server({{"card", 48000, "Card"}});
    EXPECT_EQ(Notes(server, "48000"), "[]");
}

TEST(Notes, NameResampling) {
    const PulseServer server({{"card", 48000, "Card"}});
    EXPECT_EQ(Notes(server, "44100"),
              R"(["Input: resampled by the sound server, the device runs at 48000 Hz",)"
              R"("Output: resampled by the sound server, the device runs at 48000 Hz"])");
}

TEST(Notes, NameVolumesAndMuting) {
    PulseServer server({{"card", 48000, "Card"}});
    server.Control({"set-sink-volume", "card", "50%"});
    server.Control({"set-source-volume", "card.monitor", "80%"});
    EXPECT_EQ(Notes(server, "48000"),
              R"(["Input: volume of the device 80 %","Output: volume of the device 50 %"])");
    // Two channels whose mean is 100 %, and nearly 100 %.
    server.Control({"set-sink-volume", "card", "50%", "150%"});
    server.Control({"set-source-volume", "card.monitor", "65400"});
    EXPECT_EQ(Notes(server, "48000"),
              R"(["Input: volume of the device 99.8 %","Output: volume of the device 50 % and 150 %"])");
}

TEST(Notes, TellOfFewerBitsInOneDirection) {
    const PulseServer server({{"narrow", 48000, "Card", "s16le"}, {"wide", 48000, "Card", "s32le"}});
    constexpr int kSilent = 2;
    const auto uneven = Reading(server, "48000", "narrow", "wide.monitor", kSilent);
    EXPECT_EQ(uneven["notes"].dump(), R"(["Output: 16 bit"])");
    EXPECT_EQ(uneven["input_bits"], 24);
    EXPECT_EQ(uneven["output_bits"], 16);
    EXPECT_EQ(uneven["bits"], 16);
    const auto even = Reading(server, "48000", "wide", "wide.monitor", 0);
    EXPECT_EQ(even["notes"].dump(), "[]");
    EXPECT_EQ(even["bits"], 24);
}

TEST(Notes, NameAServerThatConvertsThroughFloat) {
    const PulseServer server({{"packed", 48000, "Card", "s24le"}});
    constexpr const char* kBothWays = R"(["Input: converted through float by the sound server",)"
                                      R"("Output: converted through float by the sound server"])";
    EXPECT_EQ(Notes(server, "48000", "packed", "packed.monitor"), kBothWays);
    // Resampling is the larger change.
    EXPECT_EQ(Notes(server, "44100", "packed", "packed.monitor").find("float"), std::string::npos);
}

// The server says which card a device belongs to.
TEST(Notes, NameTwoCards) {
    const PulseServer server({{"card", 48000, "Card"}});
    for (const char* number : {"3", "7"})
        server.Control({"load-module", "module-null-sink", std::string("sink_name=card") + number,
                        "rate=48000", std::string("sink_properties=alsa.card=") + number});
    EXPECT_EQ(Notes(server, "48000", "card3", "card3.monitor"), "[]");
    constexpr int kNotLocked = 2;
    EXPECT_EQ(Notes(server, "48000", "card3", "card7.monitor", kNotLocked),
              R"(["Clocks: input and output run on different clocks"])");
}

}  // namespace
}  // namespace sonavex
