#include "platform/desktop/windows/LayerShell.hpp"

#include <QCoreApplication>
#include <QLibrary>

namespace quorvale::platform::desktop {

namespace {

/// Null where there is no such library in the bundle, or nothing that it stands on.
template <typename Function>
Function* load(const char* name) {
    QLibrary library(QCoreApplication::applicationDirPath() +
                     QStringLiteral("/../PlugIns/" QUORVALE_LAYER_SHELL_PLUGIN));
    return reinterpret_cast<Function*>(library.resolve(name));
}

} // namespace

bool standOnLayer(QWindow& window, const LayerPlace& place) {
    static auto* const stand = load<bool(QWindow&, const LayerPlace&)>("quorvaleStandOnLayer");
    return stand && stand(window, place);
}

bool coverOnLayer(QWindow& window) {
    static auto* const cover = load<bool(QWindow&)>("quorvaleCoverOnLayer");
    return cover && cover(window);
}

} // namespace quorvale::platform::desktop
