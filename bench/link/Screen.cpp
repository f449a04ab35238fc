#include "link/Screen.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>

namespace quorvale::bench {

void Screen::Free::operator()(void* memory) const {
    std::free(memory);
}

void Screen::Disconnect::operator()(xcb_connection_t* connection) const {
    xcb_disconnect(connection);
}

Screen::Screen() : connection_(xcb_connect(nullptr, nullptr)) {
    auto* const connection = connection_.get();
    if (xcb_connection_has_error(connection) != 0) {
        std::fputs("there is no X server\n", stderr);
        std::_Exit(EXIT_FAILURE);
    }
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    damageEvent_ = xcb_get_extension_data(connection, &xcb_damage_id)->first_event + XCB_DAMAGE_NOTIFY;
    const std::unique_ptr<xcb_damage_query_version_reply_t, Free> version(
        xcb_damage_query_version_reply(connection, xcb_damage_query_version(connection, 1, 1), nullptr));
    // Raw: one event each time that something is painted, also where something was painted before.
    xcb_damage_create(connection, xcb_generate_id(connection), screen_->root, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    xcb_flush(connection);
}

std::optional<Place> Screen::change(const std::vector<std::uint32_t>& before) const {
    const auto now = pixels();
    std::vector<Place> changed;
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (now[i] != before[i]) {
            const auto width = static_cast<std::size_t>(screen_->width_in_pixels);
            changed.push_back({static_cast<std::int16_t>(i % width), static_cast<std::int16_t>(i / width)});
        }
    }
    return changed.empty() ? std::nullopt : std::optional(changed[changed.size() / 2]);
}

std::vector<std::uint32_t> Screen::pixels() const {
    return read({0, 0}, screen_->width_in_pixels, screen_->height_in_pixels);
}

std::uint32_t Screen::pixel(Place place) const {
    return read(place, 1, 1).front();
}

void Screen::waitForPaint(Place place) {
    while (true) {
        const Event event(xcb_wait_for_event(connection_.get()));
        if (paint(*event, place) != nullptr) {
            return;
        }
    }
}

Paints Screen::countPaints(Place place, std::chrono::milliseconds quiet) {
    Paints paints;
    while (true) {
        if (const Event event(xcb_poll_for_event(connection_.get())); event) {
            if (const auto* const painted = paint(*event, place)) {
                paints.first = paints.count == 0 ? painted->timestamp : paints.first;
                paints.last = painted->timestamp;
                ++paints.count;
            }
            continue;
        }
        pollfd file{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
        if (::poll(&file, 1, static_cast<int>(quiet.count())) == 0) {
            return paints;
        }
    }
}

const xcb_damage_notify_event_t* Screen::paint(const xcb_generic_event_t& event, Place place) const {
    if ((event.response_type & 0x7f) != damageEvent_) {
        return nullptr;
    }
    const auto& painted = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
    const auto& area = painted.area;
    const auto isInside =
        place.x >= area.x && place.x < area.x + area.width && place.y >= area.y && place.y < area.y + area.height;
    return isInside ? &painted : nullptr;
}

std::vector<std::uint32_t> Screen::read(Place place, std::uint16_t width, std::uint16_t height) const {
    auto* const connection = connection_.get();
    const std::unique_ptr<xcb_get_image_reply_t, Free> image(xcb_get_image_reply(
        connection,
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root, place.x, place.y, width, height, ~0U),
        nullptr));
    std::vector<std::uint32_t> result(static_cast<std::size_t>(width) * height);
    std::memcpy(result.data(), xcb_get_image_data(image.get()), result.size() * sizeof(std::uint32_t));
    return result;
}

} // namespace quorvale::bench
