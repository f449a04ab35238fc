#include "platform/desktop/status_icon/StatusNotifierItem.hpp"

#include "platform/desktop/SessionBus.hpp"
#include "platform/desktop/windows/ActivationToken.hpp"

#include <QAction>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>

#include <cstdint>
#include <utility>
#include <vector>

namespace quorvale::platform::desktop {

namespace {

const auto path = QStringLiteral("/StatusNotifierItem");
const auto interface = QStringLiteral("org.kde.StatusNotifierItem");

struct Pixmap {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

std::vector<Pixmap> pixmapsIn(const QVariant& value) {
    std::vector<Pixmap> pixmaps;
    const auto argument = value.value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        Pixmap pixmap;
        argument.beginStructure();
        argument >> pixmap.width >> pixmap.height >> pixmap.pixels;
        argument.endStructure();
        pixmaps.push_back(pixmap);
    }
    argument.endArray();
    return pixmaps;
}

MenuBarIcon icon() {
    QImage image(2, 1, QImage::Format_ARGB32_Premultiplied);
    image.setPixelColor(0, 0, QColor(0x10, 0x20, 0x30));
    image.setPixelColor(1, 0, Qt::transparent);
    return {QSizeF(36, 18), [image](QSize size) { return image.scaled(size); }};
}

/// What a panel hears of the item.
class SignalCounter final : public QObject {
    Q_OBJECT

public:
    explicit SignalCounter(QDBusConnection bus) {
        bus.connect({}, path, interface, QStringLiteral("NewToolTip"), this, SLOT(countToolTip()));
        bus.connect({}, path, interface, QStringLiteral("NewIcon"), this, SLOT(countIcon()));
        SessionBus::roundTrip(bus);
    }

    int newToolTips = 0;
    int newIcons = 0;

private Q_SLOTS:

    void countToolTip() { ++newToolTips; }

    void countIcon() { ++newIcons; }
};

} // namespace

class StatusNotifierItemTest : public testing::Test {
protected:
    [[nodiscard]] QDBusMessage call(const char* member, const QVariantList& arguments) const {
        auto message =
            QDBusMessage::createMethodCall(session.program.baseService(), path, interface, QString::fromLatin1(member));
        message.setArguments(arguments);
        return session.ask(message);
    }

