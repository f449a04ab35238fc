#pragma once

#include "platform/observable/ObservableObject.hpp"
#include "platform/queue/MainQueue.hpp"
#include "ui/logs/LogStore.hpp"

#include <QWidget>

#include <functional>

namespace quorvale::ui::logs {

class EntryView;

/// The content of the log window: all lines of `logs` as one text, and the button "Done". Each time it is shown it
/// shows the lines that are there and asks for a new reading of the log; nothing is read while it stays open.
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
    LogStore& logs_;
    platform::queue::MainQueue& mainQueue_;
    EntryView* entryView_;
    platform::observable::Subscription entriesChanges_;
};

} // namespace quorvale::ui::logs
