#include "platform/notification/DistributedNotificationCenter.hpp"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QEvent>

#include <deque>
#include <utility>

namespace quorvale::platform::notification {

namespace {

Notification decode(const QDBusMessage& signal) {
    const auto arguments = signal.arguments();
    if (arguments.isEmpty()) {
        return {};
    }
    if (arguments.size() > 1 || arguments.front().typeId() != QMetaType::QString) {
        return {ForeignObject{signal.signature().toStdString()}};
    }
    return {arguments.front().toString().toStdString()};
}

} // namespace

/// Lets the event loop serve all else that is due before each call of the handler, which may take long.
class DistributedNotificationCenter::Receiver final : public QObject {
    Q_OBJECT

public:
    Receiver(const std::string& name, Handler handler) : handler_(std::move(handler)) {
        QDBusConnection::sessionBus().connect(QString(), QString(),
                                              QStringLiteral("com.quorvale.DistributedNotification"),
                                              QString::fromStdString(name), this, SLOT(receive(QDBusMessage)));
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() == yielding) {
            post(delivering);
            return true;
        }
        if (event->type() != delivering) {
            return QObject::event(event);
        }
        const auto notification = std::move(waiting_.front());
        waiting_.pop_front();
        if (!waiting_.empty()) {
            post(yielding);
        }
        handler_(notification);
        return true;
    }

private Q_SLOTS:

    void receive(const QDBusMessage& signal) {
        waiting_.push_back(decode(signal));
        if (waiting_.size() == 1) {
            post(yielding);
        }
    }

private:
    /// An event that is posted in one turn of the event loop comes in the next. There it may come before what became
    /// ready while the last handler ran, for which one turn is left free.
    static constexpr auto yielding = QEvent::User;
    static constexpr auto delivering = static_cast<QEvent::Type>(QEvent::User + 1);

    void post(QEvent::Type type) { QCoreApplication::postEvent(this, new QEvent(type)); }

    Handler handler_;
    std::deque<Notification> waiting_;
};

DistributedNotificationCenter& DistributedNotificationCenter::defaultCenter() {
    static auto* const center = new DistributedNotificationCenter;
    return *center;
}

DistributedNotificationCenter::DistributedNotificationCenter() = default;

DistributedNotificationCenter::~DistributedNotificationCenter() = default;

void DistributedNotificationCenter::addObserver(const std::string& name, Handler handler) {
    receivers_.push_back(std::make_unique<Receiver>(name, std::move(handler)));
}

} // namespace quorvale::platform::notification

#include "DistributedNotificationCenter.moc"
