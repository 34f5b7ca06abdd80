#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "core/support/Ending.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EndingTest : public testing::Test {
protected:
    // A call that waits while `during` runs. Notes its closing and how it is left.
    void Open(const std::string& name, const Ending::Action& during) {
        try {
            ending.Wait(during, [&] { notes.push_back("close " + name); });
            notes.push_back("return " + name);
        } catch (const EndProgram& end) {
            notes.push_back("end " + name + ' ' + std::to_string(end.status));
            throw;
        }
    }

    Ending ending;
    std::vector<std::string> notes;
};

TEST_F(EndingTest, ClosesTheOpenCallsFromTheInnermostOutwards) {
    EXPECT_THROW(Open("outer", [&] { Open("inner", [&] { ending.Request({3}); }); }), EndProgram);
    EXPECT_THAT(notes, ElementsAre("close inner", "close outer", "end inner 3", "end outer 3"));
    EXPECT_FALSE(ending.Waiting());
}

TEST_F(EndingTest, LeavesCallsAloneWithoutARequest) {
    Open("outer", [&] { Open("inner", [&] { EXPECT_TRUE(ending.Waiting()); }); });
    EXPECT_THAT(notes, ElementsAre("return inner", "return outer"));
    EXPECT_FALSE(ending.Waiting());
    EXPECT_NO_THROW(ending.ThrowIfRequested());
}

TEST_F(EndingTest, ClosesEveryCallOnceAndTheFirstRequestCounts) {
    EXPECT_THROW(Open("call",
                      [&] {
                          ending.Request({3});
                          ending.Request({4, true});
                      }),
                 EndProgram);
    EXPECT_THAT(notes, ElementsAre("close call", "end call 3"));
    EXPECT_FALSE(ending.Requested()->atOnce);
}

TEST_F(EndingTest, OpensNothingAfterARequest) {
    ending.Request({5});
    EXPECT_THROW(Open("call", [&] { notes.emplace_back("open"); }), EndProgram);
    EXPECT_THAT(notes, ElementsAre("end call 5"));
}

TEST_F(EndingTest, OpensMessagesAfterARequestButNotAfterASignal) {
    const auto message = [&] { ending.WaitForMessage([&] { notes.emplace_back("open"); }, [] {}); };
    ending.Request({});
    EXPECT_NO_THROW(message());
    EXPECT_THAT(notes, ElementsAre("open"));
    ending.Request({.status = 0, .atOnce = false, .bySignal = true});
    notes.clear();
    EXPECT_THROW(message(), EndProgram);
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(EndingTest, AnotherRequestClosesAMessageThatOpenedAfterTheFirst) {
    ending.Request({});
    bool closed = false;
    EXPECT_THROW(ending.WaitForMessage([&] { ending.Request({}); }, [&] { closed = true; }), EndProgram);
    EXPECT_TRUE(closed);
}

}  // namespace
}  // namespace sonavex
