#include "system/safety/Display.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "support/Files.h"
#include "support/Wait.h"

namespace sonavex {
namespace {

struct Disconnect {
    void operator()(xcb_connection_t* server) const { xcb_disconnect(server); }
};

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

std::uint32_t Atom(xcb_connection_t* server, std::string_view name) {
    const auto request = xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, FreeReply> reply(
        xcb_intern_atom_reply(server, request, nullptr));
    if (!reply) throw std::runtime_error("the display does not answer");
    return reply->atom;
}

}  // namespace

Display::Display()
    : server_({"Xvfb", "-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten", "tcp"}, {},
              folder_.Path() / "number", folder_.Path() / "log") {
    const auto file = folder_.Path() / "number";
    if (!WaitUntil([&] { return FileText(file).find('\n') != std::string::npos; }))
        throw std::runtime_error("no display: " + FileText(folder_.Path() / "log"));
    const std::string number = FileText(file);
    name_ = ':' + number.substr(0, number.find('\n'));
}

void Display::AskToClose(std::uint32_t window) const {
    const std::unique_ptr<xcb_connection_t, Disconnect> server(xcb_connect(name_.c_str(), nullptr));
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = Atom(server.get(), "WM_PROTOCOLS");
    event.data.data32[0] = Atom(server.get(), "WM_DELETE_WINDOW");
    event.data.data32[1] = XCB_CURRENT_TIME;
    const auto request = xcb_send_event_checked(server.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                                                reinterpret_cast<const char*>(&event));
    const std::unique_ptr<xcb_generic_error_t, FreeReply> error(xcb_request_check(server.get(), request));
    if (error) throw std::runtime_error("no such window");
}

}  // namespace sonavex
