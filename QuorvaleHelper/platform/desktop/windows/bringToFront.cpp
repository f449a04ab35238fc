#include "platform/desktop/windows/bringToFront.hpp"

#include "platform/desktop/windows/ActivationToken.hpp"
#include "platform/desktop/windows/WindowSystem.hpp"
#include "platform/desktop/windows/X11.hpp"

#include <QWidget>

#include <cstdint>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace quorvale::platform::desktop {

namespace {

constexpr std::uint32_t longestDelay = 60'000; // milliseconds
constexpr std::uint32_t fromApplication = 1;

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

/// The X server tells its time with events only, and all that come on the toolkit's connection go to the toolkit.
/// 0 if it can't be asked.
std::uint32_t serverTime() {
    const std::unique_ptr<xcb_connection_t, Disconnect> connection(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get()) != 0) {
        return 0;
    }
    // Not the toolkit's root: an option may have had it turn to another display than the environment names.
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root;
    const auto window = xcb_generate_id(connection.get());
    const std::uint32_t wanted = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &wanted);
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    xcb_flush(connection.get());
    while (const x11::Reply<xcb_generic_event_t> event{xcb_wait_for_event(connection.get())}) {
        if (event->response_type == 0) {
            break; // an error, after which nothing comes
        }
        if (event->response_type == XCB_PROPERTY_NOTIFY) {
            xcb_property_notify_event_t change;
            std::memcpy(&change, event.get(), sizeof change);
            return change.time;
        }
    }
    return 0;
}

/// When the user wanted the window. A host may say what it likes, or tell the time by another clock.
std::uint32_t userTime() {
    const auto now = serverTime();
    const auto told = ActivationToken::userTime();
    return told != 0 && now - told <= longestDelay ? told : now;
}

void sendToWindowManager(xcb_connection_t* connection, const xcb_client_message_event_t& message, std::uint32_t mask) {
    xcb_send_event(connection, 0, x11::root(), mask, reinterpret_cast<const char*>(&message));
}

void activate(xcb_connection_t* connection, xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = x11::atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = fromApplication;
    message.data.data32[1] = userTime();
    sendToWindowManager(connection, message, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
}

/// Ends what the desktop shows of a start that is under way, such as a busy pointer.
void completeStartup(xcb_connection_t* connection, xcb_window_t window, const QByteArray& startupId) {
    auto text = "remove: ID=\"" + QByteArray(startupId).replace('\\', "\\\\").replace('"', "\\\"") + '"';
    text.append('\0');
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 8;
    message.window = window;
    message.type = x11::atom("_NET_STARTUP_INFO_BEGIN");
    constexpr qsizetype most = sizeof message.data.data8;
    for (qsizetype sent = 0; sent < text.size(); sent += most) {
        const auto part = text.mid(sent, most);
        message.data = {};
        std::memcpy(message.data.data8, part.data(), static_cast<std::size_t>(part.size()));
        sendToWindowManager(connection, message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        message.type = x11::atom("_NET_STARTUP_INFO");
    }
}

} // namespace

void bringToFront(QWidget& window) {
    auto* const connection = x11::connection();
    if (!connection) {
        // Without leave a compositor raises no window, as it would be anyone's to ask. Most show a new one in front.
        if (window.isVisible() && !window.isActiveWindow() && ActivationToken::current().isEmpty() &&
            windowSystem() == WindowSystem::Wayland) {
            window.hide();
        }
        window.show();
        window.raise();
        window.activateWindow();
        return;
    }
    const auto id = static_cast<xcb_window_t>(window.winId());
    const auto startupId = ActivationToken::current();
    if (!startupId.isEmpty()) {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, x11::atom("_NET_STARTUP_ID"),
                            x11::atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(startupId.size()),
                            startupId.data());
    }
    window.show();
    window.raise();
    // Not as the toolkit would: it goes by the time when the user last turned to one of its own windows, which any
    // other window in front has been used since.
    activate(connection, id);
    if (!startupId.isEmpty()) {
        completeStartup(connection, id, startupId);
    }
    xcb_flush(connection);
}

} // namespace quorvale::platform::desktop
