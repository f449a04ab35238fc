#include "ui/common/localized.hpp"

#include <QCoreApplication>

namespace quorvale::ui::common {

QString localized(const char* key) {
    return QCoreApplication::translate("", key);
}

} // namespace quorvale::ui::common
