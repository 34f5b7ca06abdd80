// Which devices are listed, and under which names.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "core/ports/SoundErrors.h"
#include "platform/alsa/AlsaSoundSystem.h"
#include "platform/plain/PlainEventLoop.h"
#include "support/alsa/LoopCards.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

class AlsaDevices : public testing::Test {
protected:
    static std::vector<std::string> Identifiers(const SoundDeviceList& list) {
        std::vector<std::string> identifiers;
        for (const SoundDeviceInfo& device : list) identifiers.push_back(device.identifier);
        return identifiers;
    }
    std::vector<std::string> Outputs() { return Identifiers(system_.EnumeratePlayback()); }
    std::vector<std::string> Inputs() { return Identifiers(system_.EnumerateCapture()); }
    std::string DescriptionOf(const std::string& identifier) {
        for (const SoundDeviceInfo& device : system_.EnumeratePlayback())
            if (device.identifier == identifier) return device.description;
        return "not listed";
    }

    PlainEventLoop loop_;
    AlsaSoundSystem system_{loop_};
};

TEST_F(AlsaDevices, CardsComeBeforeThePcmsOfTheConfiguration) {
    const LoopCards cards(CardList{
        {"bench", "Bench card"}, {"hw:CARD=Fake,DEV=0", "Fake card"}, {"hw:CARD=Other,DEV=1", "Other"}});
    const std::vector<std::string> expected{"", "alsa:hw:CARD=Fake,DEV=0", "alsa:hw:CARD=Other,DEV=1",
                                            "alsa:bench"};
    EXPECT_EQ(Outputs(), expected);
    EXPECT_EQ(Inputs(), expected);
}

TEST_F(AlsaDevices, SayThatTheyAreDirectAndWhatServesThem) {
    const LoopCards cards(CardList{{"bench", "Bench card"}, {"hw:CARD=Fake,DEV=0", "Fake card"}},
                          "pcm.plain { type sonavex_loop state \"/dev/null\" hint { show on } }");
    const SoundDeviceList list = system_.EnumeratePlayback();
    ASSERT_EQ(list.size(), 4U);
    EXPECT_EQ(list[0].description, "Default output device");
    EXPECT_EQ(system_.EnumerateCapture()[0].description, "Default input device");
    EXPECT_EQ(list[1].description, "Fake card (direct)");
    EXPECT_EQ(list[1].module, "ALSA sonavex_loop");
    EXPECT_EQ(list[2].description, "Bench card (direct)");
    EXPECT_EQ(list[3].description, "plain (direct)");
}

TEST_F(AlsaDevices, WithTheSameDescriptionAreKeptApart) {
    const LoopCards cards(CardList{
        {"hw:CARD=One,DEV=0", "Twin"}, {"hw:CARD=Two,DEV=0", "Twin"}, {"hw:CARD=Fake,DEV=0", "Fake card"}});
    EXPECT_EQ(DescriptionOf("alsa:hw:CARD=One,DEV=0"), "Twin (direct) [alsa:hw:CARD=One,DEV=0]");
    EXPECT_EQ(DescriptionOf("alsa:hw:CARD=Two,DEV=0"), "Twin (direct) [alsa:hw:CARD=Two,DEV=0]");
    EXPECT_EQ(DescriptionOf("alsa:hw:CARD=Fake,DEV=0"), "Fake card (direct)");
}

TEST_F(AlsaDevices, OmitWhatDoesNotLeadToACard) {
    const LoopCards cards(CardList{{"bench", "Bench card"}}, R"(
        pcm.default { type plug slave.pcm "bench" hint { show on description "Default" } }
        pcm.server { type pulse hint { show on description "Server" } }
        pcm.newserver { type pipewire hint { show on description "Server" } }
        pcm.nothing { type null hint { show on description "Nothing" } }
        pcm.tee { type file slave.pcm "bench" file "/dev/null" hint { show on description "Tee" } }
        pcm.shared { type plug slave.pcm { type dmix ipc_key 1 slave.pcm "bench" }
                     hint { show on description "Shared" } }
        pcm.alias "server"
        pcm.overserver { type plug slave.pcm "alias" hint { show on description "Over the server" } }
        pcm.dangling { type plug slave.pcm "no-such-pcm" hint { show on description "Dangling" } }
        pcm.ring { type plug slave.pcm "ring" hint { show on description "Ring" } }
        pcm.hidden { type sonavex_loop state "/dev/null" }
    )");
    EXPECT_THAT(Outputs(), ElementsAre("", "alsa:bench"));
    EXPECT_THAT(Inputs(), ElementsAre("", "alsa:bench"));
}

TEST_F(AlsaDevices, MarkDefinitionsThatConvert) {
    const LoopCards cards(CardList{{"bench", "Bench card"}}, R"(
        pcm_slave.bench { pcm "bench" }
        pcm.copied { type copy slave bench hint { show on description "Copied" } }
        pcm.soft { type softvol slave.pcm "bench" control.name "Soft" hint { show on description "Soft" } }
        pcm.over { type copy slave.pcm { type plug slave bench } hint { show on description "Over" } }
    )");
    EXPECT_EQ(DescriptionOf("alsa:copied"), "Copied (direct)");
    EXPECT_EQ(DescriptionOf("alsa:soft"), "Soft (direct, converting)");
    EXPECT_EQ(DescriptionOf("alsa:over"), "Over (direct, converting)");
}

TEST_F(AlsaDevices, OfOneDirectionAreListedThereOnly) {
    const LoopCards cards(CardList{{"bench", "Bench card"}}, R"(
        pcm.out { type asym playback.pcm "bench" hint { show on description "Out" } }
        pcm.in { type asym capture.pcm "bench" hint { show on description "In" } }
        pcm.both { type asym playback.pcm "bench" capture.pcm { type null }
                   hint { show on description "Both" } }
    )");
    EXPECT_THAT(Outputs(), testing::UnorderedElementsAre("", "alsa:bench", "alsa:out", "alsa:both"));
    EXPECT_THAT(Inputs(), testing::UnorderedElementsAre("", "alsa:bench", "alsa:in"));
}

TEST_F(AlsaDevices, AreNoneWithoutCardsOrWithABrokenConfiguration) {
    for (const char* const more : {"", "pcm.broken {"}) {
        const LoopCards cards({}, more);
        EXPECT_THAT(Outputs(), ElementsAre(""));
        EXPECT_THAT(Inputs(), ElementsAre(""));
        try {
            system_.CreatePlaybackDevice("");
            ADD_FAILURE() << "created";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), sound_error::kNoDriver);
            EXPECT_STREQ(error.what(), "There is no sound card.");
        }
    }
}

TEST_F(AlsaDevices, FollowTheConfiguration) {
    std::optional<LoopCards> cards(std::in_place, CardList{{"first", "First"}});
    EXPECT_THAT(Outputs(), ElementsAre("", "alsa:first"));
    cards.emplace(CardList{{"first", "First"}, {"later", "Later"}});
    EXPECT_THAT(Outputs(), testing::UnorderedElementsAre("", "alsa:first", "alsa:later"));
    cards.reset();
    EXPECT_THAT(Outputs(), ElementsAre(""));
}

}  // namespace
}  // namespace sonavex
