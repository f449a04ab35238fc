#pragma once

#include "ui/menu/MenuButtonStyle.hpp"

#include <QAbstractButton>
#include <QString>

#include <functional>

namespace quorvale::ui::menu {

/// A text button as wide as its column. It takes the keyboard's focus from Tab, not from a click.
class MenuButton final : public QAbstractButton {
    Q_OBJECT

public:
    /// Around the text, in points.
    static constexpr int padding = 4;

    /// `title` is shown as it is. `action` runs once for each activation, by pointer, keyboard or shortcut.
    MenuButton(QString title, std::function<void()> action, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setHovering(bool hovering);

    const QString title_;
    MenuButtonStyle style_;
};

} // namespace quorvale::ui::menu
