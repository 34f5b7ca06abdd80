// Cards without a sound server between: what is listed, refused and lost. Readings: DirectTest.cpp.

#include <gmock/gmock.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kDevice = "alsa:card";
// Named by a configuration, while the machine has no such card.
constexpr const char* kAbsent = "alsa:hw:CARD=SonavexAbsent,DEV=0";
const Arguments kRun{"run",   "--input", kDevice,     "--output",  kDevice, "--rate",
                     "32000", "--tone",  "sine:1000", "--seconds", "0",     "--json"};

std::vector<std::string> Identifiers(const ordered_json& devices) {
    std::vector<std::string> identifiers;
    for (const auto& device : devices) identifiers.push_back(device.at("id"));
    return identifiers;
}

TEST(DirectDevices, CardsAreListedAfterTheServersDevices) {
    const LoopCards cards(CardList{{"card", "Test card"}});
    const PulseServer server({{"sink", 48000, "Sink"}});
    Environment environment = cards.ForPrograms();
    environment.emplace_back("PULSE_SERVER", server.Address());
    const Outcome outcome = Measure({"devices", "--json"}, environment);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    const ordered_json line = outcome.Json().at(0);
    EXPECT_THAT(Identifiers(line["outputs"]), ElementsAre("", "sink", kDevice));
    EXPECT_THAT(Identifiers(line["inputs"]), ElementsAre("", "sink.monitor", kDevice));
    EXPECT_EQ(line["outputs"][2]["name"], "Test card (direct)");
}

TEST(DirectDevices, CardsAreListedAloneWithoutServer) {
    const LoopCards cards(CardList{{"card", "Test card"}});
    const Outcome devices = Measure({"devices", "--json"}, cards.ForPrograms());
    EXPECT_EQ(devices.status, 0);
    EXPECT_EQ(devices.errors, "");
    EXPECT_THAT(Identifiers(devices.Json().at(0)["outputs"]), ElementsAre("", kDevice));
}

TEST(DirectDevices, PcmsOfTheUsersConfigurationFileAreListed) {
    const LoopCards cards(CardList{{"card", "Test card"}});
    const PrivateFolder home;
    const std::string included = cards.ForPrograms().at(0).second;
    std::ofstream(home.Path() / ".asoundrc")
        << "<" << included << ">\nnamehint.pcm [ \"" << kAbsent + 5 << "|Absent card\" ]\n";
    // The machine's configuration, which reads the user's file. It may list further cards.
    const Environment environment{{"HOME", home.Path().string()},
                                  {"ALSA_CONFIG_PATH", "/usr/share/alsa/alsa.conf"}};
    const Outcome outcome = Measure({"devices", "--json"}, environment);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    const ordered_json line = outcome.Json().at(0);
    const std::vector<std::string> outputs = Identifiers(line["outputs"]);
    EXPECT_THAT(outputs, testing::IsSupersetOf({kDevice, kAbsent}));
    for (const char* const other :
         {"null", "pulse", "default", "pipewire", "jack", "oss", "lavrate", "upmix"})
        EXPECT_THAT(outputs, testing::Not(testing::Contains(std::string("alsa:") + other)));
    ExpectRefusal(Measure({"run", "--input", kAbsent, "--output", kAbsent, "--seconds", "0"}, environment),
                  "The sound device 'Absent card (direct)' is not there.");
}

TEST(DirectDevices, ARefusedRateIsNamed) {
    const LoopCards cards(CardList{{"card", "Test card", {48000}}});
    ExpectRefusal(Measure(kRun, cards.ForPrograms()),
                  "Error Creating Input Capture Device or sound card is in use: The sound device 'Test card "
                  "(direct)' does not run at 32000 Hz.");
}

TEST(DirectDevices, ACardThatAnotherProgramHoldsIsInUse) {
    const LoopCards cards(CardList{{"card", "Test card"}});
    MeasureProgram holder({"run", "--input", kDevice, "--output", kDevice, "--rate", "32000", "--tone",
                           "sine:1000", "--seconds", "600", "--json"},
                          cards.ForPrograms());
    ASSERT_TRUE(holder.Prints("\"block\":18", 10s));
    ExpectRefusal(Measure(kRun, cards.ForPrograms()),
                  "Error Creating Input Capture Device or sound card is in use: The sound device 'Test card "
                  "(direct)' is in use by another program.");
}

TEST(DirectDevices, ACardThatIsPulledEndsTheMeasurement) {
    LoopCards cards(CardList{{"card", "Test card"}});
    MeasureProgram program({"run", "--input", kDevice, "--output", kDevice, "--rate", "32000", "--tone",
                            "sine:1000", "--seconds", "600", "--json"},
                           cards.ForPrograms());
    ASSERT_TRUE(program.Prints("\"block\":18", 10s));
    cards.State("card").unplugged = 1;
    Outcome outcome = program.End(3s);
    EXPECT_THAT(outcome.output, HasSubstr("\"block\":18"));
    outcome.output.clear();
    ExpectRefusal(outcome, "The sound device 'Test card (direct)' has been removed.");
}

TEST(DirectDevices, AStalledCardEndsTheMeasurement) {
    LoopCards cards(CardList{{"card", "Test card"}});
    MeasureProgram program({"run", "--input", kDevice, "--output", kDevice, "--rate", "32000", "--tone",
                            "sine:1000", "--seconds", "600", "--json"},
                           cards.ForPrograms());
    ASSERT_TRUE(program.Prints("\"block\":18", 10s));
    cards.State("card").stalled = 1;
    Outcome outcome = program.End(3s);
    outcome.output.clear();
    ExpectRefusal(outcome, "The input device 'Test card (direct)' has stopped delivering sound.");
}

}  // namespace
}  // namespace sonavex
