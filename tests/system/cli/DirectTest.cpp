// Readings of a card without a sound server between.

#include <gmock/gmock.h>

#include "support/alsa/LoopCards.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using nlohmann::ordered_json;

TEST(Direct, CardsServeAloneWithoutServer) {
    const LoopCards cards(CardList{{"card", "Test card"}});
    const Outcome run = Measure({"run", "--rate", "32000", "--tone", "sine:1000", "--seconds", "0", "--json"},
                                cards.ForPrograms());
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    const ordered_json line = run.Json().back();
    EXPECT_EQ(line["input"], "Test card (direct)");
    EXPECT_EQ(line["output"], "Test card (direct)");
    EXPECT_EQ(line["simulated"], false);
}

TEST(Direct, ALoopMeasuresAsWellAsTheArithmetic) {
    const LoopCards cards(CardList{{"card", "Test card"}});
    const Outcome outcome = Measure({"run", "--input", "alsa:card", "--output", "alsa:card", "--rate",
                                     "32000", "--tone", "sine:1000", "--seconds", "0", "--json"},
                                    cards.ForPrograms());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    const ordered_json line = outcome.Json().back();
    ExpectShape(line, true);
    EXPECT_EQ(line["frequency"], "1000");
    EXPECT_EQ(line["rate"], 32000);
    EXPECT_TRUE(line["settled"]);
    EXPECT_LT(std::stod(line["thd"].get<std::string>()), 0.003);
}

}  // namespace
}  // namespace sonavex
