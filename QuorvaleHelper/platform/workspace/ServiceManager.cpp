#include "platform/workspace/ServiceManager.hpp"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QProcessEnvironment>
#include <QRandomGenerator>
#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace quorvale::platform::workspace {

/// (sv): its name and value.
using UnitProperty = std::pair<QString, QDBusVariant>;

/// (sa(sv)): the name and the properties of a unit that is made together with another one. There never is one.
using AuxiliaryUnit = std::pair<QString, QList<UnitProperty>>;

/// (sasas): a program, its arguments from the zeroth on, and flags.
struct Command {
    QString path;
    QStringList arguments;
    QStringList flags;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Command& command) {
    argument.beginStructure();
    argument << command.path << command.arguments << command.flags;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Command& command) {
    argument.beginStructure();
    const auto& rest = argument >> command.path >> command.arguments >> command.flags;
    rest.endStructure();
    return rest;
}

namespace {

const auto manager = QStringLiteral("org.freedesktop.systemd1");
constexpr auto launcher = "quorvale";

void registerTypes() {
    static const bool registered = [] {
        qDBusRegisterMetaType<UnitProperty>();
        qDBusRegisterMetaType<QList<UnitProperty>>();
        qDBusRegisterMetaType<AuxiliaryUnit>();
        qDBusRegisterMetaType<QList<AuxiliaryUnit>>();
        qDBusRegisterMetaType<Command>();
        qDBusRegisterMetaType<QList<Command>>();
        return true;
    }();
    static_cast<void>(registered);
}

/// As in systemd.unit(5), "String escaping for inclusion in unit names".
QString escaped(const std::string& text) {
    QString result;
    for (const char byte : text) {
        const auto letter = QChar(QLatin1Char(byte));
        const bool isPlain = letter.unicode() < 0x80 && (letter.isLetterOrNumber() || letter == u'_' || letter == u'.');
        if (isPlain) {
            result += letter;
        } else {
            result += QStringLiteral("\\x%1").arg(letter.unicode(), 2, 16, QLatin1Char('0'));
        }
    }
    return result;
}

QString unitName(const std::string& identifier) {
    return QStringLiteral("app-%1-%2@%3.service")
        .arg(QLatin1String(launcher), escaped(identifier))
        .arg(QRandomGenerator::system()->generate64(), 16, 16, QLatin1Char('0'));
}

/// Whether a variable tells a service something of itself (systemd.exec(5), "Environment Variables Set or Propagated by
/// the Service Manager"), which is wrong for any other.
bool isOfOneService(const QString& name) {
    static const std::array names{"INVOCATION_ID",        "JOURNAL_STREAM",        "MAINPID",
                                  "MANAGERPID",           "NOTIFY_SOCKET",         "SYSTEMD_EXEC_PID",
                                  "DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE", "CONFIGURATION_DIRECTORY",
                                  "RUNTIME_DIRECTORY",    "STATE_DIRECTORY",       "CACHE_DIRECTORY",
                                  "LOGS_DIRECTORY",       "CREDENTIALS_DIRECTORY"};
    static const std::array groups{"LISTEN_", "MEMORY_PRESSURE_", "WATCHDOG_"};
    return std::ranges::any_of(names, [&](const char* one) { return name == QLatin1String(one); }) ||
           std::ranges::any_of(groups, [&](const char* group) { return name.startsWith(QLatin1String(group)); });
}

/// The manager refuses a unit altogether for one variable that it doesn't take.
bool isTaken(const QString& name, const QString& value) {
    const auto isWord = [](QChar letter) {
        return letter.unicode() < 0x80 && (letter.isLetterOrNumber() || letter == u'_');
    };
    const auto isText = [](QChar letter) {
        return (letter.unicode() >= 0x20 && letter.unicode() != 0x7F && letter != QChar::ReplacementCharacter) ||
               letter == u'\t' || letter == u'\n';
    };
    return !name.isEmpty() && !name[0].isDigit() && std::ranges::all_of(name, isWord) &&
           std::ranges::all_of(value, isText);
}

/// The manager's own environment may lack what the session has set since it began.
QStringList environment() {
    const auto own = QProcessEnvironment::systemEnvironment();
    QStringList result;
    for (const auto& name : own.keys()) {
        const auto value = own.value(name);
        if (!isOfOneService(name) && isTaken(name, value)) {
            result.append(name + u'=' + value);
        }
    }
    return result;
}

QList<UnitProperty> properties(const ApplicationStart& start) {
    const auto path = QFile::decodeName(start.executable.c_str());
    const auto property = [](const char* name, const QVariant& value) {
        return UnitProperty(QString::fromLatin1(name), QDBusVariant(value));
    };
    return {
        property("Description", QString::fromStdString(start.identifier)),
        property("Type", QStringLiteral("exec")),
        // It lasts as long as any process of the application, also if the first one ends.
        property("ExitType", QStringLiteral("cgroup")),
        property("ExecStartEx", QVariant::fromValue(QList<Command>{
                                    {.path = path, .arguments = {path}, .flags = {QStringLiteral("no-env-expand")}}})),
        property("Environment", environment()),
        property("WorkingDirectory", QFile::decodeName(start.workingDirectory.c_str())),
        property("Slice", QStringLiteral("app.slice")),
        // A unit that failed goes away like any other.
        property("CollectMode", QStringLiteral("inactive-or-failed")),
    };
}

bool isAbsent(const QDBusError& error) {
    return error.type() == QDBusError::ServiceUnknown || error.type() == QDBusError::Disconnected ||
           error.name() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
}

} // namespace

void startAsUnit(const ApplicationStart& start, std::function<void()> onAbsence) {
    registerTypes();
    auto message = QDBusMessage::createMethodCall(manager, QStringLiteral("/org/freedesktop/systemd1"),
                                                  QStringLiteral("org.freedesktop.systemd1.Manager"),
                                                  QStringLiteral("StartTransientUnit"));
    // What a bus without the manager would start for its name is no manager.
    message.setAutoStartService(false);
    message << unitName(start.identifier) << QStringLiteral("fail") << QVariant::fromValue(properties(start))
            << QVariant::fromValue(QList<AuxiliaryUnit>());
    auto* const watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [onAbsence = std::move(onAbsence)](QDBusPendingCallWatcher* done) {
                         done->deleteLater();
                         if (done->isError() && isAbsent(done->error())) {
                             onAbsence();
                         }
                     });
}

} // namespace quorvale::platform::workspace
