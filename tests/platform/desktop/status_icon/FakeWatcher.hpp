#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariant>

namespace quorvale::platform::desktop {

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

} // namespace quorvale::platform::desktop
