#include "platform/desktop/windows/X11.hpp"

#include <QGuiApplication>

namespace quorvale::platform::desktop::x11 {

xcb_connection_t* connection() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Platforms without an X server may have the interface, too.
    return x11 ? x11->connection() : nullptr;
}

xcb_window_t root() {
    return xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
}

xcb_atom_t atom(std::string_view name) {
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection(), xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void listen(xcb_window_t window, std::uint32_t events) {
    const Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection(), xcb_get_window_attributes(connection(), window), nullptr));
    if (attributes) {
        events |= attributes->your_event_mask;
        xcb_change_window_attributes(connection(), window, XCB_CW_EVENT_MASK, &events);
        xcb_flush(connection());
    }
}

bool isComposited() {
    auto* const server = connection();
    if (!server) {
        return true;
    }
    const Reply<xcb_get_selection_owner_reply_t> manager(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, atom("_NET_WM_CM_S0")), nullptr));
    return manager && manager->owner != XCB_WINDOW_NONE;
}

} // namespace quorvale::platform::desktop::x11
