#include "support/Flood.hpp"

#include <QDBusPendingCallWatcher>

#include <algorithm>
#include <utility>

namespace quorvale::simulator {

namespace {

constexpr qsizetype mostUnanswered = 100;

QString word(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

std::expected<Flood::Order, QString> Flood::Order::parse(const QString& words) {
    bool understood = false;
    const auto count = words.section(u' ', 0, 0).toLongLong(&understood);
    const auto last = words.section(u' ', 1);
    if (!understood || count < 1 || (last != word(true) && last != word(false))) {
        return std::unexpected(QStringLiteral("a flood takes a count and true or false"));
    }
    return Order{.count = count, .last = last == word(true)};
}

Flood::Flood(QObject* parent, Order order, qsizetype share, Send send, std::function<void(const QStringList&)> done)
    : QObject(parent),
      order_(order),
      share_(share),
      send_(std::move(send)),
      done_(std::move(done)),
      left_(order.count) {
    proceed();
}

void Flood::proceed() {
    while (left_ > 0 && unanswered_ < mostUnanswered) {
        QList<bool> values;
        while (left_ > 0 && values.size() < share_) {
            values.append((--left_ % 2 == 0) == order_.last);
        }
        auto* const answer = new QDBusPendingCallWatcher(send_(values), this);
        ++unanswered_;
        connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, count = values.size()] {
            answer->deleteLater();
            finish(count, !answer->isError());
        });
    }
}

void Flood::finish(qsizetype count, bool arrived) {
    (arrived ? arrived_ : failed_) += count;
    --unanswered_;
    proceed();
    if (unanswered_ == 0) {
        done_({QStringLiteral("flooded"), QString::number(order_.count), QStringLiteral("ok"),
               QString::number(arrived_), QStringLiteral("errors"), QString::number(failed_), QStringLiteral("last"),
               word(order_.last)});
        deleteLater();
    }
}

} // namespace quorvale::simulator
