#include "platform/notification/DistributedNotificationCenter.hpp"

#include <QDBusConnection>
#include <QDBusMessage>

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

class DistributedNotificationCenter::Receiver final : public QObject {
    Q_OBJECT

public:
    Receiver(const std::string& name, Handler handler) : handler_(std::move(handler)) {
        QDBusConnection::sessionBus().connect(QString(), QString(),
                                              QStringLiteral("com.quorvale.DistributedNotification"),
                                              QString::fromStdString(name), this, SLOT(receive(QDBusMessage)));
    }

private Q_SLOTS:

    void receive(const QDBusMessage& signal) { handler_(decode(signal)); }

private:
    Handler handler_;
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
