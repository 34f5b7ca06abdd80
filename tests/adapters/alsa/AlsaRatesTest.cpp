// What reaches a card at each rate, and what happens when the card lacks something.

#include <chrono>
#include <memory>
#include <optional>

#include "adapters/alsa/AlsaSession.h"
#include "core/settings/SampleRates.h"
#include "support/alsa/LoopCards.h"

namespace sonavex {
namespace {

using testing::HasSubstr;

constexpr const char* kHardware = "hw:CARD=Fake,DEV=0";
const std::string kHardwareId = std::string("alsa:") + kHardware;

// Random samples through a card and back.
class ExactLoop {
public:
    ExactLoop(const std::string& device, std::int32_t rateHz)
        : rateHz_(rateHz), pattern_(RandomPattern(static_cast<std::uint32_t>(rateHz))) {
        session_.Create(device, rateHz);
        recorder_.emplace(session_.system, *session_.capture);
        session_.playback->WriteBuffer(0, pattern_);
        session_.Start();
    }
    // Serves the loop. Ten segments: more than once round the playback buffer.
    bool Complete() {
        session_.loop.Yield();
        return recorder_->Order().size() >= 10;
    }
    // A busy machine starves the threads that serve the cards, or this one.
    bool Disturbed() const {
        const CaptureStatistics statistics = session_.capture->Statistics();
        return statistics.framesMissing > 0 || statistics.segmentsLost > 0 ||
               session_.playback->Underruns() > 0;
    }
    std::int32_t RateHz() const { return rateHz_; }
    // All samples came back bit for bit.
    void Expect() {
        session_.playback->Stop();
        const LoopComparison comparison = CompareLoop(recorder_->Samples(), pattern_, 0);
        EXPECT_GE(comparison.comparedFrames, 16384U) << rateHz_;
        EXPECT_EQ(comparison.differentFrames, 0U) << rateHz_;
        EXPECT_EQ(session_.capture->Statistics().framesMissing, 0U) << rateHz_;
        EXPECT_EQ(session_.playback->Underruns(), 0U) << rateHz_;
    }

private:
    std::int32_t rateHz_;
    std::vector<std::int16_t> pattern_;
    AlsaSession session_;
    std::optional<SegmentRecorder> recorder_;
};

constexpr std::chrono::seconds kLoopLimit{10};

void ExpectExactLoop(const std::string& device, std::int32_t rateHz) {
    ExactLoop loop(device, rateHz);
    EXPECT_TRUE(WaitUntil([&] { return loop.Complete(); }, kLoopLimit)) << rateHz;
    loop.Expect();
}

void ExpectNotes(const std::string& device, std::int32_t rateHz, const std::string& note) {
    AlsaSession session;
    session.Create(device, rateHz);
    EXPECT_EQ(session.playback->PathNote(), note);
    EXPECT_EQ(session.capture->PathNote(), note);
}

// The last captured frame when these two samples are played continuously.
std::vector<std::int16_t> LevelsThrough(const std::string& device, std::int32_t rateHz, std::int16_t first,
                                        std::int16_t second) {
    AlsaSession session;
    session.Create(device, rateHz);
    std::vector<std::int16_t> pattern(kPlaybackBytes / 2);
    for (std::size_t i = 0; i < pattern.size(); i += 2) {
        pattern[i] = first;
        pattern[i + 1] = second;
    }
    const std::vector<std::int16_t> recording = session.Record(pattern, 6);
    return {recording.end() - 2, recording.end()};
}

// All rates at the same time, because the lowest takes five seconds.
TEST(AlsaRates, AreAllExactOnTheUsersPcm) {
    const auto name = [](std::int32_t rateHz) { return "card" + std::to_string(rateHz); };
    CardList list;
    for (const std::int32_t rateHz : SampleRateTable) list.push_back({name(rateHz), "Test card"});
    const LoopCards cards(list);
    for (const std::int32_t rateHz : SampleRateTable) ExpectNotes("alsa:" + name(rateHz), rateHz, "");
    // Nothing is read before all loops are open. At the highest rate the capture buffer lasts 0.17 s, so it
    // is opened last.
    std::vector<std::unique_ptr<ExactLoop>> loops;
    for (auto rate = SampleRateTable.rbegin(); rate != SampleRateTable.rend(); ++rate)
        loops.push_back(std::make_unique<ExactLoop>("alsa:" + name(*rate), *rate));
    std::vector<std::int32_t> disturbed;
    EXPECT_TRUE(WaitUntil(
        [&] {
            std::erase_if(loops, [&](const auto& loop) {
                if (!loop->Complete()) return false;
                loop->Disturbed() ? disturbed.push_back(loop->RateHz()) : loop->Expect();
                return true;
            });
            return loops.empty();
        },
        kLoopLimit));
    // A counted loss excuses one repetition.
    for (const std::int32_t rateHz : disturbed) ExpectExactLoop("alsa:" + name(rateHz), rateHz);
}

TEST(AlsaExtendedRates, AreThoseOfTheCard) {
    const LoopCards cards(CardList{{kHardware, "Test card", {44100, 48000, 88200, 96000}, 2, "S32_LE"},
                                   {"fast", "Fast card", {192000}},
                                   {"slow", "Slow card", {48000}},
                                   {"mono", "Mono card", {96000}, 1},
                                   {"float", "Float card", {96000}, 2, "FLOAT_LE"}});
    AlsaSession session;
    EXPECT_EQ(session.system.ExtendedPlaybackRates(kHardwareId), (RateList{88200, 96000}));
    EXPECT_EQ(session.system.ExtendedCaptureRates(kHardwareId), (RateList{88200, 96000}));
    EXPECT_EQ(session.system.ExtendedPlaybackRates(""), (RateList{88200, 96000}));
    EXPECT_EQ(session.system.ExtendedCaptureRates("alsa:fast"), RateList{192000});
    for (const char* card : {"alsa:slow", "alsa:mono", "alsa:float"})
        EXPECT_EQ(session.system.ExtendedPlaybackRates(card), RateList()) << card;
    session.ExpectError(sound_error::kNoDriver, "There is no sound device 'alsa:none'.",
                        [&] { session.system.ExtendedPlaybackRates("alsa:none"); });
    // Reading leaves the card free.
    session.Create(kHardwareId, 96000);
}

TEST(AlsaExtendedRates, OfACardInUseAreRemembered) {
    const LoopCards cards(CardList{{"card", "Test card", {48000, 96000}}});
    AlsaSession session;
    session.Open("alsa:card", 48000);
    EXPECT_EQ(session.system.ExtendedPlaybackRates("alsa:card"), RateList{96000});
    EXPECT_EQ(session.system.ExtendedCaptureRates("alsa:card"), RateList{96000});
    // Another program's card.
    AlsaSession other;
    EXPECT_EQ(other.system.ExtendedPlaybackRates("alsa:card"), RateList());
    EXPECT_EQ(other.system.ExtendedCaptureRates("alsa:card"), RateList());
}

// As cards do whose directions share a clock: while one is open, the other has its rate only.
TEST(AlsaExtendedRates, ReportedOnceStayKnown) {
    std::optional<LoopCards> cards(CardList{{"card", "Test card", {48000, 96000}}});
    AlsaSession session;
    const auto expectRates = [&](const RateList& rates) {
        EXPECT_EQ(session.system.ExtendedPlaybackRates("alsa:card"), rates);
        EXPECT_EQ(session.system.ExtendedCaptureRates("alsa:card"), rates);
    };
    expectRates({96000});
    cards.emplace(CardList{{"card", "Test card", {48000, 192000}}});
    expectRates({96000, 192000});
    cards.emplace(CardList{{"card", "Test card", {48000, 88200}}});
    session.Open("alsa:card", 48000);
    expectRates({88200, 96000, 192000});
}

TEST(AlsaExtendedRates, OfTheUsersConversionsAreUnknown) {
    const LoopCards cards(
        CardList{{"card", "Test card", {48000, 96000}}},
        "pcm.plugged { type plug slave.pcm \"card\" hint { show on description \"Plug\" } }\n"
        "pcm.rated { type rate slave { pcm \"card\" rate 48000 } hint { show on description \"Rate\" } }");
    AlsaSession session;
    for (const char* device : {"alsa:plugged", "alsa:rated"}) {
        EXPECT_EQ(session.system.ExtendedPlaybackRates(device), RateList()) << device;
        EXPECT_EQ(session.system.ExtendedCaptureRates(device), RateList()) << device;
    }
}

TEST(AlsaExtendedRates, OfACardThatIsConvertedAreStillItsOwn) {
    const LoopCards cards(CardList{{kHardware, "Test card", {48000, 176400}}});
    AlsaSession session;
    session.Create(kHardwareId, 44100);
    EXPECT_NE(session.playback->PathNote(), "");
    EXPECT_EQ(session.system.ExtendedPlaybackRates(kHardwareId), RateList{176400});
}

TEST(AlsaRates, ThatACardLacksAreConvertedAndSaidToBe) {
    const LoopCards cards(CardList{{kHardware, "Test card", {48000}}});
    for (const std::int32_t rateHz : SampleRateTable) {
        if (rateHz == 48000) continue;
        ExpectNotes(kHardwareId, rateHz,
                    "The sound device 'Test card (direct)' does not run at " + std::to_string(rateHz) +
                        " Hz: its samples are converted from another rate, with 16 bits.");
    }
    const std::vector<std::int16_t> levels = LevelsThrough(kHardwareId, 32000, 12000, -5000);
    EXPECT_NEAR(levels[0], 12000, 3);
    EXPECT_NEAR(levels[1], -5000, 3);
}

TEST(AlsaRates, OfTheCardStayExactWhereOthersAreConverted) {
    const LoopCards cards(CardList{{kHardware, "Test card", {48000, 44100}}});
    ExpectNotes(kHardwareId, 22050,
                "The sound device 'Test card (direct)' does not run at 22050 Hz: its samples are converted "
                "from another rate, with 16 bits.");
    for (const std::int32_t rateHz : {48000, 44100}) {
        ExpectExactLoop(kHardwareId, rateHz);
        ExpectNotes(kHardwareId, rateHz, "");
    }
}

TEST(AlsaRates, ThatTheUsersPcmLacksAreRefused) {
    const LoopCards cards(CardList{{"card", "Test card", {48000}}});
    AlsaSession session;
    const auto output = session.system.CreatePlaybackDevice("alsa:card");
    const auto input = session.system.CreateCaptureDevice("alsa:card");
    for (const std::int32_t rateHz : SampleRateTable) {
        if (rateHz == 48000) continue;
        const std::string text = "does not run at " + std::to_string(rateHz) + " Hz.";
        session.ExpectError(sound_error::kBadFormat, text,
                            [&] { output->CreateBuffer(Stereo(kPlaybackBytes, rateHz)); });
        session.ExpectError(sound_error::kBadFormat, text,
                            [&] { input->CreateBuffer(Stereo(kCaptureBytes, rateHz)); });
    }
    // After a refusal the card is free.
    ExpectExactLoop("alsa:card", 48000);
}

TEST(AlsaFormats, A32BitCardIsUsedAsItIs) {
    const LoopCards cards(CardList{{kHardware, "Test card", {}, 2, "S32_LE"}});
    ExpectNotes(kHardwareId, 48000, "");
    ExpectExactLoop(kHardwareId, 48000);
}

TEST(AlsaFormats, AFloatCardIsConverted) {
    const LoopCards cards(CardList{{kHardware, "Test card", {}, 2, "FLOAT_LE"}});
    ExpectNotes(
        kHardwareId, 48000,
        "The sound device 'Test card (direct)' takes none of the formats S32, S24_3, S24, S16: samples "
        "are converted, with 16 bits.");
}

TEST(AlsaFormats, AMonoCardGetsBothChannels) {
    const LoopCards cards(CardList{{kHardware, "Test card", {}, 1}});
    ExpectNotes(
        kHardwareId, 48000,
        "The sound device 'Test card (direct)' is not stereo: its channels are converted, with 16 bits.");
    const std::vector<std::int16_t> levels = LevelsThrough(kHardwareId, 48000, 9000, 9000);
    EXPECT_NEAR(levels[0], 9000, 1);
    EXPECT_NEAR(levels[1], 9000, 1);
}

TEST(AlsaFormats, ThatTheUsersPcmLacksAreRefused) {
    const LoopCards cards(CardList{{"mono", "Mono card", {}, 1}, {"wide", "Wide card", {}, 2, "FLOAT_LE"}});
    AlsaSession session;
    session.ExpectError(sound_error::kBadFormat, "The sound device 'Mono card (direct)' is not stereo.", [&] {
        session.system.CreatePlaybackDevice("alsa:mono")->CreateBuffer(Stereo(kPlaybackBytes, 48000));
    });
    session.ExpectError(
        sound_error::kBadFormat,
        "The sound device 'Wide card (direct)' takes none of the formats S32, S24_3, S24, S16.",
        [&] { session.system.CreateCaptureDevice("alsa:wide")->CreateBuffer(Stereo(kCaptureBytes, 48000)); });
}

TEST(AlsaFormats, TheUsersConversionsAreUsedAndNamed) {
    const LoopCards cards(
        CardList{{"card", "Test card", {48000}}},
        "pcm.soft { type plug slave.pcm \"card\" hint { show on description \"Soft card\" } }");
    ExpectNotes("alsa:soft", 48000,
                "The sound device 'Soft card (direct, converting)' is defined with conversions: samples may "
                "change on their way, with 16 bits.");
    ExpectNotes("alsa:soft", 8000,
                "The sound device 'Soft card (direct, converting)' does not run at 8000 Hz: its samples are "
                "converted from another rate, with 16 bits.");
    ExpectExactLoop("alsa:soft", 48000);
}

}  // namespace
}  // namespace sonavex
