#include "platform/workspace/saveText.hpp"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStringList>

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace quorvale::platform::workspace {

namespace {

/// The file is its first argument, the number of bytes to come on its standard input the second.
constexpr auto script = R"sh(
new=$(mktemp -p "$(dirname -- "$1")" .XXXXXXXXXX) || exit
trap 'rm -f -- "$new"' EXIT
cat >"$new" && sync -- "$new" && test "$(stat -c %s -- "$new")" -eq "$2" && mv -fT -- "$new" "$1")sh";

/// Whether the folder can be read only from here, whoever asks.
bool isReadOnly(const QString& folder) {
    return ::access(QFile::encodeName(folder).constData(), W_OK) != 0 && errno == EROFS;
}

/// The same command by the service manager, on these standard streams and with this status. It would take variables'
/// names in the words for theirs.
QStringList outside(QStringList command) {
    command.replaceInStrings(QStringLiteral("$"), QStringLiteral("$$"));
    return QStringList{QStringLiteral("systemd-run"), QStringLiteral("--user"), QStringLiteral("--quiet"),
                       QStringLiteral("--collect"),   QStringLiteral("--pipe"), QStringLiteral("--wait"),
                       QStringLiteral("--")} +
           command;
}

} // namespace

void saveText(const std::string& path, const std::shared_ptr<const std::string>& text,
              std::function<void(std::expected<void, std::string>)> done) {
    const QFileInfo file(QString::fromStdString(path));
    const auto target = file.exists() ? file.canonicalFilePath() : file.absoluteFilePath();
    QStringList command{QStringLiteral("/bin/sh"),
                        QStringLiteral("-c"),
                        QString::fromLatin1(script),
                        QStringLiteral("sh"),
                        target,
                        QString::number(text->size() + 1)};
    if (isReadOnly(QFileInfo(target).path())) {
        command = outside(std::move(command));
    }

    // Without a parent: an application that ends would wait for it.
    auto* const process = new QProcess;
    const auto end = [process, done = std::move(done)](const QString& failure) {
        process->deleteLater();
        if (failure.isEmpty()) {
            done({});
        } else {
            done(std::unexpected(failure.toStdString()));
        }
    };
    QObject::connect(process, &QProcess::errorOccurred, process, [process, end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            end(process->errorString());
        }
    });
    // The text stays for as long as it is being written.
    QObject::connect(process, &QProcess::finished, process, [process, text, end](int status) {
        const auto said = QString::fromLocal8Bit(process->readAllStandardError()).trimmed();
        end(status == 0 && process->exitStatus() == QProcess::NormalExit ? QString()
            : said.isEmpty()                                             ? QStringLiteral("It can't be written")
                                                                         : said);
    });
    process->setStandardOutputFile(QProcess::nullDevice());
    process->start(command.takeFirst(), command);
    process->write(QByteArray::fromRawData(text->data(), static_cast<qsizetype>(text->size())));
    process->write("\n");
    process->closeWriteChannel();
}

} // namespace quorvale::platform::workspace
