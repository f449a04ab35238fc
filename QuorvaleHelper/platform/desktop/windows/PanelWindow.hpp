#pragma once

#include "platform/desktop/windows/InputGrab.hpp"
#include "platform/desktop/windows/LayerBackdrop.hpp"

#include <QElapsedTimer>
#include <QPoint>
#include <QWidget>

#include <memory>

namespace quorvale::platform::desktop {

/// The undecorated window under a status icon, as large as its content. It goes away when the user presses Escape
/// or turns to something else.
class PanelWindow final : public QWidget {
    Q_OBJECT

public:
    enum class Presentation {
        /// X11: shown at the icon, holding pointer and keyboard, so that a click anywhere else dismisses it.
        AnchoredPopup,
        /// Wayland, where a client can't place its windows: on a layer, dismissed by a click elsewhere, or else an
        /// ordinary window; dismissed when it loses the focus.
        PlacedByCompositor,
    };

    explicit PanelWindow(Presentation presentation);

    void setContent(std::unique_ptr<QWidget> content);

    /// `anchor` is where the icon is, in logical pixels of the whole desktop.
    void open(QPoint anchor);
    void dismiss();

    /// Whether the window was dismissed so shortly ago that an activation of the icon can come from the very click
    /// that dismissed it.
    [[nodiscard]] bool wasJustDismissedByFocusLoss() const;

Q_SIGNALS:
    void visibilityChanged(bool isVisible);

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void place();

    const Presentation presentation_;
    QPoint anchor_;
    InputGrab grab_{*this};
    LayerBackdrop backdrop_;
    QElapsedTimer sinceFocusLoss_;
};

} // namespace quorvale::platform::desktop
