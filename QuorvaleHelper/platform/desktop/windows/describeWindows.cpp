#include "platform/desktop/windows/describeWindows.hpp"

#include <QAccessibleWidget>
#include <QWidget>

namespace quorvale::platform::desktop {

void describeWindows() {
    [[maybe_unused]] static const bool once = [] {
        // Asked with the names of an object's class and its bases, from the most derived on.
        QAccessible::installFactory([](const QString& className, QObject* object) -> QAccessibleInterface* {
            if (className != QLatin1String("QWidget")) {
                return nullptr;
            }
            auto* const widget = static_cast<QWidget*>(object);
            if (!widget->isWindow() && !widget->layout()) {
                return nullptr;
            }
            return new QAccessibleWidget(widget, widget->isWindow() ? QAccessible::Window : QAccessible::Grouping);
        });
        return true;
    }();
}

} // namespace quorvale::platform::desktop
