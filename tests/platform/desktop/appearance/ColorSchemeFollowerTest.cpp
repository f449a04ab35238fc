#include "platform/desktop/appearance/ColorSchemeFollower.hpp"

#include "platform/desktop/SessionBus.hpp"

#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>

namespace quorvale::platform::desktop {

namespace {

class FakePortal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    FakePortal(QDBusConnection bus, QVariant scheme) : bus_(std::move(bus)), scheme_(std::move(scheme)) {
        bus_.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this,
                            QDBusConnection::ExportAllContents);
        bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }

    ~FakePortal() override { bus_.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop")); }

    void change(const QString& key, const QVariant& value) {
        Q_EMIT SettingChanged(QStringLiteral("org.freedesktop.appearance"), key, QDBusVariant(value));
    }

    int reads = 0;

public Q_SLOTS:

    QDBusVariant Read(const QString& /*area*/, const QString& /*key*/) {
        ++reads;
        return QDBusVariant(QVariant::fromValue(QDBusVariant(scheme_)));
    }

Q_SIGNALS:
    void SettingChanged(const QString& area, const QString& key, const QDBusVariant& value);

private:
    QDBusConnection bus_;
    QVariant scheme_;
};

bool isDark() {
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

} // namespace

class ColorSchemeFollowerTest : public testing::Test {
protected:
    void TearDown() override { QGuiApplication::setPalette({}); }

    SessionBus session;
};

TEST_F(ColorSchemeFollowerTest, IsDarkWhileTheDesktopPrefersThat) {
    FakePortal portal(session.other, 1U);
    const ColorSchemeFollower follower(session.program);
    ASSERT_TRUE(tests::waitUntil(isDark));
    EXPECT_GT(QGuiApplication::palette().color(QPalette::WindowText).lightness(), 200);
    portal.change(QStringLiteral("color-scheme"), 2U);
    EXPECT_TRUE(tests::waitUntil([] { return !isDark(); }));
    portal.change(QStringLiteral("color-scheme"), 1U);
    EXPECT_TRUE(tests::waitUntil(isDark));
}

TEST_F(ColorSchemeFollowerTest, AsksAPortalThatRestarts) {
    auto portal = std::make_unique<FakePortal>(session.other, 2U);
    const ColorSchemeFollower follower(session.program);
    ASSERT_TRUE(tests::waitUntil([&] { return portal->reads == 1; }));
    portal.reset();
    portal = std::make_unique<FakePortal>(session.other, 1U);
    EXPECT_TRUE(tests::waitUntil(isDark));
    portal->change(QStringLiteral("color-scheme"), 0U);
    EXPECT_TRUE(tests::waitUntil([] { return !isDark(); }));
}

TEST_F(ColorSchemeFollowerTest, IgnoresWhatIsNoColorScheme) {
    FakePortal portal(session.other, QStringLiteral("dark"));
    const ColorSchemeFollower follower(session.program);
    ASSERT_TRUE(tests::waitUntil([&] { return portal.reads == 1; }));
    portal.change(QStringLiteral("accent-color"), 1U);
    portal.change(QStringLiteral("color-scheme"), true);
    SessionBus::roundTrip(session.other);
    SessionBus::roundTrip(session.program);
    EXPECT_FALSE(isDark());
}

TEST_F(ColorSchemeFollowerTest, BelievesThePortalOnly) {
    const FakePortal portal(session.other, 2U);
    const ColorSchemeFollower follower(session.program);
    ASSERT_TRUE(tests::waitUntil([&] { return portal.reads == 1; }));
    SessionBus::roundTrip(session.other);
    const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
    const auto interface = QStringLiteral("org.freedesktop.portal.Settings");
    const auto member = QStringLiteral("SettingChanged");
    for (auto lie : {QDBusMessage::createSignal(path, interface, member),
                     QDBusMessage::createTargetedSignal(session.program.baseService(), path, interface, member)}) {
        lie << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme")
            << QVariant::fromValue(QDBusVariant(1U));
        session.program.send(lie);
    }
    SessionBus::roundTrip(session.program);
    EXPECT_FALSE(isDark());
}

} // namespace quorvale::platform::desktop

#include "ColorSchemeFollowerTest.moc"
