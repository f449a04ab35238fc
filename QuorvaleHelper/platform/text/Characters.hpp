#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorvale::platform::text {

/// The user-perceived character at `position`, counted from 0: an extended grapheme cluster of Unicode Standard
/// Annex #29, in the version of the installed utf8proc. None where the text has no more than `position` characters.
/// One pass that ends with the character. Any thread.
///
/// Bytes that are not well-formed UTF-8 are read and given as U+FFFD, one for each maximal subpart of an ill-formed
/// subsequence (Unicode Standard, section 3.9, "U+FFFD Substitution of Maximal Subparts"). So what is given is always
/// well-formed, and a truncated sequence is one character, to which combining marks after it belong.
std::optional<std::string> characterAt(std::size_t position, std::string_view text);

/// How many bytes the first such character of `text` has; 0 of an empty text. Any thread.
std::size_t characterLength(std::string_view text);

/// A Unicode scalar value and the bytes that it was read from.
struct Scalar {
    char32_t value;
    std::size_t length;
};

/// The scalar value of UTF-8 that begins at `offset`, which is before the text's end. U+FFFD for a maximal subpart of
/// an ill-formed subsequence, as above. Any thread.
Scalar scalarAt(std::string_view text, std::size_t offset);

/// Whether a character shows nothing where it isn't supported: Default_Ignorable_Code_Point of Unicode Standard Annex
/// #44. Any thread.
bool isDefaultIgnorable(char32_t character);

} // namespace quorvale::platform::text
