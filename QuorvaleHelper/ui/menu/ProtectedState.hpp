#pragma once

#include "platform/desktop/appearance/SymbolImage.hpp"

#include <QColor>
#include <QLabel>
#include <QRectF>
#include <QString>

namespace quorvale::ui::menu {

/// One of the indicator's two looks.
struct ProtectedLook {
    /// The system symbol, embedded as a resource.
    QString symbol;
    /// What the application's table of texts has for it, or the key itself.
    QString text;
    QColor boxColor;

    static ProtectedLook of(bool isProtected);
    bool operator==(const ProtectedLook&) const = default;
};

/// Where the parts of the indicator are, in points. The icon leads, in the direction in which the language is read.
struct ProtectedGeometry {
    QRectF box;
    QRectF icon;
    QRectF text;

    static ProtectedGeometry of(const QSizeF& view, double iconSize, Qt::LayoutDirection direction);
};

/// The coloured box that tells whether protection is on. It is a text to look at, not a control.
class ProtectedState final : public QLabel {
    Q_OBJECT

public:
    /// `iconSize` is the edge length of the icon, in points.
    ProtectedState(bool isProtected, double iconSize, QWidget* parent = nullptr);

    /// Main thread. Assistive technologies hear of a new text.
    void setProtected(bool isProtected);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void announce();

    const double iconSize_;
    ProtectedLook look_;
    platform::desktop::SymbolImage symbol_;
};

} // namespace quorvale::ui::menu
