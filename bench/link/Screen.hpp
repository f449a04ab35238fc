#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>
#include <xcb/damage.h>
#include <xcb/xcb.h>

namespace quorvale::bench {

struct Place {
    std::int16_t x;
    std::int16_t y;
};

/// What was painted at a place, by the X server's clock.
struct Paints {
    std::size_t count = 0;
    std::uint32_t first = 0; ///< milliseconds
    std::uint32_t last = 0;

    [[nodiscard]] double aSecond() const {
        return count < 2 ? 0 : 1e3 * static_cast<double>(count - 1) / std::max(1U, last - first);
    }
};

/// What the X server shows, and each time that something is painted on it.
class Screen {
public:
    Screen();

    /// Where the screen is another than in `before`, if it is: a place amid what changed.
    [[nodiscard]] std::optional<Place> change(const std::vector<std::uint32_t>& before) const;

    /// All pixels, line by line.
    [[nodiscard]] std::vector<std::uint32_t> pixels() const;

    [[nodiscard]] std::uint32_t pixel(Place place) const;

    /// Waits until `place` is painted.
    void waitForPaint(Place place);

    /// Counts the paints of `place` until nothing on the screen was painted for so long.
    Paints countPaints(Place place, std::chrono::milliseconds quiet);

private:
    struct Free {
        void operator()(void* memory) const;
    };

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const;
    };

    using Event = std::unique_ptr<xcb_generic_event_t, Free>;

    /// The event as a paint of `place`, if it is one.
    [[nodiscard]] const xcb_damage_notify_event_t* paint(const xcb_generic_event_t& event, Place place) const;
    [[nodiscard]] std::vector<std::uint32_t> read(Place place, std::uint16_t width, std::uint16_t height) const;

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    const xcb_screen_t* screen_;
    std::uint8_t damageEvent_;
};

} // namespace quorvale::bench
