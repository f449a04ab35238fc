#include "platform/desktop/windows/LayerShell.hpp"

#include <QCoreApplication>
#include <QLibrary>

namespace quorvale::platform::desktop {

namespace {

using Stand = bool (*)(QWindow&, const LayerPlace&);

/// Null where there is no such library in the bundle, or nothing that it stands on.
Stand load() {
    QLibrary library(QCoreApplication::applicationDirPath() +
                     QStringLiteral("/../PlugIns/" QUORVALE_LAYER_SHELL_PLUGIN));
    return reinterpret_cast<Stand>(library.resolve("quorvaleStandOnLayer"));
}

} // namespace

bool standOnLayer(QWindow& window, const LayerPlace& place) {
    static const auto stand = load();
    return stand && stand(window, place);
}

} // namespace quorvale::platform::desktop
