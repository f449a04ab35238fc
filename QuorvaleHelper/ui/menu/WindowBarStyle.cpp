#include "ui/menu/WindowBarStyle.hpp"

#include "platform/observable/objectDidChange.hpp"
#include "ui/menu/MenuButton.hpp"
#include "ui/menu/ProtectedState.hpp"

#include <QPainter>
#include <QVBoxLayout>

#include <utility>

namespace quorvale::ui::menu {

namespace {

constexpr int padding = 5;
constexpr int spacing = 5;

/// A thin line in a trace of the text's colour.
class Divider final : public QWidget {
public:
    Divider() { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        auto color = palette().color(QPalette::WindowText);
        color.setAlphaF(0.15F);
        QPainter(this).fillRect(rect(), color);
    }
};

} // namespace

WindowBarStyle::WindowBarStyle(status::StatusManager& statusManager, platform::queue::MainQueue& mainQueue,
                               double iconSize, Actions actions) {
    indicator_ = new ProtectedState(statusManager.status(), iconSize);
    auto* const settings =
        new MenuButton(QStringLiteral("Settings..."), [dismiss = std::move(actions.dismiss),
                                                       openMainApplication = std::move(actions.openMainApplication)] {
            dismiss();
            openMainApplication();
        });
    auto* const quit = new MenuButton(QStringLiteral("Quit"), std::move(actions.quitApplication));
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);

    auto* const buttons = new QVBoxLayout;
    buttons->setContentsMargins(padding, padding, padding, padding);
    buttons->setSpacing(spacing);
    buttons->addWidget(settings);
    buttons->addWidget(new Divider);
    buttons->addWidget(quit);

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(indicator_);
    column->addLayout(buttons);
    // Everything in the column asks for all the width there is.
    setFixedWidth(columnWidth);

    statusChanges_ = platform::observable::objectDidChange(
        statusManager, mainQueue, [this, &statusManager] { indicator_->setProtected(statusManager.status()); });
}

void WindowBarStyle::showEvent(QShowEvent* event) {
    // Until the user asks for a control: the first Tab goes to the first. Screen readers say what has the focus, and
    // its new name when the status changes.
    indicator_->setFocus();
    QWidget::showEvent(event);
}

} // namespace quorvale::ui::menu
