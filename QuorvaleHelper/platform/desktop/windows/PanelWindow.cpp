#include "platform/desktop/windows/PanelWindow.hpp"

#include "platform/desktop/windows/LayerShell.hpp"
#include "platform/desktop/windows/PanelPlacement.hpp"
#include "platform/desktop/windows/X11.hpp"
#include "platform/desktop/windows/describeWindows.hpp"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>
#include <QWindow>

namespace quorvale::platform::desktop {

namespace {

constexpr qreal cornerRadius = 8;
constexpr int borderWidth = 1;
/// How far from its middle an icon reaches.
constexpr int iconReach = 32;
/// No protocol tells which click a panel speaks of when it asks for the window, nor that it won't.
constexpr qint64 sameClick = 300; // milliseconds

QPainterPath outline(const QRectF& rect, qreal radius) {
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

Qt::WindowFlags flagsFor(PanelWindow::Presentation presentation) {
    // Not a popup of Qt's: assistive technologies would see nothing of it. Not the window manager's either: it would
    // move it, or keep the keyboard from a window that no click of its own asked for.
    return (presentation == PanelWindow::Presentation::AnchoredPopup ? Qt::Tool | Qt::X11BypassWindowManagerHint
                                                                     : Qt::Window) |
           Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
}

} // namespace

PanelWindow::PanelWindow(Presentation presentation)
    : QWidget(nullptr, flagsFor(presentation)), presentation_(presentation) {
    describeWindows();
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(borderWidth, borderWidth, borderWidth, borderWidth);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(&grab_, &InputGrab::clickedElsewhere, this, &PanelWindow::dismiss);
    connect(&backdrop_, &LayerBackdrop::pressed, this, &PanelWindow::dismiss);
    connect(&grab_, &InputGrab::pressedTooEarly, this, [this](QPoint place) {
        // Of a click on the icon the panel tells.
        if (!geometry().contains(place) && (place - anchor_).manhattanLength() > iconReach) {
            dismiss();
        }
    });
}

void PanelWindow::setContent(std::unique_ptr<QWidget> content) {
    delete layout()->takeAt(0);
    layout()->addWidget(content.release());
}

void PanelWindow::open(QPoint anchor) {
    anchor_ = anchor;
    layout()->activate();
    place();
    show();
    if (presentation_ == Presentation::AnchoredPopup) {
        grab_.take();
    } else {
        activateWindow();
    }
}

void PanelWindow::dismiss() {
    hide();
}

bool PanelWindow::wasJustDismissedByFocusLoss() const {
    return sinceFocusLoss_.isValid() && !sinceFocusLoss_.hasExpired(sameClick);
}

bool PanelWindow::event(QEvent* event) {
    // A window that is being hidden loses the focus by that, not to anything else. Whoever holds the keyboard has lost
    // nothing: Qt may tell a window late of what it lost when it was hidden, after it was opened again.
    if (event->type() == QEvent::WindowDeactivate && !isHidden() && !grab_.hasKeyboard()) {
        sinceFocusLoss_.start();
        dismiss();
    }
    return QWidget::event(event);
}

void PanelWindow::showEvent(QShowEvent* event) {
    // What compositing managers go by. Qt forgets it where there is no window of the server's yet.
    setAttribute(Qt::WA_X11NetWmWindowTypeDropDownMenu);
    QWidget::showEvent(event);
    Q_EMIT visibilityChanged(true);
}

void PanelWindow::hideEvent(QHideEvent* event) {
    grab_.release();
    backdrop_.remove();
    QWidget::hideEvent(event);
    Q_EMIT visibilityChanged(false);
}

void PanelWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (presentation_ == Presentation::AnchoredPopup) {
        // Without a compositing manager the corners would be there.
        setMask(QRegion(outline(rect(), cornerRadius - 1).toFillPolygon().toPolygon()));
        if (isVisible()) {
            place();
        }
    }
}

void PanelWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!x11::isComposited()) {
        // What is transparent would be black.
        painter.fillRect(rect(), palette().window());
    }
    auto border = palette().color(QPalette::WindowText);
    border.setAlphaF(0.2F);
    constexpr auto inset = borderWidth / 2.0;
    const auto path = outline(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius - inset);
    painter.fillPath(path, palette().window());
    painter.strokePath(path, QPen(border, borderWidth));
}

void PanelWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        dismiss();
    } else if (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up) {
        focusNextPrevChild(event->key() == Qt::Key_Down);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void PanelWindow::place() {
    const auto screen = ScreenGeometry::at(anchor_);
    if (presentation_ == Presentation::PlacedByCompositor) {
        // Where it stands is settled when it is shown.
        if (isHidden()) {
            winId();
            if (standOnLayer(*windowHandle(), layerPlace(anchor_, sizeHint(), screen.geometry, layoutDirection()))) {
                backdrop_.raise();
            }
        }
        return;
    }
    move(panelTopLeft(anchor_, sizeHint(), screen));
}

} // namespace quorvale::platform::desktop
