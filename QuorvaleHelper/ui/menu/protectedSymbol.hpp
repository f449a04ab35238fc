#pragma once

#include <QIcon>

namespace quorvale::ui::menu {

struct ProtectedLook;

/// The indicator's box in small, around its symbol: to be told from the other on a menu of any colour.
QIcon protectedSymbol(const ProtectedLook& look);

} // namespace quorvale::ui::menu
