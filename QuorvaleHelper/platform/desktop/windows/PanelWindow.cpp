#include "platform/desktop/windows/PanelWindow.hpp"

#include "platform/desktop/windows/InputGrab.hpp"
#include "platform/desktop/windows/PanelPlacement.hpp"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QTimerEvent>
#include <QVBoxLayout>
#include <QWindow>

namespace quorvale::platform::desktop {

namespace {

constexpr qreal cornerRadius = 8;
constexpr int borderWidth = 1;
constexpr int grabInterval = 20;  // milliseconds
constexpr qint64 sameClick = 300; // milliseconds
constexpr qint64 lateNews = 200;  // milliseconds

QPainterPath outline(const QRectF& rect, qreal radius) {
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

Qt::WindowFlags flagsFor(PanelWindow::Presentation presentation) {
    return (presentation == PanelWindow::Presentation::AnchoredPopup ? Qt::Popup : Qt::Window) |
           Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
}

} // namespace

PanelWindow::PanelWindow(Presentation presentation)
    : QWidget(nullptr, flagsFor(presentation)), presentation_(presentation) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(borderWidth, borderWidth, borderWidth, borderWidth);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void PanelWindow::setContent(std::unique_ptr<QWidget> content) {
    delete layout()->takeAt(0);
    layout()->addWidget(content.release());
}

void PanelWindow::open(QPoint anchor) {
    anchor_ = anchor;
    // No control of it has the focus of the keyboard until the user asks for one; the first Tab goes to the first.
    if (const auto* const content = layout()->itemAt(0)) {
        content->widget()->setFocus();
    }
    layout()->activate();
    place();
    show();
    if (presentation_ == Presentation::PlacedByCompositor) {
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
    if (event->type() == QEvent::WindowDeactivate && presentation_ == Presentation::PlacedByCompositor && isVisible()) {
        sinceFocusLoss_.start();
        dismiss();
    }
    return QWidget::event(event);
}

void PanelWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    sinceShown_.start();
    // The panel under the icon may hold the pointer until the button is up again, and nobody tells when.
    if (presentation_ == Presentation::AnchoredPopup) {
        grabTimer_.start(grabInterval, this);
    }
    Q_EMIT visibilityChanged(true);
}

void PanelWindow::hideEvent(QHideEvent* event) {
    grabTimer_.stop();
    pressedOutside_ = false;
    if (presentation_ == Presentation::AnchoredPopup) {
        releaseInput(*windowHandle());
    }
    QWidget::hideEvent(event);
    Q_EMIT visibilityChanged(false);
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    // Qt waits a tenth of a second before it believes that the program has lost the focus, when this window was last
    // hidden, and then closes all popups, also one that was opened meanwhile.
    if (presentation_ == Presentation::AnchoredPopup && !sinceShown_.hasExpired(lateNews)) {
        event->ignore();
    }
}

void PanelWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (presentation_ == Presentation::AnchoredPopup) {
        // Without a compositing manager the transparent corners would be black.
        setMask(QRegion(outline(rect(), cornerRadius - 1).toFillPolygon().toPolygon()));
        if (isVisible()) {
            place();
        }
    }
}

void PanelWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
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
        return;
    }
    QWidget::keyPressEvent(event);
}

void PanelWindow::mousePressEvent(QMouseEvent* event) {
    pressedOutside_ = !rect().contains(event->position().toPoint());
}

void PanelWindow::mouseReleaseEvent(QMouseEvent* event) {
    // Only now: a panel that saw the button go up over its icon would take that for a click and open the window again.
    if (pressedOutside_ && event->buttons() == Qt::NoButton) {
        dismiss();
    }
}

void PanelWindow::timerEvent(QTimerEvent* event) {
    if (event->timerId() != grabTimer_.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    if (grabInput(*windowHandle())) {
        grabTimer_.stop();
    }
}

void PanelWindow::place() {
    if (presentation_ != Presentation::AnchoredPopup) {
        return;
    }
    const auto* const found = QGuiApplication::screenAt(anchor_);
    const auto* const screen = found ? found : QGuiApplication::primaryScreen();
    move(panelTopLeft(anchor_, sizeHint(),
                      {screen->geometry(), screen->availableGeometry(), screen->devicePixelRatio()}));
}

} // namespace quorvale::platform::desktop
