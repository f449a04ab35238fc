#include "support/waitUntil.hpp"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace quorvale::tests {

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds deadline) {
    if (condition()) {
        return true;
    }
    const QDeadlineTimer limit(deadline);
    bool held = false;
    // A loop of its own rather than processEvents(): objects that are to be deleted later go away in it.
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        held = condition();
        if (held || limit.hasExpired()) {
            loop.quit();
        }
    });
    poll.start(std::chrono::milliseconds(2));
    loop.exec();
    return held;
}

} // namespace quorvale::tests
