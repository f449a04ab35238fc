#include "ui/logs/DoneButton.hpp"

#include "ui/common/FocusRing.hpp"

#include <QPainter>
#include <QStyleOptionButton>

namespace quorvale::ui::logs {

namespace {

constexpr double cornerRadius = 4;

} // namespace

DoneButton::DoneButton(const QString& label) : QPushButton(label) {
    setAutoDefault(true);
}

void DoneButton::paintEvent(QPaintEvent* event) {
    QPushButton::paintEvent(event);
    QStyleOptionButton option;
    initStyleOption(&option);
    if (option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        common::paintFocusRing(painter, rect(), cornerRadius, palette().color(QPalette::Button),
                               palette().color(QPalette::Window));
    }
}

} // namespace quorvale::ui::logs
