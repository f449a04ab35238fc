#include "ui/logs/rangeAround.hpp"

namespace quorvale::ui::logs {

std::pair<int, int> rangeAround(const QString& text, int at, QTextBoundaryFinder::BoundaryType boundary) {
    QTextBoundaryFinder finder(boundary, text);
    finder.setPosition(at);
    const auto start = finder.isAtBoundary() ? at : static_cast<int>(finder.toPreviousBoundary());
    finder.setPosition(at);
    const auto end = finder.toNextBoundary();
    return {start, end < 0 ? static_cast<int>(text.size()) : static_cast<int>(end)};
}

} // namespace quorvale::ui::logs
