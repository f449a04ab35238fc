#include "ui/logs/FindBar.hpp"

#include "ui/common/localized.hpp"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QToolButton>

namespace quorvale::ui::logs {

FindBar::FindBar()
    : field_(new QLineEdit),
      count_(new QLabel),
      previous_(new QToolButton),
      next_(new QToolButton),
      matchesCase_(new QCheckBox(common::localized("Match Case"))) {
    field_->setPlaceholderText(common::localized("Find"));
    field_->setAccessibleName(common::localized("Find"));
    connect(field_, &QLineEdit::textChanged, this, &FindBar::wantedChanged);
    connect(matchesCase_, &QCheckBox::toggled, this, &FindBar::wantedChanged);

    const auto furnish = [](QToolButton& button, Qt::ArrowType arrow, const char* name) {
        button.setArrowType(arrow);
        button.setAutoRaise(true);
        button.setFocusPolicy(Qt::TabFocus);
        button.setToolTip(common::localized(name));
        button.setAccessibleName(common::localized(name));
    };
    furnish(*previous_, Qt::UpArrow, "Previous");
    furnish(*next_, Qt::DownArrow, "Next");
    connect(previous_, &QToolButton::clicked, this, &FindBar::previousWanted);
    connect(next_, &QToolButton::clicked, this, &FindBar::nextWanted);

    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(field_, 1);
    row->addWidget(count_);
    row->addWidget(previous_);
    row->addWidget(next_);
    row->addWidget(matchesCase_);
}

std::string FindBar::text() const {
    return field_->text().toStdString();
}

TextSearch::Case FindBar::letters() const {
    return matchesCase_->isChecked() ? TextSearch::Case::Matched : TextSearch::Case::Ignored;
}

void FindBar::ask(const QString& text) {
    if (!text.isEmpty()) {
        field_->setText(text);
    }
    field_->setFocus(Qt::ShortcutFocusReason);
    field_->selectAll();
}

void FindBar::showCount(std::size_t number, std::size_t count) {
    const QLocale locale;
    const auto written = [&](std::size_t figure) { return locale.toString(static_cast<qulonglong>(figure)); };
    count_->setText(field_->text().isEmpty() ? QString()
                    : count == 0             ? common::localized("No Matches")
                                             : common::localized("%1 of %2").arg(written(number), written(count)));
    // Assistive technologies tell what the field is described by.
    field_->setAccessibleDescription(count_->text());
    previous_->setEnabled(count > 0);
    next_->setEnabled(count > 0);
}

bool FindBar::event(QEvent* event) {
    // Else the window would take the key, and close.
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel)) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        Q_EMIT closed();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->modifiers().testFlag(Qt::ShiftModifier) ? Q_EMIT previousWanted() : Q_EMIT nextWanted();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace quorvale::ui::logs
