#include <gmock/gmock.h>

#include "support/PanelRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TypedValues : public PanelRig {
protected:
    TypedValues() { Init(); }
    std::string Message() const { return log.Lines().empty() ? std::string() : log.Lines().back(); }
};

struct TypedCase {
    const char* text;
    std::int32_t value;
    const char* shown;
};

TEST_F(TypedValues, MoveTheFrequencySliders) {
    const TypedCase cases[] = {{"440", 440, "440"},
                               {"440.5", 440, "440"},
                               {"441.5", 442, "442"},
                               {" 20 ", 20, "20"},
                               {"0", 1, "1"},
                               {"-7", 1, "1"},
                               {"22051", 22050, "22050"},
                               {"1e300", 22050, "22050"},
                               {"-1e300", 1, "1"},
                               {"2147483648", 22050, "22050"},
                               {"1e3", 1000, "1000"}};
    for (const TypedCase& typed : cases) {
        signal.txtGenFreq.UserTypes(typed.text);
        EXPECT_EQ(signal.sldStartFreq.Value(), typed.value) << typed.text;
        EXPECT_EQ(signal.txtGenFreq.Text(), typed.shown) << typed.text;
        EXPECT_EQ(Tone().StartFrequency, typed.value) << typed.text;
        signal.txtGenEndFreq.UserTypes(typed.text);
        EXPECT_EQ(signal.sldEndFreq.Value(), typed.value) << typed.text;
        EXPECT_EQ(signal.txtGenEndFreq.Text(), typed.shown) << typed.text;
        EXPECT_EQ(Tone().EndFrequency, typed.value) << typed.text;
    }
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(TypedValues, ThatAreNoNumberChangeNothing) {
    for (const char* text : {"", "abc", "1000x", "-", "1e400"}) {
        signal.txtGenFreq.UserTypes(text);
        signal.txtGenEndFreq.UserTypes(text);
        EXPECT_EQ(signal.txtGenFreq.Text(), text);
        EXPECT_EQ(signal.txtGenEndFreq.Text(), text);
        EXPECT_EQ(signal.sldStartFreq.Value(), 1000);
        EXPECT_EQ(signal.sldEndFreq.Value(), 20);
    }
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(TypedValues, MoveTheOnlyTone) {
    generator.NumTones = 1;
    signal.txtGenFreq.UserTypes("440");
    EXPECT_EQ(Tone().Frequency, 440.0);
    EXPECT_EQ(Tone().LastFrequency, 0.0);
}

TEST_F(TypedValues, MoveTheSweepTime) {
    const TypedCase cases[] = {{"250", 250, "250"}, {"2.5", 2, "2"},           {"3.5", 4, "4"},
                               {"-5", 0, "0"},      {"10001", 10000, "10000"}, {"1e300", 10000, "10000"},
                               {"abc", 0, "0"},     {"300", 300, "300"},       {"", 0, "0"}};
    for (const TypedCase& typed : cases) {
        signal.txtSweepTime.UserTypes(typed.text);
        EXPECT_EQ(signal.sldSweepTime.Value(), typed.value) << typed.text;
        EXPECT_EQ(signal.txtSweepTime.Text(), typed.shown) << typed.text;
        EXPECT_EQ(Tone().SweepTime, typed.value) << typed.text;
        EXPECT_EQ(signal.sldEndFreq.Enabled(), typed.value != 0) << typed.text;
        EXPECT_FALSE(signal.chkLoop.Enabled()) << typed.text;
        EXPECT_FALSE(Tone().Sweep) << typed.text;
    }
}

TEST_F(TypedValues, OfTheSweepTimeShowTheEndFrequencyAgain) {
    signal.txtGenEndFreq.SetText("nonsense");
    Tone().EndFrequency = 0.0;
    signal.txtSweepTime.UserTypes("100");
    EXPECT_EQ(signal.txtGenEndFreq.Text(), "20");
    EXPECT_EQ(Tone().EndFrequency, 20.0);
}

TEST_F(TypedValues, TakeEffectWhenTheEntryIsFinished) {
    signal.txtSweepTime.UserTypes("100");
    signal.txtSweepTime.UserLeaves();
    EXPECT_TRUE(signal.chkLoop.Enabled());
    EXPECT_TRUE(Tone().Sweep);
    EXPECT_EQ(Tone().LoopIncrement, -9.8);
    signal.txtGenEndFreq.UserTypes("2000");
    EXPECT_EQ(Tone().LoopIncrement, -9.8);
    signal.txtGenEndFreq.UserLeaves();
    EXPECT_EQ(Tone().LoopIncrement, 10.0);
    signal.txtGenFreq.UserTypes("500");
    EXPECT_EQ(Tone().LoopIncrement, 10.0);
    signal.txtGenFreq.UserLeaves();
    EXPECT_EQ(Tone().LoopIncrement, 15.0);
    EXPECT_EQ(Tone().SweepFrequency, 500.0);
    signal.txtGenFreq.UserTypes("abc");
    signal.txtGenFreq.UserLeaves();
    EXPECT_EQ(signal.txtGenFreq.Text(), "500");
}

TEST_F(TypedValues, OfTheStartFrequencyAreChecked) {
    for (const char* text : {"20", "20.0", "22050", "1000", " 1e3 "}) {
        signal.txtGenFreq.SetText(text);
        EXPECT_TRUE(panel.CheckEntries()) << text;
        EXPECT_THAT(log.Lines(), IsEmpty()) << text;
        EXPECT_FALSE(signal.txtGenFreq.TakeFocusRequest()) << text;
    }
    for (const char* text : {"19.99", "22050.5", "22051", "-20", "0", "", "abc", "1000x", "1e400"}) {
        log.Clear();
        signal.txtGenFreq.SetText(text);
        EXPECT_FALSE(panel.CheckEntries()) << text;
        EXPECT_THAT(log.Lines(), ElementsAre("Message information Invalid Start Frequency\r\rValue has to "
                                             "be 20 to 22050"))
            << text;
        EXPECT_TRUE(signal.txtGenFreq.TakeFocusRequest()) << text;
        EXPECT_EQ(signal.txtGenFreq.Text(), text);
    }
}

TEST_F(TypedValues, OfTheEndFrequencyAreCheckedForASweep) {
    for (const char* text : {"19.99", "22051", "abc", ""}) {
        log.Clear();
        signal.sldSweepTime.SetValue(0);
        signal.txtGenEndFreq.SetText(text);
        EXPECT_TRUE(panel.CheckEntries()) << text;
        EXPECT_THAT(log.Lines(), IsEmpty()) << text;
        signal.sldSweepTime.SetValue(1);
        EXPECT_FALSE(panel.CheckEntries()) << text;
        EXPECT_THAT(log.Lines(),
                    ElementsAre("Message information Invalid End Frequency\r\rValue has to be 20 to 22050"))
            << text;
        EXPECT_TRUE(signal.txtGenEndFreq.TakeFocusRequest()) << text;
    }
    for (const char* text : {"20", "22050"}) {
        signal.txtGenEndFreq.SetText(text);
        EXPECT_TRUE(panel.CheckEntries()) << text;
    }
}

TEST_F(TypedValues, OfTheSweepTimeAreChecked) {
    for (const char* text : {"-5", "0", "10000", "10000.0", "1", "-1e9"}) {
        signal.txtSweepTime.SetText(text);
        EXPECT_TRUE(panel.CheckEntries()) << text;
    }
    EXPECT_THAT(log.Lines(), IsEmpty());
    for (const char* text : {"10000.5", "10001", "", "abc"}) {
        log.Clear();
        signal.txtSweepTime.SetText(text);
        EXPECT_FALSE(panel.CheckEntries()) << text;
        EXPECT_THAT(log.Lines(), ElementsAre("Message information Invalid Sweep Time")) << text;
        EXPECT_TRUE(signal.txtSweepTime.TakeFocusRequest()) << text;
    }
}

TEST_F(TypedValues, AreCheckedInOrder) {
    signal.sldSweepTime.SetValue(1);
    for (TextBox* box : {&signal.txtGenFreq, &signal.txtGenEndFreq, &signal.txtSweepTime})
        box->SetText("wrong");
    EXPECT_FALSE(panel.CheckEntries());
    EXPECT_EQ(Message(), "Message information Invalid Start Frequency\r\rValue has to be 20 to 22050");
    signal.txtGenFreq.SetText("20");
    EXPECT_FALSE(panel.CheckEntries());
    EXPECT_EQ(Message(), "Message information Invalid End Frequency\r\rValue has to be 20 to 22050");
    signal.txtGenEndFreq.SetText("20");
    EXPECT_FALSE(panel.CheckEntries());
    EXPECT_EQ(Message(), "Message information Invalid Sweep Time");
    EXPECT_EQ(log.Count("Message"), 3U);
}

TEST_F(TypedValues, MayReachHalfTheRateCutOff) {
    bench.shared.SampleRate = 11025;
    signal.txtGenFreq.SetText("5512");
    EXPECT_TRUE(panel.CheckEntries());
    signal.txtGenFreq.SetText("5512.5");
    EXPECT_FALSE(panel.CheckEntries());
    EXPECT_EQ(Message(), "Message information Invalid Start Frequency\r\rValue has to be 20 to 5512");
}

}  // namespace
}  // namespace sonavex
