#include "platform/desktop/windows/PanelActivation.hpp"

#include "platform/desktop/windows/X11.hpp"

#include <algorithm>
#include <cstdint>
#include <span>

namespace quorvale::platform::desktop {

namespace {

using x11::Reply;

constexpr auto buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;

bool isPanel(xcb_connection_t* server, xcb_window_t window) {
    constexpr std::uint32_t most = 16;
    const Reply<xcb_get_property_reply_t> types(xcb_get_property_reply(
        server, xcb_get_property(server, 0, window, x11::atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 0, most),
        nullptr));
    if (!types || types->format != 32) {
        return false;
    }
    const std::span listed(static_cast<const xcb_atom_t*>(xcb_get_property_value(types.get())), types->value_len);
    return std::ranges::find(listed, x11::atom("_NET_WM_WINDOW_TYPE_DOCK")) != listed.end();
}

Reply<xcb_query_pointer_reply_t> pointerIn(xcb_connection_t* server, xcb_window_t window) {
    return Reply<xcb_query_pointer_reply_t>(
        xcb_query_pointer_reply(server, xcb_query_pointer(server, window), nullptr));
}

/// Window managers put frames around panels, too.
bool pointerIsOnPanel(xcb_connection_t* server) {
    auto pointer = pointerIn(server, x11::root());
    while (pointer && pointer->child != XCB_WINDOW_NONE && !isPanel(server, pointer->child)) {
        pointer = pointerIn(server, pointer->child);
    }
    return pointer && pointer->child != XCB_WINDOW_NONE;
}

/// The focus may be in a part of the panel's window.
bool panelHasKeyboard(xcb_connection_t* server) {
    const Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    auto window = focus ? focus->focus : xcb_window_t{XCB_WINDOW_NONE};
    while (window > XCB_INPUT_FOCUS_POINTER_ROOT && !isPanel(server, window)) {
        const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(server, xcb_query_tree(server, window), nullptr));
        window = tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
    }
    return window > XCB_INPUT_FOCUS_POINTER_ROOT;
}

} // namespace

PanelActivation panelActivation() {
    auto* const server = x11::connection();
    if (!server) {
        return PanelActivation::Unknown;
    }
    const auto pointer = pointerIn(server, x11::root());
    if (pointer && (pointer->mask & buttons) != 0) {
        return PanelActivation::ByPointer;
    }
    if (panelHasKeyboard(server)) {
        return PanelActivation::ByKeyboard;
    }
    return pointerIsOnPanel(server) ? PanelActivation::ByPointer : PanelActivation::Unknown;
}

} // namespace quorvale::platform::desktop
