#include "platform/desktop/status_icon/DBusMenu.hpp"

#include "platform/desktop/SessionBus.hpp"

#include <QAction>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QPixmap>

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace quorvale::platform::desktop {

namespace {

using Properties = std::map<int, QVariantMap>;

const auto labelKey = QStringLiteral("label");
const auto iconKey = QStringLiteral("icon-data");

Properties propertiesIn(const QVariant& nodes) {
    Properties properties;
    const auto argument = nodes.value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        int id = -1;
        QVariantMap map;
        argument.beginStructure();
        argument >> id >> map;
        argument.endStructure();
        properties[id] = map;
    }
    argument.endArray();
    return properties;
}

QIcon iconOf(const QColor& color) {
    QPixmap pixmap(48, 48);
    pixmap.fill(color);
    return {pixmap};
}

QColor colorOf(const QVariant& png) {
    return QImage::fromData(png.toByteArray(), "PNG").pixelColor(24, 24);
}

/// What a panel is told of the items.
class Panel final : public QObject {
    Q_OBJECT

public:
    explicit Panel(QDBusConnection bus) {
        bus.connect({}, DBusMenu::path, QStringLiteral("com.canonical.dbusmenu"),
                    QStringLiteral("ItemsPropertiesUpdated"), this, SLOT(update(QDBusMessage)));
        SessionBus::roundTrip(bus);
    }

    int updates = 0;
    Properties latest;

private Q_SLOTS:

    void update(const QDBusMessage& message) {
        EXPECT_EQ(message.signature(), QStringLiteral("a(ia{sv})a(ias)"));
        ++updates;
        latest = propertiesIn(message.arguments().constFirst());
    }
};

} // namespace

class DBusMenuTest : public testing::Test {
protected:
    DBusMenuTest() {
        QObject::connect(&exported, &DBusMenu::chosen,
                         [this](QAction* action, std::uint32_t timestamp) { chosen.emplace_back(action, timestamp); });
    }

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

    [[nodiscard]] QString event(int id, const char* kind, std::uint32_t timestamp = 0) const {
        return errorOf("Event",
                       {id, QString::fromLatin1(kind), QVariant::fromValue(QDBusVariant(QString())), timestamp});
    }

    [[nodiscard]] Properties properties(const QList<int>& ids, const QStringList& names) const {
        const auto reply = call("GetGroupProperties", {QVariant::fromValue(ids), names});
        EXPECT_EQ(reply.signature(), QStringLiteral("a(ia{sv})"));
        return propertiesIn(reply.arguments().value(0));
    }

    SessionBus session;
    QMenu menu;
    QAction* status = menu.addAction(iconOf(Qt::red), QStringLiteral("Un&&_protected"));
    QAction* separator = menu.addSeparator();
    QAction* log = menu.addAction(QStringLiteral("&Log"));
    DBusMenu exported{session.program, menu};
    std::vector<std::pair<QAction*, std::uint32_t>> chosen;
};

TEST_F(DBusMenuTest, ListsItsItemsForPanelsToDraw) {
    const auto reply = call("GetLayout", {0, -1, QStringList{labelKey}});
    ASSERT_EQ(reply.signature(), QStringLiteral("u(ia{sv}av)"));
    const auto layout = reply.arguments().at(1).value<QDBusArgument>();
    int root = -1;
    QVariantMap ofRoot;
    QList<QDBusVariant> children;
    layout.beginStructure();
    layout >> root >> ofRoot >> children;
    layout.endStructure();
    EXPECT_EQ(root, 0);
    EXPECT_EQ(children.size(), 3);

    const auto all = properties({}, {});
    ASSERT_EQ(all.size(), 4U) << "all, for who names none";
    EXPECT_EQ(all.at(0).value(QStringLiteral("children-display")), QStringLiteral("submenu"));
    EXPECT_EQ(all.at(1).value(labelKey), QStringLiteral("Un&__protected")) << "no key of its own";
    EXPECT_EQ(colorOf(all.at(1).value(iconKey)), QColor(Qt::red));
    EXPECT_EQ(all.at(2), (QVariantMap{{QStringLiteral("type"), QStringLiteral("separator")}}));
    EXPECT_EQ(all.at(3), (QVariantMap{{labelKey, QStringLiteral("_Log")}}));
    EXPECT_EQ(properties({1, 7, -1}, {labelKey}), (Properties{{1, {{labelKey, QStringLiteral("Un&__protected")}}}}));

    auto direction =
        QDBusMessage::createMethodCall(session.program.baseService(), DBusMenu::path,
                                       QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    direction << QStringLiteral("com.canonical.dbusmenu") << QStringLiteral("TextDirection");
    for (const auto& [layoutDirection, word] : {std::pair(Qt::RightToLeft, "rtl"), {Qt::LeftToRight, "ltr"}}) {
        QGuiApplication::setLayoutDirection(layoutDirection);
        EXPECT_EQ(session.ask(direction).arguments().constFirst().value<QDBusVariant>().variant(),
                  QString::fromLatin1(word));
    }
}

TEST_F(DBusMenuTest, TellsPanelsOnceOfAllThatChangedInATurn) {
    const Panel panel(session.other);
    const auto change = [&](const char* text, const QColor& color) {
        status->setText(QString::fromLatin1(text));
        status->setIcon(iconOf(color));
    };
    change("Unread", Qt::blue);
    EXPECT_EQ(properties({1}, {}).size(), 1U) << "is told of what changes from now on";
    for (int flood = 0; flood < 1000; ++flood) {
        change("Unprotected", Qt::red);
        change("Protected", Qt::green);
    }
    ASSERT_TRUE(tests::waitUntil([&] { return panel.updates > 0; }));
    EXPECT_EQ(panel.latest.at(1).value(labelKey), QStringLiteral("Protected"));
    EXPECT_EQ(colorOf(panel.latest.at(1).value(iconKey)), QColor(Qt::green));
    EXPECT_EQ(panel.latest.size(), 1U);
    EXPECT_EQ(properties({1}, {}), panel.latest);
    EXPECT_EQ(panel.updates, 1);
}

TEST_F(DBusMenuTest, TellsOfTheItemThatIsChosenAndOfNoOther) {
    const auto invalid = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");
    for (const int wrong : {-1, 4, 1'000'000}) {
        EXPECT_EQ(event(wrong, "clicked"), invalid);
        EXPECT_EQ(errorOf("GetProperty", {wrong, labelKey}), invalid);
        EXPECT_EQ(errorOf("GetLayout", {wrong, 1, QStringList()}), invalid);
        EXPECT_EQ(errorOf("AboutToShow", {wrong}), invalid);
    }
    EXPECT_EQ(errorOf("GetProperty", {3, iconKey}), invalid);
    EXPECT_EQ(errorOf("GetProperty", {3, labelKey}), QString());
    for (const auto& [id, kind] : {std::pair{0, "clicked"}, {1, "hovered"}, {3, "clicked"}}) {
        EXPECT_EQ(event(id, kind, 7), QString());
    }
    EXPECT_EQ(event(1, "clicked"), QString());
    EXPECT_TRUE(tests::waitUntil([this] { return chosen.size() >= 2; }));
    EXPECT_EQ(chosen, (std::vector<std::pair<QAction*, std::uint32_t>>{{log, 7}, {status, 0}}));
}

} // namespace quorvale::platform::desktop

#include "DBusMenuTest.moc"
