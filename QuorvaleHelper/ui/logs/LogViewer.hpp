#pragma once

#include "platform/observable/ObservableObject.hpp"
#include "platform/queue/MainQueue.hpp"
#include "ui/logs/LogStore.hpp"
#include "ui/logs/TextSearch.hpp"

#include <QWidget>

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

namespace quorvale::ui::logs {

class EntryView;
class FindBar;

/// The content of the log window: all lines of `logs` as one text, and the button "Done". Each time it is shown it
/// shows the lines that are there and asks for a new reading of the log; nothing is read while it stays open. A bar to
/// look for a text comes under the list when it is asked for, and goes again; what is shown can be saved to a file.
class LogViewer final : public QWidget {
    Q_OBJECT

public:
    /// Points.
    static constexpr QSize minimum{500, 350};

    /// `dismiss` closes the window that presents this view. The references outlive the view.
    LogViewer(LogStore& logs, platform::queue::MainQueue& mainQueue, std::function<void()> dismiss);

protected:
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] std::string_view text() const;
    void openFindBar();
    void closeFindBar();
    void save();
    /// Looks for what the bar says in the text as it is now.
    void search();
    void showNext();
    void showPrevious();
    void showNextFrom(std::size_t place);
    void showMatch(const std::optional<TextSearch::Match>& match);

    LogStore& logs_;
    platform::queue::MainQueue& mainQueue_;
    EntryView* entryView_;
    FindBar* findBar_;
    TextSearch search_;
    std::size_t count_ = 0;
    std::size_t place_ = 0;  ///< of the match that was shown last
    std::size_t before_ = 0; ///< how many matches are before that
    platform::observable::Subscription entriesChanges_;
};

} // namespace quorvale::ui::logs
