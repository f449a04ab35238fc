#include "ui/menu/MenuButton.hpp"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace quorvale::ui::menu {

MenuButton::MenuButton(QString title, std::function<void()> action, QWidget* parent)
    : QAbstractButton(parent), title_(std::move(title)) {
    // Not the button's text, in which an ampersand would make a shortcut of the next letter.
    setAccessibleName(title_);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, std::move(action));
}

QSize MenuButton::sizeHint() const {
    return QSize(fontMetrics().horizontalAdvance(title_), fontMetrics().height())
        .grownBy({padding, padding, padding, padding});
}

QSize MenuButton::minimumSizeHint() const {
    return {2 * padding, sizeHint().height()};
}

void MenuButton::enterEvent(QEnterEvent* event) {
    setHovering(true);
    QAbstractButton::enterEvent(event);
}

void MenuButton::leaveEvent(QEvent* event) {
    setHovering(false);
    QAbstractButton::leaveEvent(event);
}

// A window that goes away under the pointer doesn't tell its buttons that the pointer left.
void MenuButton::hideEvent(QHideEvent* event) {
    setHovering(false);
    QAbstractButton::hideEvent(event);
}

// While it is pressed, a button is not told that the pointer leaves or comes back.
void MenuButton::mouseMoveEvent(QMouseEvent* event) {
    setHovering(rect().contains(event->position().toPoint()));
    QAbstractButton::mouseMoveEvent(event);
}

void MenuButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) {
            click();
        }
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void MenuButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    style_.paint(painter, rect(), title_, layoutDirection(), palette(),
                 hasFocus() ? MenuButtonStyle::Focus::Keyboard : MenuButtonStyle::Focus::None);
}

void MenuButton::setHovering(bool hovering) {
    if (style_.hovering() != hovering) {
        style_.setHovering(hovering);
        update();
    }
}

} // namespace quorvale::ui::menu
