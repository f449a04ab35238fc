#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <cstdint>

namespace quorvale::platform::desktop {

/// Follows org.kde.StatusNotifierWatcher: registers this connection's status notifier item with every new owner of
/// that name and knows whether some panel (a host) shows such items. Nothing waits for an answer. GUI thread.
/// https://www.freedesktop.org/wiki/Specifications/StatusNotifierItem/StatusNotifierWatcher/
class StatusNotifierHostWatch final : public QObject {
    Q_OBJECT

public:
    enum class Host {
        /// A watcher is there and hasn't answered.
        Unknown,
        /// There is no watcher, or it knows of no host, or it fails to tell.
        Absent,
        Present,
    };

    /// The item is already exported on `bus`.
    explicit StatusNotifierHostWatch(QDBusConnection bus, QObject* parent = nullptr);

    [[nodiscard]] Host host() const { return host_; }

    /// Asks once more. `answered` follows, when there is an answer.
    void ask();

Q_SIGNALS:
    void hostChanged();
    /// `host()` is as of now.
    void answered();
    /// A sentence for the log.
    void failed(const QString& what);

private Q_SLOTS:
    void watcherSignal(const QDBusMessage& message);

private:
    void askForOwner();
    void setOwner(const QString& owner);
    void registerItem();
    void askForHost();
    void setHost(Host host);

    QDBusConnection bus_;
    QString owner_;
    /// Tells the answer to the newest question from those before it, and before what was told since.
    std::uint64_t question_ = 0;
    Host host_ = Host::Unknown;
};

} // namespace quorvale::platform::desktop
