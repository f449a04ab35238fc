#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace quorvale::platform::bundle {

/// The entries of a property list's top-level dictionary whose values are text, by key.
using TextEntries = std::map<std::string, std::string, std::less<>>;

/// In bytes; a binary one, which says more with less, may have a quarter of it.
inline constexpr std::size_t largestPropertyList = 64UL * 1024;

/// Reads an XML or binary property list. No entries when it is broken, too large or has no dictionary at its top.
TextEntries textEntriesOfPropertyList(std::string_view contents);

} // namespace quorvale::platform::bundle
