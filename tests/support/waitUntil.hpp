#pragma once

#include <QtCore/qtestsupport_core.h>

#include <chrono>
#include <functional>

namespace quorvale::tests {

/// Far beyond what a loaded machine needs, so that only a real fault reaches it.
inline constexpr std::chrono::seconds defaultDeadline{20};

/// Runs the calling thread's event loop until `condition` holds; false if it doesn't within `deadline`.
/// `condition` is called on the calling thread, at once and every few milliseconds from then on.
[[nodiscard]] inline bool waitUntil(const std::function<bool()>& condition,
                                    std::chrono::milliseconds deadline = defaultDeadline) {
    return QTest::qWaitFor(condition, static_cast<int>(deadline.count()));
}

} // namespace quorvale::tests
