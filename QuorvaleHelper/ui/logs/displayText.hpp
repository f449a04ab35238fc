#pragma once

#include <QString>

#include <cstddef>
#include <string_view>

namespace quorvale::ui::logs {

/// What a person is shown of a piece of a line. Nothing in it is hidden or moves what stands around it: control
/// characters but the tabulator appear as their pictures (Unicode's Control Pictures); controls of direction,
/// separators of lines, characters without a shape (Unicode's Default_Ignorable_Code_Point) and whatever is not
/// well-formed UTF-8 as U+FFFD. What shapes the characters around it stays: zero-width joiners, variation selectors,
/// soft hyphens, and the tags that make a flag another one.
QString displayText(std::string_view utf8);

/// How many UTF-16 units of that show the first `bytes` bytes. A character counts once all of it is among them.
int unitsShowing(std::string_view utf8, std::size_t bytes);

/// How many bytes the first `units` of those units show; of a character that they cut, none.
std::size_t bytesShownIn(std::string_view utf8, int units);

} // namespace quorvale::ui::logs
