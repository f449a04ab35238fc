#include "support/EventWriter.hpp"

#include <chrono>
#include <iostream>

namespace quorvale::simulator {

void EventWriter::write(const QStringList& words) {
    auto event = words.join(u' ');
    event.replace(u'\\', QStringLiteral("\\\\")).replace(u'\n', QStringLiteral("\\n"));
    if (timestamps_ == Timestamps::On) {
        using namespace std::chrono;
        std::cout << duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count() << ' ';
    }
    std::cout << event.toStdString() << '\n' << std::flush;
    if (observer_) {
        observer_(event);
    }
}

} // namespace quorvale::simulator