    [[nodiscard]] QVariant property(const char* name) const {
        auto message =
            QDBusMessage::createMethodCall(session.program.baseService(), path,
                                           QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
        message << interface << QString::fromLatin1(name);
        const auto reply = session.ask(message);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << name << qPrintable(reply.errorMessage());
        return reply.arguments().isEmpty() ? QVariant()
                                           : reply.arguments().constFirst().value<QDBusVariant>().variant();
    }

    SessionBus session;
    QMenu menu;
    QAction* log = menu.addAction(QStringLiteral("Log"));
    StatusNotifierItem item{session.program,
                            {QStringLiteral("com.quorvale.QuorvaleHelper"), QStringLiteral("Quorvale Helper"), icon},
                            menu};
};

TEST_F(StatusNotifierItemTest, TellsPanelsWhatItIs) {
    item.setToolTip(QStringLiteral("Quorvale Helper: Protected"));
    EXPECT_EQ(property("Id"), QStringLiteral("com.quorvale.QuorvaleHelper"));
    EXPECT_EQ(property("Title"), QStringLiteral("Quorvale Helper"));
    EXPECT_EQ(property("Category"), QStringLiteral("SystemServices"));
    EXPECT_EQ(property("Status"), QStringLiteral("Active"));
    EXPECT_EQ(property("IconAccessibleDesc"), QStringLiteral("Quorvale Helper: Protected"));
    EXPECT_EQ(property("ItemIsMenu"), false);
    EXPECT_EQ(property("Menu").value<QDBusObjectPath>().path(), DBusMenu::path);

    const auto toolTip = property("ToolTip").value<QDBusArgument>();
    ASSERT_EQ(toolTip.currentSignature(), QStringLiteral("(sa(iiay)ss)"));
    QString iconName;
    QString title;
    QString text;
    toolTip.beginStructure();
    toolTip >> iconName;
    toolTip.beginArray();
    toolTip.endArray();
    toolTip >> title >> text;
    toolTip.endStructure();
    EXPECT_EQ(title, QStringLiteral("Quorvale Helper: Protected"));
    EXPECT_EQ(text, QString());
}

TEST_F(StatusNotifierItemTest, OffersItsPicturesInNetworkByteOrder) {
    const auto pixmaps = pixmapsIn(property("IconPixmap"));
    ASSERT_FALSE(pixmaps.empty());
    EXPECT_EQ(pixmaps[0].width, 36);
    EXPECT_EQ(pixmaps[0].height, 18);
    EXPECT_EQ(pixmaps[0].pixels.left(4).toHex(' '), QByteArray("ff 10 20 30"));
    EXPECT_EQ(pixmaps[0].pixels.right(4).toHex(' '), QByteArray("00 00 00 00"));
    for (const auto& pixmap : pixmaps) {
        EXPECT_EQ(pixmap.pixels.size(), 4 * pixmap.width * pixmap.height);
    }
}

TEST_F(StatusNotifierItemTest, UsesATokenUpWithWhatItWasGivenFor) {
    std::vector<std::pair<QPoint, QString>> activations;
    QObject::connect(&item, &StatusNotifierItem::activated,
                     [&](QPoint at, const QString& token) { activations.emplace_back(at, token); });
    EXPECT_EQ(call("ProvideXdgActivationToken", {QStringLiteral("token")}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("Activate", {1200, 12}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("SecondaryActivate", {-5, 0}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("ContextMenu", {1, 1}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("Scroll", {120, QStringLiteral("vertical")}).type(), QDBusMessage::ReplyMessage);
    for (const auto& arguments : {QVariantList{}, {QStringLiteral("x"), 1}, {1, 2, 3}}) {
        EXPECT_EQ(call("Activate", arguments).type(), QDBusMessage::ErrorMessage);
    }

    std::vector<std::pair<QByteArray, std::uint32_t>> choices;
    QObject::connect(log, &QAction::triggered,
                     [&] { choices.emplace_back(ActivationToken::current(), ActivationToken::userTime()); });
    auto choice = QDBusMessage::createMethodCall(session.program.baseService(), DBusMenu::path,
                                                 QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("Event"));
    choice << 1 << QStringLiteral("clicked") << QVariant::fromValue(QDBusVariant(QString())) << 7U;
    for (const auto& token : {QStringLiteral("token"), QStringLiteral("panel-1_TIME12"), QString(), QString(1000, u'x'),
                              QStringLiteral("to\nken"), QStringLiteral("_TIME99999999999")}) {
        EXPECT_EQ(call("ProvideXdgActivationToken", {token}).type(), QDBusMessage::ReplyMessage);
        const auto before = choices.size();
        EXPECT_EQ(session.ask(choice).type(), QDBusMessage::ReplyMessage);
        EXPECT_TRUE(tests::waitUntil([&] { return choices.size() > before; }));
    }
    const std::vector<std::pair<QByteArray, std::uint32_t>> expectedChoices{
        {"token", 7}, {"panel-1_TIME12", 12}, {"", 7}, {"", 7}, {"", 7}, {"_TIME99999999999", 7}};
    EXPECT_EQ(choices, expectedChoices);
    EXPECT_EQ(ActivationToken::current(), QByteArray());
    EXPECT_EQ(call("ProvideXdgActivationToken", {QString(1000, u'x')}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("Activate", {0, 0}).type(), QDBusMessage::ReplyMessage);
    const std::vector<std::pair<QPoint, QString>> expected{
        {{1200, 12}, QStringLiteral("token")}, {{-5, 0}, QString()}, {{0, 0}, QString()}};
    EXPECT_EQ(activations, expected);
}

TEST_F(StatusNotifierItemTest, TellsPanelsOfANewToolTipOnlyWhenItIsNewAndMayBeShown) {
    SignalCounter panel(session.other);
    for (const auto* text : {"Protected", "Protected", "Unprotected"}) {
        item.setToolTip(QString::fromLatin1(text));
    }
    item.setAnnouncements(StatusNotifierItem::Announcements::Held);
    item.setToolTip(QStringLiteral("Protected"));
    item.setToolTip(QStringLiteral("Unprotected"));
    EXPECT_EQ(property("IconAccessibleDesc"), QStringLiteral("Unprotected"));
    EXPECT_TRUE(tests::waitUntil([&] { return panel.newIcons == 2; }));
    EXPECT_EQ(panel.newToolTips, 2);
    item.setAnnouncements(StatusNotifierItem::Announcements::Prompt);
    EXPECT_TRUE(tests::waitUntil([&] { return panel.newIcons == 3; }));
    EXPECT_EQ(panel.newToolTips, 3);
}

} // namespace quorvale::platform::desktop

#include "StatusNotifierItemTest.moc"
