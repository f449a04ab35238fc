#include "platform/desktop/status_icon/DBusMenu.hpp"

#include "platform/desktop/SessionBus.hpp"

#include <QDBusArgument>
#include <QDBusVariant>

namespace quorvale::platform::desktop {

namespace {

class DBusMenuTest : public testing::Test {
protected:
    [[nodiscard]] QDBusMessage call(const char* member, const QVariantList& arguments) const {
        auto message =
            QDBusMessage::createMethodCall(session.program.baseService(), DBusMenu::path,
                                           QStringLiteral("com.canonical.dbusmenu"), QString::fromLatin1(member));
        message.setArguments(arguments);
        return session.ask(message);
    }

    [[nodiscard]] QString errorOf(const char* member, const QVariantList& arguments) const {
        return call(member, arguments).errorName();
    }

    [[nodiscard]] QString event(int id, const char* kind) const {
        return errorOf("Event", {id, QString::fromLatin1(kind), QVariant::fromValue(QDBusVariant(QString())), 0U});
    }

    SessionBus session;
    int chosen = 0;
    DBusMenu menu{session.program, {{QStringLiteral("Log_1"), [this] { ++chosen; }}}};
};

} // namespace

TEST_F(DBusMenuTest, ListsItsItemsForPanelsToDraw) {
    const auto reply = call("GetLayout", {0, -1, QStringList()});
    ASSERT_EQ(reply.signature(), QStringLiteral("u(ia{sv}av)"));
    const auto layout = reply.arguments().at(1).value<QDBusArgument>();
    int root = -1;
    QVariantMap properties;
    QList<QDBusVariant> children;
    layout.beginStructure();
    layout >> root >> properties >> children;
    layout.endStructure();
    EXPECT_EQ(root, 0);
    ASSERT_EQ(children.size(), 1);

    const auto item = children.front().variant().value<QDBusArgument>();
    int id = 0;
    item.beginStructure();
    item >> id >> properties;
    item.endStructure();
    EXPECT_EQ(properties.value(QStringLiteral("label")), QStringLiteral("Log__1")) << "no key of its own";
    EXPECT_EQ(call("GetGroupProperties", {QVariant::fromValue(QList<int>{id, 7}), QStringList()}).signature(),
              QStringLiteral("a(ia{sv})"));
}

TEST_F(DBusMenuTest, RunsTheActionOfTheItemThatIsChosenAndOfNoOther) {
    const auto invalid = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");
    for (const int wrong : {-1, 2, 1'000'000}) {
        EXPECT_EQ(event(wrong, "clicked"), invalid);
        EXPECT_EQ(errorOf("GetProperty", {wrong, QStringLiteral("label")}), invalid);
        EXPECT_EQ(errorOf("GetLayout", {wrong, 1, QStringList()}), invalid);
    }
    EXPECT_EQ(errorOf("GetProperty", {1, QStringLiteral("icon-data")}), invalid);
    EXPECT_EQ(errorOf("GetProperty", {1, QStringLiteral("label")}), QString());
    for (const auto& [id, kind] : {std::pair{0, "clicked"}, {1, "hovered"}, {1, "clicked"}}) {
        EXPECT_EQ(event(id, kind), QString());
    }
    EXPECT_TRUE(tests::waitUntil([this] { return chosen == 1; }));
    EXPECT_EQ(event(1, "clicked"), QString());
    EXPECT_TRUE(tests::waitUntil([this] { return chosen == 2; })) << "and nothing came in between";
}

} // namespace quorvale::platform::desktop
