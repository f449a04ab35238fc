#include "platform/notification/DistributedNotificationCenter.hpp"

#include "support/PrivateBus.hpp"
#include "support/Process.hpp"
#include "support/waitUntil.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorvale::platform::notification {

namespace {

std::string shown(const Notification& notification) {
    if (const auto* const text = std::get_if<std::string>(&notification.object)) {
        return "text " + *text;
    }
    const auto* const foreign = std::get_if<ForeignObject>(&notification.object);
    return foreign ? "foreign " + foreign->signature : "none";
}

/// Broadcasts as a person at a terminal does.
void emitSignal(const std::string& path, const std::string& name, const std::vector<std::string>& objects) {
    std::vector<std::string> arguments{"emit", "--session", "--object-path",
                                       path,   "--signal",  "com.quorvale.DistributedNotification." + name};
    arguments.insert(arguments.end(), objects.begin(), objects.end());
    tests::Process gdbus({.program = "gdbus", .arguments = arguments});
    EXPECT_EQ(gdbus.waitForExit(), (tests::Process::Exit{}));
}

} // namespace

TEST(DistributedNotificationCenterTest, DeliversByNameAloneWhoeverSends) {
    const tests::PrivateBus bus;
    qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray::fromStdString(bus.address()));
    DistributedNotificationCenter center;
    std::vector<std::string> received;
    center.addObserver("QuorvaleHelper", [&](const auto& notification) { received.push_back(shown(notification)); });

    emitSignal("/a", "Other", {"'not for us'"});
    emitSignal("/a", "QuorvaleHelper", {R"("{\"running\":true} ⚠️")"});
    emitSignal("/com/quorvale/Updater", "QuorvaleHelper", {});
    emitSignal("/", "QuorvaleHelper", {"uint32 7"});
    emitSignal("/", "QuorvaleHelper", {"'one'", "'two'"});
    emitSignal("/", "QuorvaleHelper", {"'last'"});

    EXPECT_TRUE(tests::waitUntil([&] { return !received.empty() && received.back() == "text last"; }));
    EXPECT_THAT(received,
                testing::ElementsAre("text {\"running\":true} ⚠️", "none", "foreign u", "foreign ss", "text last"));
}

} // namespace quorvale::platform::notification
