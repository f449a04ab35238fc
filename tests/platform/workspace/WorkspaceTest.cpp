#include "platform/workspace/Workspace.hpp"

#include "support/PrivateBus.hpp"
#include "support/waitUntil.hpp"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDir>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvale::platform::workspace {

namespace fs = std::filesystem;
using testing::MatchesRegex;
using tests::waitUntil;

namespace {

/// Takes note of what it is asked for.
class ServiceManager final : public QDBusVirtualObject {
public:
    explicit ServiceManager(const tests::PrivateBus& bus)
        : bus_(QDBusConnection::connectToBus(QString::fromStdString(bus.address()), QStringLiteral("manager"))) {
        bus_.registerVirtualObject(QStringLiteral("/org/freedesktop/systemd1"), this);
        bus_.registerService(QStringLiteral("org.freedesktop.systemd1"));
    }

    ~ServiceManager() override { QDBusConnection::disconnectFromBus(QStringLiteral("manager")); }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        call = message;
        return connection.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("not now")));
    }

    /// Those of the unit; its command as its words, with blanks between.
    [[nodiscard]] QVariantMap properties() const {
        QVariantMap result;
        const auto list = call.arguments()[2].value<QDBusArgument>();
        for (list.beginArray(); !list.atEnd();) {
            QString name;
            QDBusVariant value;
            list.beginStructure();
            list >> name >> value;
            list.endStructure();
            result[name] = name == QStringLiteral("ExecStartEx") ? command(value.variant()) : value.variant();
        }
        list.endArray();
        return result;
    }

    QDBusMessage call;

private:
    static QVariant command(const QVariant& value) {
        QString path;
        QStringList words;
        QStringList flags;
        const auto list = value.value<QDBusArgument>();
        list.beginArray();
        list.beginStructure();
        list >> path >> words >> flags;
        list.endStructure();
        list.endArray();
        return (QStringList(path) + words + flags).join(u' ');
    }

    QDBusConnection bus_;
};

} // namespace

class WorkspaceTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        bus_ = std::make_unique<tests::PrivateBus>();
        setenv("DBUS_SESSION_BUS_ADDRESS", bus_->address().c_str(), 1);
    }

    static void TearDownTestSuite() { bus_.reset(); }

    WorkspaceTest() { fs::create_directories(programs_); }

    void writeProgram(const std::string& text) {
        std::ofstream(programs_ / "Program") << text;
        fs::permissions(programs_ / "Program", fs::perms::owner_all);
        std::ofstream(path_ / "Contents" / "Info.plist")
            << R"(<plist version="1.0"><dict><key>CFBundleIdentifier</key><string>org.example.Some-App</string>
<key>CFBundleExecutable</key><string>Program</string></dict></plist>)";
    }

    static inline std::unique_ptr<tests::PrivateBus> bus_;
    QTemporaryDir directory_;
    fs::path path_ = fs::path(directory_.path().toStdString()) / "Some; app $(x).app";
    fs::path programs_ = path_ / "Contents" / "Linux";
};

TEST_F(WorkspaceTest, StartsTheProgramItselfWhereThereIsNoServiceManager) {
    writeProgram(R"(#!/bin/sh
directory=$(dirname "$0")
{
    echo $$ $(cut -d ' ' -f 6 /proc/$$/stat)
    echo "$(pwd) $QUORVALE_TEST $(readlink /proc/$$/fd/0) $(readlink /proc/$$/fd/2) $#"
} > "$directory/unfinished"
mv "$directory/unfinished" "$directory/report"
read -r line < "$directory/end"
)");
    const auto end = programs_ / "end";
    ASSERT_EQ(mkfifo(end.c_str(), 0600), 0);
    const int endWriter = open(end.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(endWriter, 0);
    setenv("QUORVALE_TEST", "inherited", 1);

    Workspace{}.openApplication(path_.string());
    Workspace{}.openApplication("");
    Workspace{}.openApplication("/nowhere");

    ASSERT_TRUE(waitUntil([this] { return fs::exists(programs_ / "report"); }));
    std::ifstream report(programs_ / "report");
    pid_t pid = 0;
    pid_t session = 0;
    std::string rest;
    std::getline(report >> pid >> session >> std::ws, rest);
    EXPECT_EQ(kill(pid, 0), 0);
    EXPECT_EQ(waitpid(pid, nullptr, WNOHANG), -1) << "it is a child";
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), 0) << "a child is left to be waited for, besides the bus";
    EXPECT_NE(session, getsid(0));
    EXPECT_EQ(rest, fs::path(std::getenv("HOME")).string() + " inherited /dev/null /dev/null 0");
    EXPECT_EQ(write(endWriter, "\n", 1), 1);
    EXPECT_TRUE(waitUntil([pid] { return kill(pid, 0) != 0; }));
    close(endWriter);
}

TEST_F(WorkspaceTest, HasTheServiceManagerStartTheProgramAsAnApplicationOfItsOwn) {
    writeProgram("#!/bin/sh\n");
    setenv("DISPLAY", ":77", 1);
    setenv("NOTIFY_SOCKET", "/run/ours", 1);
    setenv("QUORVALE_TEST", "not\x1Bplain", 1);
    ServiceManager manager(*bus_);
    Workspace{}.openApplication(path_.string());
    ASSERT_TRUE(waitUntil([&] { return manager.call.type() == QDBusMessage::MethodCallMessage; }));
    EXPECT_EQ(manager.call.member(), QStringLiteral("StartTransientUnit"));
    EXPECT_EQ(manager.call.signature(), QStringLiteral("ssa(sv)a(sa(sv))"));
    const auto arguments = manager.call.arguments();
    EXPECT_THAT(arguments[0].toString().toStdString(),
                MatchesRegex(R"(app-quorvale-org\.example\.Some\\x2dApp@[0-9a-f]{16}\.service)"));
    const auto properties = manager.properties();
    const auto path = QString::fromStdString((programs_ / "Program").string());
    EXPECT_EQ(properties[QStringLiteral("ExecStartEx")].toString(),
              path + u' ' + path + QStringLiteral(" no-env-expand"));
    EXPECT_EQ(properties[QStringLiteral("Slice")], QStringLiteral("app.slice"));
    EXPECT_EQ(properties[QStringLiteral("WorkingDirectory")], QDir::homePath());
    const auto environment = properties[QStringLiteral("Environment")].toStringList();
    EXPECT_TRUE(environment.contains(QStringLiteral("DISPLAY=:77")));
    EXPECT_TRUE(environment.filter(QStringLiteral("NOTIFY_SOCKET")).isEmpty());
    EXPECT_TRUE(environment.filter(QStringLiteral("QUORVALE_TEST")).isEmpty()) << "the manager would refuse it all";
}

} // namespace quorvale::platform::workspace
