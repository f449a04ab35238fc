#include "platform/desktop/windows/InputGrab.hpp"

#include <QGuiApplication>
#include <QWindow>

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace quorvale::platform::desktop {

namespace {

/// Whether the pointer can be had. Qt doesn't tell: through XInput 2 it takes any answer to its request for a success.
bool pointerIsFree(QWindow& window) {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Platforms without an X server may have the interface, too.
    auto* const connection = x11 ? x11->connection() : nullptr;
    if (!connection) {
        return true;
    }
    const auto cookie =
        xcb_grab_pointer(connection, 0, static_cast<xcb_window_t>(window.winId()), 0, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    const std::unique_ptr<xcb_grab_pointer_reply_t, decltype(&std::free)> reply(
        xcb_grab_pointer_reply(connection, cookie, nullptr), &std::free);
    if (!reply || reply->status != XCB_GRAB_STATUS_SUCCESS) {
        return false;
    }
    // Qt listens to the events of its own kind of grab only.
    xcb_ungrab_pointer(connection, XCB_CURRENT_TIME);
    return true;
}

} // namespace

bool grabInput(QWindow& window) {
    // A grab of Qt's, should it have one, would stand in the way of the question.
    window.setMouseGrabEnabled(false);
    return pointerIsFree(window) && window.setMouseGrabEnabled(true) && window.setKeyboardGrabEnabled(true);
}

void releaseInput(QWindow& window) {
    window.setKeyboardGrabEnabled(false);
    window.setMouseGrabEnabled(false);
}

} // namespace quorvale::platform::desktop
