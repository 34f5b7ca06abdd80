// Which mixer belongs to a device with direct access.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

#include "platform/alsa/AlsaControls.h"
#include "platform/alsa/AlsaSoundSystem.h"
#include "platform/plain/PlainEventLoop.h"
#include "support/alsa/LoopCards.h"

namespace sonavex {
namespace {

TEST(AlsaControls, AreThoseOfTheCardInThePcmsName) {
    const std::pair<const char*, const char*> cases[] = {{"hw:CARD=PCH,DEV=0", "hw:PCH"},
                                                         {"hw:CARD=PCH,DEV=3", "hw:PCH"},
                                                         {"hw:CARD=3", "hw:3"},
                                                         {"hw:1,0", "hw:1"},
                                                         {"hw:1", "hw:1"},
                                                         {"hw:PCH", "hw:PCH"},
                                                         {"hw:", ""},
                                                         {"hw:,0", ""},
                                                         {"hw:CARD=", ""},
                                                         {"plughw:1,0", ""},
                                                         {"bench", ""},
                                                         {"", ""}};
    for (const auto& [pcm, control] : cases) EXPECT_EQ(AlsaControlOfPcm(pcm), control) << pcm;
}

TEST(AlsaControls, AreFoundByTheDevicesDescription) {
    PlainEventLoop loop;
    const AlsaSoundSystem quiet(loop);
    const LoopCards cards(CardList{{"bench", "Bench card"}, {"hw:CARD=Fake,DEV=0", "Fake card"}});
    for (const snd_pcm_stream_t direction : {SND_PCM_STREAM_PLAYBACK, SND_PCM_STREAM_CAPTURE}) {
        EXPECT_EQ(AlsaControlOf(direction, "Fake card (direct)"), "hw:Fake");
        EXPECT_EQ(AlsaControlOf(direction, "Bench card (direct)"), "") << "names no card";
        EXPECT_EQ(AlsaControlOf(direction, "Fake card"), "");
        EXPECT_EQ(AlsaControlOf(direction, ""), "");
    }
}

TEST(AlsaControls, OfCardsWithTheSameDescriptionAreTheirOwn) {
    PlainEventLoop loop;
    const AlsaSoundSystem quiet(loop);
    const LoopCards cards(CardList{{"hw:CARD=One,DEV=0", "Twin"}, {"hw:CARD=Two,DEV=0", "Twin"}});
    const snd_pcm_stream_t direction = SND_PCM_STREAM_PLAYBACK;
    EXPECT_EQ(AlsaControlOf(direction, "Twin (direct) [alsa:hw:CARD=One,DEV=0]"), "hw:One");
    EXPECT_EQ(AlsaControlOf(direction, "Twin (direct) [alsa:hw:CARD=Two,DEV=0]"), "hw:Two");
}

TEST(AlsaControls, OfACardThatATwinHasRenamedAreFound) {
    PlainEventLoop loop;
    const AlsaSoundSystem quiet(loop);
    const snd_pcm_stream_t direction = SND_PCM_STREAM_PLAYBACK;
    const CardList::value_type one{"hw:CARD=One,DEV=0", "Twin"};
    const CardList::value_type two{"hw:CARD=Two,DEV=0", "Twin"};
    const std::string name = "Twin (direct) [alsa:hw:CARD=One,DEV=0]";
    std::optional<LoopCards> cards(std::in_place, CardList{one});
    EXPECT_EQ(AlsaLastingName(direction, "Twin (direct)"), name);
    EXPECT_EQ(AlsaControlOf(direction, name), "hw:One");
    cards.emplace(CardList{one, two});
    EXPECT_EQ(AlsaLastingName(direction, name), name);
    EXPECT_EQ(AlsaControlOf(direction, name), "hw:One");
    EXPECT_EQ(AlsaControlOf(direction, "Twin (direct)"), "") << "the name of two cards";
    EXPECT_EQ(AlsaLastingName(direction, "Twin (direct)"), "Twin (direct)");
    cards.emplace(CardList{two});
    EXPECT_EQ(AlsaControlOf(direction, name), "");
}

}  // namespace
}  // namespace sonavex
