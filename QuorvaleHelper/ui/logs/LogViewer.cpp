#include "ui/logs/LogViewer.hpp"

#include "platform/observable/objectDidChange.hpp"
#include "ui/common/localized.hpp"
#include "ui/logs/DoneButton.hpp"
#include "ui/logs/EntryView.hpp"

#include <QPointer>
#include <QShowEvent>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace quorvale::ui::logs {

namespace {

constexpr int padding = 20;
constexpr int spacing = 10;
constexpr int buttonWidth = 80;

/// All of the store's lines as the one row of a list, without a copy.
EntryView::Items joined(const LogStore& logs) {
    const auto& lines = logs.entries();
    return {std::shared_ptr<const std::string>(lines, &lines->text())};
}

} // namespace

LogViewer::LogViewer(LogStore& logs, platform::queue::MainQueue& mainQueue, std::function<void()> dismiss)
    : logs_(logs), mainQueue_(mainQueue), entryView_(new EntryView(joined(logs))) {
    entryView_->setAccessibleName(common::localized("Log"));
    auto* const done = new DoneButton(common::localized("Done"));
    // A label that needs more, in a large font, gets it.
    done->ensurePolished();
    const auto margin = style()->pixelMetric(QStyle::PM_ButtonMargin, nullptr, done);
    done->setFixedWidth(std::max(buttonWidth, done->fontMetrics().horizontalAdvance(done->text()) + 2 * margin));
    connect(done, &DoneButton::clicked, this, [dismiss = std::move(dismiss)] { dismiss(); });

    auto* const row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(done);

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    // Between the list and the button lies a spacer of no length, with the spacing on either side of it.
    column->setSpacing(2 * spacing);
    column->addWidget(entryView_, 1);
    column->addLayout(row);
    setMinimumSize(minimum);

    entriesChanges_ =
        platform::observable::objectDidChange(logs, mainQueue_, [this] { entryView_->setItems(joined(logs_)); });
}

void LogViewer::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (event->spontaneous()) {
        return;
    }
    mainQueue_.async([self = QPointer(this), &logs = logs_] {
        if (self && self->isVisible()) {
            logs.loadEntries();
        }
    });
}

} // namespace quorvale::ui::logs
