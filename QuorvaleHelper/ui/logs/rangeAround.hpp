#pragma once

#include <QString>
#include <QTextBoundaryFinder>

#include <utility>

namespace quorvale::ui::logs {

/// What lies around a place in a text, from a boundary to the next, by Unicode Standard Annex #29.
std::pair<int, int> rangeAround(const QString& text, int at, QTextBoundaryFinder::BoundaryType boundary);

} // namespace quorvale::ui::logs
