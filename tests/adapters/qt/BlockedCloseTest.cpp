#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <QDialog>

#include "platform/qt/BlockedClose.h"

namespace sonavex {
namespace {

constexpr BlockedClose::Atoms kAtoms{11, 12};

class BlockedCloseTest : public testing::Test {
protected:
    BlockedCloseTest() {
        window_.show();
        dialog_.setModal(true);
        dialog_.show();
    }
    // The window manager's message to the window with this first word.
    void Receive(std::uint32_t word, WId window) {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.type = kAtoms.protocols;
        event.window = static_cast<xcb_window_t>(window);
        event.data.data32[0] = word;
        EXPECT_FALSE(filter_.nativeEventFilter("xcb_generic_event_t", &event, nullptr));
        QApplication::processEvents();
    }

    QWidget window_;
    QDialog dialog_;
    int requests_ = 0;
    BlockedClose filter_{window_, kAtoms, [this] { ++requests_; }};
};

TEST_F(BlockedCloseTest, ReportsARequestForTheBlockedWindow) {
    Receive(kAtoms.deleteWindow, window_.winId());
    EXPECT_EQ(requests_, 1);
}

TEST_F(BlockedCloseTest, LeavesTheDialogOtherMessagesAndAnUnblockedWindowToQt) {
    Receive(kAtoms.deleteWindow, dialog_.winId());
    Receive(kAtoms.deleteWindow + 1, window_.winId());
    dialog_.hide();
    Receive(kAtoms.deleteWindow, window_.winId());
    EXPECT_EQ(requests_, 0);
}

}  // namespace
}  // namespace sonavex
