#include "platform/desktop/windows/InputGrab.hpp"

#include "platform/desktop/windows/X11.hpp"

#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QTimerEvent>
#include <QWidget>
#include <QWindow>

#include <cstdint>
#include <utility>
#include <xcb/xinput.h>

namespace quorvale::platform::desktop {

namespace {

/// A client may let go of what it holds without any input of the user's, which the server tells to nobody else.
constexpr int retryInterval = 100; // milliseconds

/// From a server that hasn't got XInput 2, as those of remote desktops haven't: what Qt does there, too.
bool takeCorePointer(xcb_connection_t* server, xcb_window_t window) {
    const x11::Reply<xcb_grab_pointer_reply_t> grab(xcb_grab_pointer_reply(
        server,
        xcb_grab_pointer(server, 0, window, XCB_EVENT_MASK_NO_EVENT, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                         XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME),
        nullptr));
    return grab && grab->status == XCB_GRAB_STATUS_SUCCESS;
}

} // namespace

InputGrab::InputGrab(QWidget& window) : window_(window) {
    window.installEventFilter(this);
}

InputGrab::~InputGrab() {
    listen(false);
    qGuiApp->removeNativeEventFilter(this);
}

void InputGrab::take() {
    tryToTake();
    if (!(hasKeyboard_ && hasPointer_)) {
        qGuiApp->installNativeEventFilter(this);
        listen(true);
        // The button may have gone up before the server was asked to tell of it.
        tryToTake();
    }
}

void InputGrab::release() {
    listen(false);
    qGuiApp->removeNativeEventFilter(this);
    pressedElsewhere_ = false;
    if (std::exchange(hasKeyboard_, false)) {
        window_.windowHandle()->setKeyboardGrabEnabled(false);
    }
    if (std::exchange(hasPointer_, false)) {
        window_.windowHandle()->setMouseGrabEnabled(false);
    }
    // Now, whatever the program is about to do: until then the user's clicks would go nowhere.
    if (auto* const server = x11::connection()) {
        xcb_flush(server);
    }
}

bool InputGrab::eventFilter(QObject* /*watched*/, QEvent* event) {
    // Qt closes popups, late, when the program has lost the keyboard. Whoever holds it has not.
    if (hasKeyboard_ && event->type() == QEvent::Close && event->spontaneous()) {
        event->ignore();
        return true;
    }
    const auto isPress = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (!isPress && event->type() != QEvent::MouseButtonRelease) {
        return false;
    }
    const auto& click = *static_cast<QMouseEvent*>(event);
    if (isPress && !window_.rect().contains(click.position().toPoint())) {
        pressedElsewhere_ = true;
    }
    const auto isOurs = pressedElsewhere_;
    if (isOurs && !isPress && click.buttons() == Qt::NoButton) {
        pressedElsewhere_ = false;
        Q_EMIT clickedElsewhere();
    }
    return isOurs;
}

void InputGrab::timerEvent(QTimerEvent* event) {
    if (event->timerId() == retries_.timerId()) {
        tryToTake();
    }
}

bool InputGrab::nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) {
    auto* const server = x11::connection();
    if (!server) {
        return false;
    }
    const auto& event = *static_cast<xcb_ge_generic_event_t*>(message);
    const auto* const xInput = xcb_get_extension_data(server, &xcb_input_id);
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC || event.extension != xInput->major_opcode) {
        return false;
    }
    switch (event.event_type) {
    case XCB_INPUT_RAW_BUTTON_PRESS:
    case XCB_INPUT_RAW_TOUCH_BEGIN:
        Q_EMIT pressedTooEarly(QCursor::pos());
        break;
    case XCB_INPUT_RAW_KEY_RELEASE:
    case XCB_INPUT_RAW_BUTTON_RELEASE:
    case XCB_INPUT_RAW_TOUCH_END:
        tryToTake();
        break;
    default:
        break;
    }
    return false;
}

void InputGrab::tryToTake() {
    hasKeyboard_ = hasKeyboard_ || takeKeyboard();
    hasPointer_ = hasPointer_ || takePointer();
    if (hasKeyboard_ && hasPointer_) {
        listen(false);
    }
}

bool InputGrab::takeKeyboard() {
    auto* const window = window_.windowHandle();
    if (!window->setKeyboardGrabEnabled(true)) {
        return false;
    }
    // To Qt a window that was hidden a moment ago is still the one in focus, which it doesn't tell the widget again.
    if (QGuiApplication::focusWindow() == window && !window_.isActiveWindow()) {
        QT_WARNING_PUSH
        QT_WARNING_DISABLE_DEPRECATED // in favour of asking the server, which has nothing to tell either
        QApplication::setActiveWindow(&window_);
        QT_WARNING_POP
    }
    return true;
}

/// Qt takes any answer to its request for a success, so the question is asked here first, by a grab of the same kind
/// that Qt's then takes the place of, without a moment between them.
bool InputGrab::takePointer() {
    auto* const window = window_.windowHandle();
    if (auto* const server = x11::connection()) {
        const x11::Reply<xcb_input_xi_get_client_pointer_reply_t> pointer(xcb_input_xi_get_client_pointer_reply(
            server, xcb_input_xi_get_client_pointer(server, XCB_WINDOW_NONE), nullptr));
        if (!pointer) {
            return takeCorePointer(server, static_cast<xcb_window_t>(window->winId())) &&
                   window->setMouseGrabEnabled(true);
        }
        const x11::Reply<xcb_input_xi_grab_device_reply_t> grab(xcb_input_xi_grab_device_reply(
            server,
            xcb_input_xi_grab_device(server, static_cast<xcb_window_t>(window->winId()), XCB_CURRENT_TIME,
                                     XCB_CURSOR_NONE, pointer->deviceid, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                     XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, 0, nullptr),
            nullptr));
        if (!grab || grab->status != XCB_GRAB_STATUS_SUCCESS) {
            return false;
        }
    }
    return window->setMouseGrabEnabled(true);
}

/// Raw events come whoever has grabbed the devices. Those that have come when the pointer is taken are still to be
/// heard: another button may have gone down before.
void InputGrab::listen(bool isListening) {
    if (isListening == retries_.isActive()) {
        return;
    }
    auto* const server = x11::connection();

    struct {
        xcb_input_event_mask_t head{.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1};
        std::uint32_t events = 0;
    } selection;

    if (isListening) {
        retries_.start(retryInterval, this);
        selection.events = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                           XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN |
                           XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_END;
    } else {
        retries_.stop();
    }
    if (server) {
        xcb_input_xi_select_events(server, x11::root(), 1, &selection.head);
    }
}

} // namespace quorvale::platform::desktop
