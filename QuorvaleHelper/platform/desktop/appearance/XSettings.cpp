#include "platform/desktop/appearance/XSettings.hpp"

#include <QSocketNotifier>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <xcb/xcb.h>

namespace quorvale::platform::desktop {

namespace {

constexpr std::uint32_t largestProperty = 1 << 16; // units of four bytes

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

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

class XSettings::Display {
public:
    Display() : connection_(xcb_connect(nullptr, &screen_)) {
        if (!isOpen()) {
            return;
        }
        auto roots = xcb_setup_roots_iterator(xcb_get_setup(connection_));
        for (int number = 0; number < screen_ && roots.rem > 1; ++number) {
            xcb_screen_next(&roots);
        }
        root_ = roots.data->root;
        selection_ = atom("_XSETTINGS_S" + std::to_string(screen_));
        settings_ = atom("_XSETTINGS_SETTINGS");
        managerMessage_ = atom("MANAGER");
        // A manager that starts says so here.
        listen(root_, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    }

    ~Display() { xcb_disconnect(connection_); }

    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    [[nodiscard]] bool isOpen() const { return xcb_connection_has_error(connection_) == 0; }

    [[nodiscard]] int descriptor() const { return xcb_get_file_descriptor(connection_); }

    void findManager() {
        const auto question = xcb_get_selection_owner(connection_, selection_);
        const Owned<xcb_get_selection_owner_reply_t> reply(
            xcb_get_selection_owner_reply(connection_, question, nullptr));
        manager_ = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
        if (manager_ != XCB_WINDOW_NONE) {
            listen(manager_, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
        }
    }

    [[nodiscard]] std::string property() const {
        if (manager_ == XCB_WINDOW_NONE) {
            return {};
        }
        const auto question = xcb_get_property(connection_, 0, manager_, settings_, XCB_ATOM_ANY, 0, largestProperty);
        const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, question, nullptr));
        if (!reply || reply->format != 8) {
            return {};
        }
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }

    enum class Change { none, settings, manager };

    /// What the events that have come mean together.
    Change takeEvents() {
        auto change = Change::none;
        while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
            change = std::max(change, meaning(*event));
        }
        return change;
    }

private:
    template <typename Event>
    static Event as(const xcb_generic_event_t& event) {
        Event result;
        std::memcpy(&result, &event, sizeof result);
        return result;
    }

    [[nodiscard]] Change meaning(const xcb_generic_event_t& event) const {
        constexpr std::uint8_t sentFlag = 0x80;
        switch (event.response_type & ~sentFlag) {
        case XCB_PROPERTY_NOTIFY:
            return as<xcb_property_notify_event_t>(event).atom == settings_ ? Change::settings : Change::none;
        case XCB_DESTROY_NOTIFY:
            return as<xcb_destroy_notify_event_t>(event).window == manager_ ? Change::manager : Change::none;
        case XCB_CLIENT_MESSAGE: {
            const auto message = as<xcb_client_message_event_t>(event);
            return message.type == managerMessage_ && message.data.data32[1] == selection_ ? Change::manager
                                                                                           : Change::none;
        }
        default:
            return Change::none;
        }
    }

    [[nodiscard]] xcb_atom_t atom(const std::string& name) const {
        const auto question = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, question, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    void listen(xcb_window_t window, std::uint32_t events) const {
        xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &events);
        xcb_flush(connection_);
    }

    int screen_ = 0;
    xcb_connection_t* const connection_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    xcb_window_t manager_ = XCB_WINDOW_NONE;
    xcb_atom_t selection_ = XCB_ATOM_NONE;
    xcb_atom_t settings_ = XCB_ATOM_NONE;
    xcb_atom_t managerMessage_ = XCB_ATOM_NONE;
};

XSettings::XSettings(QObject* parent) : QObject(parent), display_(std::make_unique<Display>()) {
    if (!display_->isOpen()) {
        return;
    }
    auto* const events = new QSocketNotifier(display_->descriptor(), QSocketNotifier::Read, this);
    connect(events, &QSocketNotifier::activated, this, [this, events] {
        takeEvents();
        // The toolkit's own connection ends as well, and the program with it.
        events->setEnabled(display_->isOpen());
    });
    display_->findManager();
    read();
    // Waiting for the answers has taken in events as well, of which the descriptor says nothing more.
    takeEvents();
}

XSettings::~XSettings() = default;

void XSettings::takeEvents() {
    while (true) {
        switch (display_->takeEvents()) {
        case Display::Change::none:
            return;
        case Display::Change::manager:
            display_->findManager();
            [[fallthrough]];
        case Display::Change::settings:
            read();
        }
    }
}

void XSettings::read() {
    auto name = QString::fromStdString(textSetting(display_->property(), "Net/ThemeName").value_or(""));
    if (std::exchange(themeName_, name) != name) {
        Q_EMIT themeNameChanged();
    }
}

} // namespace quorvale::platform::desktop
