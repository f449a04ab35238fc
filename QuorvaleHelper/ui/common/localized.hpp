#pragma once

#include <QString>

namespace quorvale::ui::common {

/// Looks `key` up in the application's one table of texts; the key itself where it has no entry.
QString localized(const char* key);

} // namespace quorvale::ui::common
