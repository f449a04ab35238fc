#pragma once

#include "support/EventWriter.hpp"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <expected>
#include <functional>

namespace quorvale::simulator {

/// Obeys command lines, one after the other, from a script and then from standard input. The end of standard input
/// ends the commands, not the program.
class Commands final : public QObject {
public:
    /// Obeys the command `word`, which `rest` follows in its line, or says why it can't.
    using Handler = std::function<std::expected<void, QString>(const QString& word, const QString& rest)>;

    /// `patience` is how long `await` waits before the program gives up. `handler` gets what isn't in `help`.
    Commands(EventWriter& events, std::chrono::milliseconds patience, Handler handler);

    static constexpr auto help =
        "  await BEGINNING        obey the next command when an event with this beginning has been written since\n"
        "                         the last one awaited\n"
        "  quit                   end\n"
        "  crash [BEGINNING]      end as a killed process does, at once or with the next event that has this "
        "beginning\n"
        "Empty lines and lines that begin with # are skipped.\n";
    static constexpr int commandFailed = 3;

    void add(const QStringList& lines);
    void readStandardInput();

private:
    void obeyWaiting();
    void obey(const QString& line);
    void fail(const QString& reason);
    void readInput();
    void noteEvent(const QString& event);

    EventWriter& events_;
    Handler handler_;
    QStringList waiting_;
    QStringList unseenEvents_;
    QString awaited_;
    QString deadly_;
    QTimer patience_;
    QByteArray partial_;
    QSocketNotifier input_;
    int exitStatus_ = 0;
};

} // namespace quorvale::simulator
