#include "link/Helper.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QThread>
#include <QVariant>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace quorvale::bench {

namespace {

constexpr auto name = "com.quorvale.QuorvaleHelper";
constexpr auto path = "/com/quorvale/QuorvaleHelper";

/// User and system time so far, in the kernel's ticks.
unsigned long processorTime(qint64 process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    const std::string text(std::istreambuf_iterator<char>(file), {});
    unsigned long user = 0;
    unsigned long system = 0;
    // Behind the command's name, which may hold blanks itself.
    std::sscanf(text.c_str() + text.rfind(')') + 1, " %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu", &user,
                &system);
    return user + system;
}

} // namespace

void start(QProcess& process, const QString& program, const QStringList& arguments) {
    process.start(program, arguments);
    if (!process.waitForStarted()) {
        std::fprintf(stderr, "%s doesn't start\n", qPrintable(program));
        std::_Exit(EXIT_FAILURE);
    }
}

Helper::Helper(const QString& program) {
    const auto log = folder_.filePath(QStringLiteral("log"));
    process_.setStandardErrorFile(log);
    start(process_, QStringLiteral(QUORVALE_SCRIPTS "/without_journal"), {program});
    log_.open(log.toStdString());
    waitForLines(1, "Quorvale Helper launched");
    auto notification = QDBusMessage::createSignal(QStringLiteral("/com/quorvale/Updater"),
                                                   QStringLiteral("com.quorvale.DistributedNotification"),
                                                   QStringLiteral("QuorvaleHelper"));
    notification << QStringLiteral(R"({"running":false,"restart":true,"terminate":false})");
    QDBusConnection::sessionBus().send(notification);
}

Helper::~Helper() {
    process_.kill();
    process_.waitForFinished();
}

void Helper::openWindow() const {
    auto call =
        QDBusMessage::createMethodCall(QString::fromLatin1(name), QString::fromLatin1(path),
                                       QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
    call << QVariantMap();
    QDBusConnection::sessionBus().call(call);
}

void Helper::waitForLines(std::size_t count, std::string_view text) {
    std::string line;
    while (count > 0) {
        std::string part;
        std::getline(log_, part);
        line += part;
        if (log_.eof()) {
            log_.clear();
            QThread::msleep(1);
            continue;
        }
        count -= line.find(text) == std::string::npos ? 0 : 1;
        line.clear();
    }
}

std::chrono::duration<double> processorTimeAtRest(const QProcess& process) {
    for (auto before = ~0UL;;) {
        const auto now = processorTime(process.processId());
        if (now == before) {
            return std::chrono::duration<double>(static_cast<double>(now) / static_cast<double>(sysconf(_SC_CLK_TCK)));
        }
        before = now;
        QThread::msleep(100);
    }
}

} // namespace quorvale::bench
