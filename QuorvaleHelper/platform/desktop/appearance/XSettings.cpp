#include "platform/desktop/appearance/XSettings.hpp"

#include "platform/desktop/windows/X11.hpp"

#include <QGuiApplication>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace quorvale::platform::desktop {

namespace {

using x11::Reply;

constexpr std::uint32_t largestProperty = 1 << 16; // units of four bytes

/// Reads what is left of a property from its front. What is missing reads as nothing, and says so at the end.
class Reader {
public:
    explicit Reader(std::string_view data) : rest_(data) {}

    std::string_view take(std::size_t size) {
        if (size > rest_.size()) {
            failed_ = true;
            rest_ = {};
            return {};
        }
        const auto taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }

    /// As long as the next multiple of four.
    std::string_view takePadded(std::size_t size) {
        const auto taken = take(size);
        take((4 - size % 4) % 4);
        return taken;
    }

    std::uint32_t number(std::size_t size) {
        std::uint32_t value = 0;
        const auto bytes = take(size);
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            const auto byte = static_cast<unsigned char>(bytes[isBigEndian ? at : bytes.size() - 1 - at]);
            value = value << 8U | byte;
        }
        return value;
    }

    [[nodiscard]] bool failed() const { return failed_; }

    bool isBigEndian = false;

private:
    std::string_view rest_;
    bool failed_ = false;
};

} // namespace

std::optional<std::string> textSetting(std::string_view property, std::string_view name) {
    enum Type : std::uint8_t { integer, text, color };

    Reader reader(property);
    reader.isBigEndian = reader.take(1) == std::string_view("\1", 1);
    reader.take(3);
    reader.take(4); // the serial number
    for (auto left = reader.number(4); left > 0 && !reader.failed(); --left) {
        const auto type = reader.number(1);
        reader.take(1);
        const auto nameSize = reader.number(2);
        const auto itsName = reader.takePadded(nameSize);
        reader.take(4); // the serial number of its last change
        switch (type) {
        case integer:
            reader.take(4);
            break;
        case text: {
            const auto size = reader.number(4);
            const auto value = reader.takePadded(size);
            if (itsName == name && !reader.failed()) {
                return std::string(value);
            }
            break;
        }
        case color:
            reader.take(8);
            break;
        default:
            return std::nullopt;
        }
    }
    return std::nullopt;
}

XSettings::XSettings(QObject* parent)
    : QObject(parent),
      // Of the first screen, which is where Qt's windows are.
      selection_(x11::atom("_XSETTINGS_S0")),
      settings_(x11::atom("_XSETTINGS_SETTINGS")),
      managerMessage_(x11::atom("MANAGER")) {
    qGuiApp->installNativeEventFilter(this);
    // A manager that starts says so here.
    x11::listen(x11::root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    findManager();
    read();
}

XSettings::~XSettings() {
    qGuiApp->removeNativeEventFilter(this);
}

bool XSettings::nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) {
    constexpr std::uint8_t sentFlag = 0x80;
    switch (static_cast<xcb_generic_event_t*>(message)->response_type & ~sentFlag) {
    case XCB_PROPERTY_NOTIFY: {
        const auto& event = *static_cast<xcb_property_notify_event_t*>(message);
        if (event.window == manager_ && event.atom == settings_) {
            read();
        }
        break;
    }
    case XCB_DESTROY_NOTIFY:
        if (static_cast<xcb_destroy_notify_event_t*>(message)->window == manager_) {
            findManager();
            read();
        }
        break;
    case XCB_CLIENT_MESSAGE: {
        const auto& event = *static_cast<xcb_client_message_event_t*>(message);
        if (event.type == managerMessage_ && event.data.data32[1] == selection_) {
            findManager();
            read();
        }
        break;
    }
    default:
        break;
    }
    return false;
}

void XSettings::findManager() {
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        x11::connection(), xcb_get_selection_owner(x11::connection(), selection_), nullptr));
    manager_ = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
    if (manager_ != XCB_WINDOW_NONE) {
        x11::listen(manager_, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
}

void XSettings::read() {
    QString name;
    if (manager_ != XCB_WINDOW_NONE) {
        const auto question =
            xcb_get_property(x11::connection(), 0, manager_, settings_, XCB_ATOM_ANY, 0, largestProperty);
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x11::connection(), question, nullptr));
        if (reply && reply->format == 8) {
            const std::string_view property(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                            static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
            name = QString::fromStdString(textSetting(property, "Net/ThemeName").value_or(""));
        }
    }
    if (std::exchange(themeName_, name) != name) {
        Q_EMIT themeNameChanged();
    }
}

} // namespace quorvale::platform::desktop
