#include "platform/qt/XEmbedHost.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace korvalin {
namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
using ReplyOf = std::unique_ptr<Reply, Free>;

xcb_connection_t* Connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

xcb_atom_t SelectionOfScreen(xcb_connection_t* server) {
    int display = 0;
    int screen = 0;
    char* host = nullptr;
    if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) std::free(host);
    const std::string name = "_NET_SYSTEM_TRAY_S" + std::to_string(screen);
    const auto cookie = xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyOf<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server, cookie, nullptr));
    if (!reply) return XCB_ATOM_NONE;
    return reply->atom;
}

} // namespace

bool XEmbedHost::IsThere() {
    xcb_connection_t* server = Connection();
    if (server == nullptr) return false;
    if (selection_ == XCB_ATOM_NONE) selection_ = SelectionOfScreen(server);
    const ReplyOf<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, selection_), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

} // namespace korvalin
