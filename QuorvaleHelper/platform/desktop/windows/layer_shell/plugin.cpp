#include "platform/desktop/windows/PanelPlacement.hpp"

#include <QGuiApplication>
#include <QWindow>

#include <LayerShellQt/window.h>
#include <cstdint>
#include <cstring>
#include <memory>
#include <wayland-client-core.h>
#include <wayland-client-protocol.h>

namespace quorvale::platform::desktop {

namespace {

using LayerWindow = LayerShellQt::Window;

void onGlobal(void* isOffered, wl_registry* /*registry*/, std::uint32_t /*name*/, const char* interface,
              std::uint32_t /*version*/) {
    if (std::strcmp(interface, "zwlr_layer_shell_v1") == 0) {
        *static_cast<bool*>(isOffered) = true;
    }
}

void onGlobalRemoved(void* /*isOffered*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}

/// LayerShellQt would leave a window without any place on screen where the compositor doesn't offer the protocol.
bool isOffered() {
    const auto* const wayland = qGuiApp->nativeInterface<QNativeInterface::QWaylandApplication>();
    auto* const display = wayland ? wayland->display() : nullptr;
    if (!display) {
        return false;
    }
    // What the toolkit's own queue holds is the toolkit's.
    const std::unique_ptr<wl_event_queue, decltype(&wl_event_queue_destroy)> queue(wl_display_create_queue(display),
                                                                                   wl_event_queue_destroy);
    const std::unique_ptr<void, decltype(&wl_proxy_wrapper_destroy)> wrapper(wl_proxy_create_wrapper(display),
                                                                             wl_proxy_wrapper_destroy);
    wl_proxy_set_queue(static_cast<wl_proxy*>(wrapper.get()), queue.get());
    const std::unique_ptr<wl_registry, decltype(&wl_registry_destroy)> registry(
        wl_display_get_registry(static_cast<wl_display*>(wrapper.get())), wl_registry_destroy);
    bool isOffered = false;
    constexpr wl_registry_listener listener{onGlobal, onGlobalRemoved};
    wl_registry_add_listener(registry.get(), &listener, &isOffered);
    wl_display_roundtrip_queue(display, queue.get());
    return isOffered;
}

LayerWindow::Anchors anchors(Qt::Edges edges) {
    LayerWindow::Anchors anchors;
    anchors.setFlag(LayerWindow::AnchorTop, edges.testFlag(Qt::TopEdge));
    anchors.setFlag(LayerWindow::AnchorBottom, edges.testFlag(Qt::BottomEdge));
    anchors.setFlag(LayerWindow::AnchorLeft, edges.testFlag(Qt::LeftEdge));
    anchors.setFlag(LayerWindow::AnchorRight, edges.testFlag(Qt::RightEdge));
    return anchors;
}

/// Null if it is not offered.
LayerWindow* layerWindow(QWindow& window) {
    static const auto offered = isOffered();
    if (!offered) {
        return nullptr;
    }
    auto* const layer = LayerWindow::get(&window);
    layer->setCloseOnDismissed(false);
    return layer;
}

} // namespace

/// As `standOnLayer`.
extern "C" Q_DECL_EXPORT bool quorvaleStandOnLayer(QWindow& window, const LayerPlace& place) {
    auto* const layer = layerWindow(window);
    if (!layer) {
        return false;
    }
    layer->setScope(QStringLiteral("menu-bar-window"));
    // The order within one layer is the compositor's affair.
    layer->setLayer(LayerWindow::LayerOverlay);
    layer->setKeyboardInteractivity(LayerWindow::KeyboardInteractivityOnDemand);
    layer->setScreenConfiguration(LayerWindow::ScreenFromCompositor);
    layer->setAnchors(anchors(place.edges));
    layer->setMargins(place.margins);
    return true;
}

/// As `coverOnLayer`.
extern "C" Q_DECL_EXPORT bool quorvaleCoverOnLayer(QWindow& window) {
    auto* const layer = layerWindow(window);
    if (!layer) {
        return false;
    }
    layer->setScope(QStringLiteral("menu-bar-backdrop"));
    layer->setLayer(LayerWindow::LayerTop);
    layer->setKeyboardInteractivity(LayerWindow::KeyboardInteractivityNone);
    layer->setAnchors(anchors(Qt::TopEdge | Qt::BottomEdge | Qt::LeftEdge | Qt::RightEdge));
    return true;
}

} // namespace quorvale::platform::desktop
