#include "ui/logs/LogViewer.hpp"

#include "platform/observable/objectDidChange.hpp"
#include "ui/common/localized.hpp"
#include "ui/logs/DoneButton.hpp"
#include "ui/logs/EntryView.hpp"
#include "ui/logs/FindBar.hpp"
#include "ui/logs/saveLog.hpp"

#include <QPointer>
#include <QShortcut>
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
/// Bytes of what is selected that a person may be looking for.
constexpr std::size_t longestPrefill = 200;

/// All of the store's lines as the one row of a list, without a copy.
EntryView::Items joined(const LogStore& logs) {
    const auto& lines = logs.entries();
    return {std::shared_ptr<const std::string>(lines, &lines->text())};
}

} // namespace

LogViewer::LogViewer(LogStore& logs, platform::queue::MainQueue& mainQueue, std::function<void()> dismiss)
    : logs_(logs), mainQueue_(mainQueue), entryView_(new EntryView(joined(logs))), findBar_(new FindBar) {
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
    column->addWidget(findBar_);
    findBar_->hide();
    column->addLayout(row);
    setMinimumSize(minimum);

    for (const auto& [key, wish] : {std::pair(QKeySequence::Find, &LogViewer::openFindBar),
                                    {QKeySequence::FindNext, &LogViewer::showNext},
                                    {QKeySequence::FindPrevious, &LogViewer::showPrevious},
                                    {QKeySequence::Save, &LogViewer::save}}) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, wish);
    }
    connect(entryView_, &EntryView::findWanted, this, &LogViewer::openFindBar);
    connect(entryView_, &EntryView::saveWanted, this, &LogViewer::save);
    connect(findBar_, &FindBar::wantedChanged, this, &LogViewer::search);
    connect(findBar_, &FindBar::nextWanted, this, &LogViewer::showNext);
    connect(findBar_, &FindBar::previousWanted, this, &LogViewer::showPrevious);
    connect(findBar_, &FindBar::closed, this, &LogViewer::closeFindBar);

    entriesChanges_ = platform::observable::objectDidChange(logs, mainQueue_, [this] {
        entryView_->setItems(joined(logs_));
        if (!findBar_->isHidden()) {
            search();
        }
    });
}

std::string_view LogViewer::text() const {
    return entryView_->segments().text();
}

void LogViewer::openFindBar() {
    const auto selected = entryView_->selection().text();
    const bool isToLookFor = selected.size() <= longestPrefill && !selected.contains('\n');
    findBar_->show();
    findBar_->ask(isToLookFor ? QString::fromUtf8(selected.data(), static_cast<qsizetype>(selected.size()))
                              : QString());
    search();
}

void LogViewer::closeFindBar() {
    // Before the bar goes, which would give the focus to "Done".
    entryView_->setFocus(Qt::OtherFocusReason);
    findBar_->hide();
    search_ = TextSearch();
    entryView_->mark(search_);
}

void LogViewer::save() {
    if (!text().empty()) {
        saveLog(*this, entryView_->items().front(), logs_.logger());
    }
}

void LogViewer::search() {
    search_ = TextSearch(findBar_->text(), findBar_->letters());
    entryView_->mark(search_);
    count_ = search_.count(text());
    before_ = 0;
    place_ = 0;
    findBar_->showCount(0, count_);
    // What was found stays found while more of it is written.
    showNextFrom(entryView_->selection().begin());
}

void LogViewer::showNext() {
    if (findBar_->isHidden()) {
        openFindBar();
    } else {
        showNextFrom(entryView_->selection().end());
    }
}

void LogViewer::showPrevious() {
    if (findBar_->isHidden()) {
        openFindBar();
    } else {
        const auto match = search_.previous(text(), entryView_->selection().begin());
        showMatch(match ? match : search_.previous(text(), text().size()));
    }
}

void LogViewer::showNextFrom(std::size_t place) {
    const auto match = search_.next(text(), place);
    showMatch(match ? match : search_.next(text(), 0));
}

void LogViewer::showMatch(const std::optional<TextSearch::Match>& match) {
    if (!match) {
        return;
    }
    // Matches are numbered from the last one that was shown, which is near, as a rule.
    const auto [first, last] = std::minmax(match->begin, place_);
    const auto between = search_.count(text().substr(first, last - first));
    before_ = match->begin > place_ ? before_ + between : before_ - between;
    place_ = match->begin;
    entryView_->showMatch(*match);
    findBar_->showCount(before_ + 1, count_);
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
