#pragma once

#include <QDBusPendingCall>
#include <QList>
#include <QObject>
#include <QString>

#include <expected>
#include <functional>

namespace quorvale::simulator {

/// Sends truth values in turn, true after false, as fast as their receiver answers. Deletes itself when it is done.
class Flood final : public QObject {
public:
    struct Order {
        qsizetype count = 0;
        /// The value to end with.
        bool last = false;

        /// "COUNT true|false".
        static std::expected<Order, QString> parse(const QString& words);
    };

    /// Sends `values`, and yields the one call whose answer says that all of them have arrived.
    using Send = std::function<QDBusPendingCall(const QList<bool>& values)>;

    /// `done` gets the words of the event that tells the outcome. `share` values go with each call; a bus that lets
    /// nobody wait for more than 128 answers, as the system bus does, still takes all calls.
    Flood(QObject* parent, Order order, qsizetype share, Send send, std::function<void(const QStringList&)> done);

    static constexpr auto eventHelp =
        "  flooded COUNT ok N errors N last VALUE\n"
        "                                        a flood is over; so many values have arrived, so many may not have\n";

private:
    void proceed();
    void finish(qsizetype count, bool arrived);

    Order order_;
    qsizetype share_;
    Send send_;
    std::function<void(const QStringList&)> done_;
    qsizetype left_;
    qsizetype unanswered_ = 0;
    qsizetype arrived_ = 0;
    qsizetype failed_ = 0;
};

} // namespace quorvale::simulator
