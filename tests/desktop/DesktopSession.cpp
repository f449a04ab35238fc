#include "desktop/DesktopSession.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <sstream>

namespace quorvale::tests {

namespace {

constexpr auto script = QUORVALE_SCRIPTS "/desktop_session";

std::vector<std::string> holdingOn(std::vector<std::string> options) {
    // The session lasts until the standard input of its one command ends.
    options.insert(options.end(), {"--", "sh", "-c", "env; echo ready; cat"});
    return options;
}

/// The bounds of all pixels of `color`, if they fill most of them.
QRect areaOf(const QImage& image, const QColor& color) {
    QRect bounds;
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == color.rgb()) {
                bounds |= QRect(x, y, 1, 1);
                ++count;
            }
        }
    }
    return count > bounds.width() * bounds.height() / 2 ? bounds : QRect();
}

} // namespace

DesktopSession::DesktopSession(std::vector<std::string> options)
    : session_({.program = script, .arguments = holdingOn(std::move(options))}) {
    EXPECT_TRUE(session_.waitForLine([](std::string_view line) { return line == "ready"; }, std::chrono::seconds(60)))
        << "the session doesn't come about";
    for (const auto& line : session_.lines()) {
        if (const auto equals = line.find('='); equals != std::string::npos) {
            environment_[line.substr(0, equals)] = line.substr(equals + 1);
        }
    }
    for (const auto* inherited : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY"}) {
        environment_[inherited] = std::nullopt;
    }
}

DesktopSession::~DesktopSession() {
    // A session that is killed leaves its folder behind.
    session_.closeInput();
    EXPECT_EQ(session_.waitForExit(), Process::Exit{});
}

std::string DesktopSession::run(std::vector<std::string> command) const {
    const auto program = command.front();
    command.erase(command.begin());
    Process process({.program = program, .arguments = std::move(command), .environment = environment_});
    EXPECT_EQ(process.waitForExit(std::chrono::seconds(60)), Process::Exit{}) << program;
    std::string output;
    for (const auto& line : process.lines()) {
        output += line + '\n';
    }
    return output;
}

std::string DesktopSession::control(const std::string& command) const {
    return run({script, command});
}

QPoint DesktopSession::icon() const {
    std::istringstream place(control("icon"));
    int x = 0;
    int y = 0;
    place >> x >> y;
    return {x, y};
}

std::string DesktopSession::item() const {
    const auto item = run({"gdbus", "call", "--session", "--dest", "org.kde.StatusNotifierWatcher", "--object-path",
                           "/StatusNotifierWatcher", "--method", "org.freedesktop.DBus.Properties.Get",
                           "org.kde.StatusNotifierWatcher", "RegisteredStatusNotifierItems"});
    const auto from = item.find('\'') + 1;
    return item.substr(from, item.find('/') - from);
}

void DesktopSession::activate(const std::string& method, QPoint place) const {
    run({"gdbus", "call", "--session", "--dest", item(), "--object-path", "/StatusNotifierItem", "--method",
         "org.kde.StatusNotifierItem." + method, "--", std::to_string(place.x()), std::to_string(place.y())});
}

void DesktopSession::openLog() const {
    run({"gdbus", "call", "--session", "--dest", "com.quorvale.QuorvaleHelper", "--object-path",
         "/com/quorvale/QuorvaleHelper", "--method", "org.freedesktop.Application.ActivateAction", "log-viewer", "[]",
         "{}"});
}

void DesktopSession::click(QPoint place, Button button) const {
    run({"xdotool", "mousemove", std::to_string(place.x()), std::to_string(place.y()), "click",
         std::to_string(static_cast<int>(button))});
}

void DesktopSession::press(const std::string& key) const {
    run({"xdotool", "key", key});
}

QImage DesktopSession::screenshot() const {
    const auto file = directory_.filePath(QStringLiteral("screen.png")).toStdString();
    run({script, "screenshot", file});
    return QImage(QString::fromStdString(file)).convertToFormat(QImage::Format_RGB32);
}

QRect DesktopSession::window(const std::string& title) const {
    std::istringstream windows(run({"sh", "-c", "xdotool search --onlyvisible --name \"^$0$\" || true", title}));
    std::string id;
    std::string other;
    if (!(windows >> id) || windows >> other) {
        return {};
    }
    // It may close before it is asked about.
    std::istringstream lines(run({"sh", "-c", "xwininfo -id $0 || true", id}));
    std::map<std::string, int> geometry;
    for (std::string line; std::getline(lines, line);) {
        const auto colon = line.find(": ");
        if (colon != std::string::npos) {
            geometry[line.substr(2, colon - 2)] = std::atoi(line.c_str() + colon + 2);
        }
    }
    return {geometry["Absolute upper-left X"], geometry["Absolute upper-left Y"], geometry["Width"],
            geometry["Height"]};
}

QRect DesktopSession::waitForArea(const QColor& color) const {
    QRect area;
    const auto found = waitUntil([&] {
        area = areaOf(screenshot(), color);
        return !area.isEmpty();
    });
    EXPECT_TRUE(found) << "nothing has the colour " << color.name().toStdString();
    return area;
}

bool DesktopSession::waitForNothingOf(const QColor& color) const {
    return waitUntil([&] { return areaOf(screenshot(), color).isEmpty(); });
}

} // namespace quorvale::tests
