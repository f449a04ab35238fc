#pragma once

#include "support/HelperProcess.hpp"
#include "support/Process.hpp"

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QTemporaryDir>

#include <string>
#include <vector>

namespace quorvale::tests {

/// A whole desktop session of the test's own, made by scripts/desktop_session: buses, X server, window manager and,
/// unless it is told otherwise, a panel. Programs started by it see nothing of the machine's own session.
class DesktopSession {
public:
    explicit DesktopSession(std::vector<std::string> options = {});
    ~DesktopSession();
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    /// Runs a program in the session to its end; what it printed. Another exit status than 0 fails the test.
    std::string run(std::vector<std::string> command) const;

    /// Runs scripts/desktop_session with a command of its own, such as start-panel.
    std::string control(const std::string& command) const;

    /// For programs of the session.
    [[nodiscard]] const HelperProcess::Environment& environment() const { return environment_; }

    /// Waits for the icon in the panel: its centre, in pixels of the screen.
    [[nodiscard]] QPoint icon() const;
    /// The bus name of the icon's status notifier item.
    [[nodiscard]] std::string item() const;
    /// Calls one of the item's methods that take a place, as panels do.
    void activate(const std::string& method, QPoint place) const;
    /// Has the helper open its log, as the desktop entry's action does.
    void openLog() const;
    enum class Button { left = 1, right = 3 };
    void click(QPoint place, Button button = Button::left) const;
    void press(const std::string& key) const;

    [[nodiscard]] QImage screenshot() const;

    /// Where the one visible window with that title is; empty if there is none or more than one.
    [[nodiscard]] QRect window(const std::string& title) const;

    /// Waits until the screen shows a single filled area of `color`, and gives its bounds; empty if none comes.
    /// Anything painted over the area, such as a text, counts as part of it.
    QRect waitForArea(const QColor& color) const;

    /// Waits until nothing on the screen has `color`.
    [[nodiscard]] bool waitForNothingOf(const QColor& color) const;

private:
    HelperProcess::Environment environment_;
    QTemporaryDir directory_;
    Process session_;
};

} // namespace quorvale::tests
