#pragma once

#include <QString>

#include <string_view>

namespace quorvale::ui::logs {

/// What a person is shown of a piece of a line. Nothing in it is hidden or moves what stands around it: control
/// characters but the tabulator appear as their pictures (Unicode's Control Pictures); controls of direction,
/// separators of lines, characters without a shape (Unicode's Default_Ignorable_Code_Point) and whatever is not
/// well-formed UTF-8 as U+FFFD. Only zero-width joiners and variation selectors stay, which shape the characters around
/// them.
QString displayText(std::string_view utf8);

} // namespace quorvale::ui::logs
