#pragma once

#include <QColor>
#include <QPalette>
#include <QRectF>
#include <QString>

class QPainter;

namespace quorvale::ui::menu {

/// The look of a menu button: its text, with a highlight behind it while the pointer is over it. That a button is
/// pressed makes no difference.
class MenuButtonStyle {
public:
    struct Look {
        QColor text;
        /// Transparent without a highlight.
        QColor background;
    };

    enum class Focus { None, Keyboard };

    static Look look(bool hovering, const QPalette& palette);

    [[nodiscard]] bool hovering() const { return hovering_; }

    void setHovering(bool hovering) { hovering_ = hovering; }

    /// Paints a button with `label` into `frame`, in points; the label begins where lines of `direction` begin. The
    /// focus of the keyboard shows as a ring.
    void paint(QPainter& painter, const QRectF& frame, const QString& label, Qt::LayoutDirection direction,
               const QPalette& palette, Focus focus) const;

private:
    bool hovering_ = false;
};

} // namespace quorvale::ui::menu
