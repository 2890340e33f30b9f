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

xcb_connection_t* Server() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

xcb_atom_t Atom(const std::string& name) {
    const auto cookie = xcb_intern_atom(Server(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyOf<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(Server(), cookie, nullptr));
    if (!reply) return XCB_ATOM_NONE;
    return reply->atom;
}

std::string SelectionOfScreen() {
    int display = 0;
    int screen = 0;
    char* host = nullptr;
    if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) std::free(host);
    return "_NET_SYSTEM_TRAY_S" + std::to_string(screen);
}

xcb_window_t Owner(xcb_atom_t selection) {
    const auto cookie = xcb_get_selection_owner(Server(), selection);
    const ReplyOf<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(Server(), cookie, nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

void TellWhenItGoes(xcb_window_t window) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(Server(), window, XCB_CW_EVENT_MASK, &events);
}

} // namespace

XEmbedHost::XEmbedHost() {
    if (Server() == nullptr) return;
    selection_ = Atom(SelectionOfScreen());
    manager_ = Atom("MANAGER");
    qApp->installNativeEventFilter(this);
    Look();
}

void XEmbedHost::Look() {
    do {
        owner_ = Owner(selection_);
        if (owner_ != XCB_WINDOW_NONE) TellWhenItGoes(owner_);
    } while (Owner(selection_) != owner_); // it may have gone before it was watched
}

bool XEmbedHost::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    bool changes = false;
    switch (event->response_type & 0x7F) { // the highest bit only tells that a program sent it
    case XCB_CLIENT_MESSAGE: {
        const auto* told = static_cast<const xcb_client_message_event_t*>(message);
        changes = told->type == manager_ && told->data.data32[1] == selection_;
        break;
    }
    case XCB_DESTROY_NOTIFY:
        changes = static_cast<const xcb_destroy_notify_event_t*>(message)->window == owner_;
        break;
    default: break;
    }
    if (!changes) return false;
    Look();
    // The toolkit has its own work to do on this event first.
    QMetaObject::invokeMethod(this, &XEmbedHost::Changed, Qt::QueuedConnection);
    return false;
}

} // namespace korvalin
