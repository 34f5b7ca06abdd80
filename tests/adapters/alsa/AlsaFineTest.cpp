// Samples of more than 16 bits on cards without a server.

#include <dlfcn.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <functional>
#include <thread>

#include "adapters/alsa/AlsaSession.h"
#include "platform/alsa/AlsaFormats.h"
#include "support/AllocationCounter.h"
#include "support/FineLoop.h"
#include "support/alsa/LoopCards.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// Significant bits that every card reports, or an error; 0 for those that libasound reports.
int reportedBits = 0;

}  // namespace
}  // namespace sonavex

// In place of the function of libasound, because an external plugin cannot report significant bits.
extern "C" int snd_pcm_hw_params_get_sbits(const snd_pcm_hw_params_t* parameters) {
    if (sonavex::reportedBits != 0) return sonavex::reportedBits;
    using Function = int (*)(const snd_pcm_hw_params_t*);
    static const auto kNext = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "snd_pcm_hw_params_get_sbits"));
    return kNext(parameters);
}

namespace sonavex {
namespace {

constexpr const char* kFineCard = "hw:CARD=Fine,DEV=0";
const std::string kFineId = std::string("alsa:") + kFineCard;

struct FormatCase {
    const char* format;
    int bits;
};
class AlsaFine : public testing::TestWithParam<FormatCase> {};
INSTANTIATE_TEST_SUITE_P(Formats, AlsaFine,
                         testing::Values(FormatCase{"S32_LE", 24}, FormatCase{"S24_3LE", 24},
                                         FormatCase{"S24_LE", 24}, FormatCase{"S16_LE", 16}),
                         [](const auto& test) { return std::string(test.param.format); });

// A busy machine may serve the card too late. A counted loss excuses two repetitions. meanwhile: what happens
// while the loop plays.
void ExpectExactOnTheCard(std::int32_t rateHz, int bits, std::chrono::milliseconds duration = 250ms,
                          const std::function<void(FineLoop&)>& meanwhile = {}) {
    for (int repetitions = 2;; --repetitions) {
        SystemOnLoop<AlsaSoundSystem> on;
        FineLoop fine(on.system, kFineId, kFineId, rateHz, bits, duration);
        if (meanwhile) meanwhile(fine);
        EXPECT_EQ(fine.playback->Bits(), bits);
        EXPECT_EQ(fine.capture->Bits(), bits);
        EXPECT_EQ(fine.playback->PathNote() + fine.capture->PathNote(), "");
        EXPECT_TRUE(fine.Complete(on.loop));
        if (!fine.Disturbed() || repetitions == 0) return fine.ExpectExact(on.loop);
    }
}

TEST_P(AlsaFine, ReturnsEveryBitOfTheCard) {
    for (const std::int32_t rateHz : {48000, 96000, 192000}) {
        const LoopCards cards(CardList{{kFineCard, "Fine card", {rateHz}, 2, GetParam().format}});
        ExpectExactOnTheCard(rateHz, GetParam().bits);
    }
}

TEST_P(AlsaFine, TheAudioThreadsAllocateNothing) {
    const LoopCards cards(CardList{{kFineCard, "Fine card", {48000}, 2, GetParam().format}});
    SystemOnLoop<AlsaSoundSystem> on;
    FineLoop fine(on.system, kFineId, kFineId, 48000, GetParam().bits, 1s);
    EXPECT_TRUE(WaitUntil([&] { return fine.capture->Statistics().framesCaptured > 0; }, 3s));
    const std::size_t waiting = fine.playback->FineFramesWaiting();
    const AllocationCounter counter;
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(counter.OfOtherThreads(), 0U);
    EXPECT_LT(fine.playback->FineFramesWaiting(), waiting);
}

TEST(AlsaFineRates, OfFamiliesOf44100HzAreExact) {
    for (const std::int32_t rateHz : {88200, 176400}) {
        const LoopCards cards(CardList{{kFineCard, "Fine card", {rateHz}, 2, "S24_3LE"}});
        ExpectExactOnTheCard(rateHz, 24);
    }
}

// No event is delivered meanwhile.
TEST(AlsaFineRates, ABlockedThreadLosesAndMissesNothing) {
    const LoopCards cards(CardList{{kFineCard, "Fine card", {96000}, 2, "S32_LE"}});
    ExpectExactOnTheCard(96000, 24, 1300ms, [](FineLoop& fine) {
        std::this_thread::sleep_for(1s);
        EXPECT_GE(fine.capture->Statistics().framesCaptured, 86400U);
    });
}

TEST(AlsaSignificantBits, LimitThoseOfTheFormat) {
    struct Case {
        const char* format;
        int reported;
        int bits;
    };
    for (const Case& with :
         {Case{"S32_LE", 20, 20}, Case{"S32_LE", 16, 16}, Case{"S32_LE", 32, 24}, Case{"S24_LE", 32, 24},
          Case{"S24_3LE", 20, 20}, Case{"S16_LE", 24, 16}, Case{"S32_LE", -EINVAL, 24}}) {
        const LoopCards cards(CardList{{kFineCard, "Fine card", {48000}, 2, with.format}});
        reportedBits = with.reported;
        SystemOnLoop<AlsaSoundSystem> on;
        const FineLoop fine(on.system, kFineId, kFineId, 48000, 8);
        EXPECT_EQ(fine.playback->Bits(), with.bits) << with.format << with.reported;
        EXPECT_EQ(fine.capture->Bits(), with.bits) << with.format << with.reported;
    }
    reportedBits = 0;
}

// USB cards lack the bandwidth for a wide format at some rates; a refusal comes with any error.
TEST(AlsaRefusal, TheNextFormatIsRequested) {
    for (const int refusal : {EINVAL, EPROTO, ENOSPC}) {
        const LoopCards cards(CardList{
            {kFineCard, "Fine card", {48000}, 2, "S32_LE S24_3LE S16_LE", "S32_LE S24_3LE", refusal}});
        SystemOnLoop<AlsaSoundSystem> on;
        FineLoop fine(on.system, kFineId, kFineId, 48000, 16);
        EXPECT_EQ(fine.playback->Bits(), 16) << refusal;
        EXPECT_EQ(fine.capture->Bits(), 16) << refusal;
        EXPECT_EQ(fine.playback->PathNote() + fine.capture->PathNote(), "") << refusal;
        fine.ExpectExact(on.loop);
    }
}

TEST(AlsaRefusal, OfAllFormatsNamesThoseTried) {
    const LoopCards cards(
        CardList{{kFineCard, "Fine card", {48000}, 2, "S32_LE S24_LE S16_LE", "S32_LE S24_LE S16_LE"}});
    AlsaSession session;
    session.ExpectError(
        sound_error::kBadFormat,
        "The sound device 'Fine card (direct)' refuses its settings. Formats tried: S32, S24, S16.",
        [&] { session.OpenPlayback(kFineId, 48000); });
}

// Other formats would only repeat the failure.
TEST(AlsaRefusal, OfACardInUseIsFinal) {
    const LoopCards cards(CardList{{kFineCard, "Fine card", {48000}, 2, "S32_LE S16_LE", "S32_LE", EBUSY}});
    AlsaSession session;
    session.ExpectError(sound_error::kAllocated,
                        "The sound device 'Fine card (direct)' is in use by another program.",
                        [&] { session.OpenPlayback(kFineId, 48000); });
}

// A conversion truncates wider samples, so that it gets 16 bits.
TEST(AlsaFineConversion, GetsSixteenBits) {
    const LoopCards cards(CardList{{kFineCard, "Fine card", {48000}, 2, "S32_LE"}});
    SystemOnLoop<AlsaSoundSystem> on;
    const FineLoop fine(on.system, kFineId, kFineId, 44100, 16);
    EXPECT_EQ(fine.playback->Bits(), 16);
    EXPECT_EQ(fine.capture->Bits(), 16);
    EXPECT_NE(fine.playback->PathNote(), "");
}

TEST(AlsaFormat, ConvertsInPlace) {
    const std::vector<std::int32_t> samples{0x12345600, -0x12345600, 0x7FFFFF00, -0x7FFFFFFF - 1, 0x100, 0};
    for (const AlsaFormat& format : kAlsaFormats) {
        if (format.bits == 16) continue;
        std::vector<std::int32_t> converted = samples;
        ToCard(format, converted.data(), converted.size());
        EXPECT_EQ(converted == samples, format.bits == 32) << format.name;
        FromCard(format, converted.data(), converted.size());
        EXPECT_EQ(converted, samples) << format.name;
    }
}

TEST(AlsaFormat, IsConvertedWithoutMemoryAndLocks) {
    std::vector<std::int32_t> samples(2000, 0x12345600);
    for (const AlsaFormat& format : kAlsaFormats) {
        if (format.bits == 16) continue;
        const AllocationCounter counter;
        ToCard(format, samples.data(), samples.size());
        FromCard(format, samples.data(), samples.size());
        EXPECT_EQ(counter.Count() + counter.Locks(), 0U) << format.name;
    }
}

TEST(AlsaFormat, IgnoresTheUpperByteOf24Bits) {
    std::vector<std::int32_t> samples{0x5A123456, 0x00123456, -0x00EDCBAA};
    FromCard(kAlsaFormats[2], samples.data(), samples.size());
    EXPECT_EQ(samples, std::vector<std::int32_t>(3, 0x12345600));
}

}  // namespace
}  // namespace sonavex
