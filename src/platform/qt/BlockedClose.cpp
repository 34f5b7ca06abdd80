#include "platform/qt/BlockedClose.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <QMetaObject>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace sonavex {
namespace {

constexpr std::uint8_t kTypeBits = 0x7f;  // the other bit marks events that another client has sent

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

std::uint32_t AtomOf(xcb_connection_t* server, std::string_view name) {
    const auto request = xcb_intern_atom(server, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(
        xcb_intern_atom_reply(server, request, nullptr));
    return reply ? reply->atom : 0;
}

}  // namespace

BlockedClose::Atoms BlockedClose::AtomsOfTheServer() {
    // The offscreen platform has this interface too, without a connection.
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* const server = x11 == nullptr ? nullptr : x11->connection();
    if (server == nullptr) return {};
    return {AtomOf(server, "WM_PROTOCOLS"), AtomOf(server, "WM_DELETE_WINDOW")};
}

BlockedClose::BlockedClose(const QWidget& window, Atoms atoms, std::function<void()> requested)
    : window_(window), atoms_(atoms), requested_(std::move(requested)) {
    if (atoms_.protocols != 0) qApp->installNativeEventFilter(this);
}

BlockedClose::~BlockedClose() = default;

bool BlockedClose::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto& event = *static_cast<const xcb_client_message_event_t*>(message);
    const bool close = (event.response_type & kTypeBits) == XCB_CLIENT_MESSAGE &&
                       event.type == atoms_.protocols && event.data.data32[0] == atoms_.deleteWindow &&
                       event.window == window_.internalWinId();
    if (close && QApplication::activeModalWidget() != nullptr)
        QMetaObject::invokeMethod(&context_, requested_, Qt::QueuedConnection);
    return false;
}

}  // namespace sonavex
