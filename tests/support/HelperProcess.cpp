#include "support/HelperProcess.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <gtest/gtest.h>

#include <algorithm>
#include <ranges>

namespace quorvale::tests {

namespace {

constexpr std::string_view identity = " com.quorvale.QuorvaleHelper default ";

std::vector<std::string> commandLine(std::vector<std::string> launcher, const std::vector<std::string>& arguments) {
    launcher.emplace_back(QUORVALE_STAGED_HELPER);
    launcher.insert(launcher.end(), arguments.begin(), arguments.end());
    return launcher;
}

} // namespace

HelperProcess::Environment HelperProcess::on(const PrivateBus& systemBus, const PrivateBus& sessionBus) {
    return {{"DBUS_SYSTEM_BUS_ADDRESS", systemBus.address()},
            {"DBUS_SESSION_BUS_ADDRESS", sessionBus.address()},
            {"QT_QPA_PLATFORM", "offscreen"}};
}

HelperProcess::HelperProcess(const PrivateBus& systemBus, const PrivateBus& sessionBus,
                             const std::vector<std::string>& arguments)
    : HelperProcess(on(systemBus, sessionBus), arguments) {}

HelperProcess::HelperProcess(const Environment& environment, const std::vector<std::string>& arguments,
                             const std::vector<std::string>& launcher)
    : environment_(environment),
      process_({.program = QUORVALE_SCRIPTS "/without_journal",
                .arguments = commandLine(launcher, arguments),
                .environment = environment,
                .errorOutput = Process::ErrorOutput::Merged}) {}

bool HelperProcess::logs(std::string_view text, std::size_t skipped) {
    return waitUntil([&] {
        const auto lines = log() | std::views::drop(skipped);
        return std::ranges::find(lines, text) != lines.end();
    });
}

std::vector<std::string> HelperProcess::log() const {
    std::vector<std::string> lines;
    for (const auto& line : process_.lines()) {
        // What the toolkit has to say about the machine is not of the log.
        if (const auto at = line.find(identity); at != std::string::npos) {
            lines.push_back(line.substr(at + identity.size()));
        }
    }
    return lines;
}

std::optional<std::string> HelperProcess::icon() const {
    constexpr int patience = 1000; // milliseconds
    const auto session = environment_.at("DBUS_SESSION_BUS_ADDRESS").value_or("");
    const auto name = QStringLiteral("panel");
    auto bus = QDBusConnection::connectToBus(QString::fromStdString(session), name);
    auto question = QDBusMessage::createMethodCall(
        QStringLiteral("com.quorvale.QuorvaleHelper"), QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << QStringLiteral("org.kde.StatusNotifierItem") << QStringLiteral("IconAccessibleDesc");
    const QDBusReply<QVariant> answer = bus.call(question, QDBus::Block, patience);
    QDBusConnection::disconnectFromBus(name);
    return answer.isValid() ? std::optional(answer.value().toString().toStdString()) : std::nullopt;
}

bool HelperProcess::shows(std::string_view status) const {
    std::optional<std::string> said;
    const auto wanted = "Quorvale Helper: " + std::string(status);
    return waitUntil([&] { return !(said = icon()) || *said == wanted; }) && said == wanted;
}

void HelperProcess::notify(std::string_view appState) const {
    Process gdbus(
        {.program = "gdbus",
         .arguments = {"emit", "--session", "--object-path", "/com/quorvale/Updater", "--signal",
                       "com.quorvale.DistributedNotification.QuorvaleHelper", "'" + std::string(appState) + "'"},
         .environment = environment_});
    EXPECT_EQ(gdbus.waitForExit(), Process::Exit{});
}

} // namespace quorvale::tests
