// The whole program with faults of a sound card that it uses directly, without a server.

#include <QComboBox>

#include "support/Wait.h"
#include "support/alsa/LoopCards.h"
#include "system/faults/FaultRig.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kOnTheCard = "[SoundCard]\nInput=alsa:card\nOutput=alsa:card\nSampleRate=2\n";

class CardFaults : public FaultRig {
protected:
    CardFaults() {
        setenv("PULSE_SERVER", "unix:/nonexistent/sonavex", 1);
        Store(kOnTheCard);
    }
};

TEST_F(CardFaults, UnpluggedInMidstreamAndPluggedInAgain) {
    LoopCards cards(CardList{{"card", "Test card"}});
    LoopCardState& card = cards.State("card");
    onSelection = [&](QDialog&) { card.unplugged = 0; };
    Twice([&] {
        ExpectMeasuring();
        card.unplugged = 1;
        ExpectLoss("has been removed.");
        EXPECT_EQ(User().Selections, 1);
        ExpectReturn();
        ExpectLoop();
    });
}

TEST_F(CardFaults, SuspendedAndResumed) {
    LoopCards cards(CardList{{"card", "Test card"}});
    LoopCardState& card = cards.State("card");
    onSelection = [&](QDialog&) { card.suspended = 0; };
    Twice([&] {
        ExpectMeasuring();
        card.suspended = 1;
        ExpectLoss("has been suspended.");
        ExpectReturn();
        ExpectLoop();
    });
}

TEST_F(CardFaults, SuspendedAndResumedAbove48kHz) {
    LoopCards cards(CardList{{"card", "Test card", {32000, 192000}, 2, "S32_LE"}});
    LoopCardState& card = cards.State("card");
    Store(kOnTheCard + std::string("[Face]\nExtendedSampleRate=192000\n"));
    fineBits = 24;
    onSelection = [&](QDialog&) { card.suspended = 0; };
    Run([&] {
        ExpectMeasuring();
        card.suspended = 1;
        ExpectLoss("has been suspended.");
        ExpectReturn();
        EXPECT_EQ(Form().lblSampleRate.Caption(), "192000");
        ExpectFineLoop();
    });
}

TEST_F(CardFaults, HeldByAnotherProgramAtTheStart) {
    LoopCards cards(CardList{{"card", "Test card"}});
    const PrivateFolder folder;
    std::unique_ptr<ChildProcess> recorder;
    const auto hold = [&] {
        recorder = std::make_unique<ChildProcess>(
            Arguments{"arecord", "-q", "-D", "card", "-t", "raw", "-f", "S16_LE", "-c", "2", "-r", "48000",
                      folder.Path() / "recording"},
            cards.ForPrograms(), folder.Path() / "log");
        ASSERT_TRUE(WaitInQt(kLimit, [&] { return cards.InUse("card", LoopCards::Direction::kCapture); }));
    };
    onSelection = [&](QDialog&) { recorder.reset(); };
    afterRun = hold;
    hold();
    Twice([&] {
        ASSERT_EQ(User().Errors.size(), 1U);
        EXPECT_THAT(User().Errors[0], HasSubstr("or sound card is in use."));
        EXPECT_THAT(Record(),
                    HasSubstr("The sound device 'Test card (direct)' is in use by another program."));
        EXPECT_EQ(User().Selections, 1);
        ExpectMeasuring();
        ExpectLoop();
    });
}

// The user chooses another rate.
TEST_F(CardFaults, RateRefused) {
    LoopCards cards(CardList{{"card", "Test card", {44100}}});
    constexpr int kOf44100 = 1;
    onSelection = [&](QDialog& dialog) {
        auto& rates = *dialog.findChild<QComboBox*>(QStringLiteral("cmbSampleRate"));
        rates.setCurrentIndex(kOf44100);
        Q_EMIT rates.activated(kOf44100);
    };
    Twice([&] {
        ASSERT_EQ(User().Errors.size(), 1U);
        EXPECT_THAT(Record(), HasSubstr("/DSERR_BADFORMAT"));
        EXPECT_EQ(Form().lblSampleRate.Caption(), "44100");
        ExpectMeasuring();
        // Between two bins.
        ExpectLoop("1001");
        EXPECT_EQ(Form().PathNote.Caption(), "");
        Store(kOnTheCard);
    });
}

TEST_F(CardFaults, TwoHundredRestarts) {
    LoopCards cards(CardList{{"card", "Test card"}});
    Run([&] {
        ExpectMeasuring();
        const auto restart = [&](int times) {
            for (int i = 0; i < times; ++i) ASSERT_TRUE(Form().Instrument.Engine.ReStart()) << i;
            ExpectMeasuring();
        };
        restart(20);
        const Holdings before = Holdings::Now();
        restart(200);
        ExpectNothingKept(before);
        EXPECT_THAT(User().Errors, IsEmpty());
    });
}

}  // namespace
}  // namespace sonavex
