#include "platform/desktop/status_icon/StatusNotifierHostWatch.hpp"

#include "platform/desktop/SessionBus.hpp"

#include <memory>
#include <utility>

namespace quorvale::platform::desktop {

using Host = StatusNotifierHostWatch::Host;

namespace {

/// A panel's side: owns the watcher's name and answers whatever it was told to.
class FakeWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QVariant IsStatusNotifierHostRegistered READ host)

public:
    explicit FakeWatcher(QDBusConnection bus, QVariant host = true) : bus_(std::move(bus)), host_(std::move(host)) {
        bus_.registerObject(QStringLiteral("/StatusNotifierWatcher"), this, QDBusConnection::ExportAllContents);
        bus_.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    }

    ~FakeWatcher() override {
        bus_.unregisterService(QStringLiteral("org.kde.StatusNotifierWatcher"));
        bus_.unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
    }

    [[nodiscard]] QVariant host() const { return host_; }

    void setHost(bool present) {
        host_ = present;
        if (present) {
            Q_EMIT StatusNotifierHostRegistered();
        } else {
            Q_EMIT StatusNotifierHostUnregistered();
        }
    }

    QStringList items;

public Q_SLOTS:

    void RegisterStatusNotifierItem(const QString& service) { items << service; }

Q_SIGNALS:
    void StatusNotifierHostRegistered();
    void StatusNotifierHostUnregistered();

private:
    QDBusConnection bus_;
    QVariant host_;
};

} // namespace

class StatusNotifierHostWatchTest : public testing::Test {
protected:
    void start() {
        watch = std::make_unique<StatusNotifierHostWatch>(session.program);
        QObject::connect(watch.get(), &StatusNotifierHostWatch::failed, [this](const QString&) { ++failures; });
    }

    void expectHost(Host host) {
        EXPECT_TRUE(tests::waitUntil([&] { return watch->host() == host; }));
    }

    SessionBus session;
    std::unique_ptr<StatusNotifierHostWatch> watch;
    int failures = 0;
};

TEST_F(StatusNotifierHostWatchTest, RegistersOnceWithEachWatcherThatComes) {
    start();
    expectHost(Host::Absent);
    for (int run = 0; run < 3; ++run) {
        auto watcher = std::make_unique<FakeWatcher>(session.other);
        expectHost(Host::Present);
        EXPECT_EQ(watcher->items, QStringList(session.program.baseService()));
        watcher.reset();
        expectHost(Host::Absent);
    }
    EXPECT_EQ(failures, 0);
}

TEST_F(StatusNotifierHostWatchTest, FollowsHostsThatComeAndGoWhileTheWatcherStays) {
    FakeWatcher watcher(session.other, false);
    start();
    expectHost(Host::Absent);
    for (const auto present : {true, false, true}) {
        watcher.setHost(present);
        expectHost(present ? Host::Present : Host::Absent);
    }
    EXPECT_EQ(watcher.items, QStringList(session.program.baseService()));
    EXPECT_EQ(failures, 0);
}

TEST_F(StatusNotifierHostWatchTest, AnswersWhenItIsAskedAgain) {
    start();
    expectHost(Host::Absent);
    int answers = 0;
    QObject::connect(watch.get(), &StatusNotifierHostWatch::answered, [&] { ++answers; });
    watch->ask();
    EXPECT_TRUE(tests::waitUntil([&] { return answers == 1; })) << "without a watcher";
    EXPECT_EQ(watch->host(), Host::Absent);
    const FakeWatcher watcher(session.other);
    expectHost(Host::Present);
    watch->ask();
    EXPECT_TRUE(tests::waitUntil([&] { return answers == 3; })) << "with one";
    EXPECT_EQ(failures, 0);
}

TEST_F(StatusNotifierHostWatchTest, TakesOnlyABooleanForAnAnswer) {
    for (const auto& answer : {QVariant(QStringLiteral("true")), QVariant(1), QVariant()}) {
        const FakeWatcher watcher(session.other, answer);
        failures = 0;
        start();
        EXPECT_TRUE(tests::waitUntil([&] { return failures > 0; }));
        EXPECT_EQ(watch->host(), Host::Absent);
    }
}

TEST_F(StatusNotifierHostWatchTest, LogsAWatcherThatTakesNoItems) {
    session.other.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    start();
    EXPECT_TRUE(tests::waitUntil([&] { return failures == 2; }));
    EXPECT_EQ(watch->host(), Host::Absent);
}

TEST_F(StatusNotifierHostWatchTest, ListensToTheWatcherOnly) {
    FakeWatcher watcher(session.other, false);
    start();
    expectHost(Host::Absent);
    int asked = 0;
    QObject::connect(watch.get(), &StatusNotifierHostWatch::hostChanged, [&] { ++asked; });
    // What the watcher would answer now is heard only by who asks it.
    {
        const QSignalBlocker silent(watcher);
        watcher.setHost(true);
    }
    session.program.send(QDBusMessage::createSignal(QStringLiteral("/StatusNotifierWatcher"),
                                                    QStringLiteral("org.kde.StatusNotifierWatcher"),
                                                    QStringLiteral("StatusNotifierHostRegistered")));
    SessionBus::roundTrip(session.program);
    SessionBus::roundTrip(session.other);
    SessionBus::roundTrip(session.program);
    EXPECT_EQ(asked, 0);
}

} // namespace quorvale::platform::desktop

#include "StatusNotifierHostWatchTest.moc"
