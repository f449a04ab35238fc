#include "platform/workspace/Workspace.hpp"

#include "platform/bundle/Bundle.hpp"

#include <QDir>
#include <QFile>
#include <QProcess>

namespace quorvale::platform::workspace {

std::expected<void, std::string> Workspace::openApplication(const std::string& bundlePath) const {
    const auto executable = bundle::Bundle(bundlePath).executablePath();
    if (!executable) {
        return std::unexpected("no application at " + bundlePath);
    }
    QProcess application;
    application.setProgram(QFile::decodeName(executable->c_str()));
    // An account may name a home that does not exist.
    application.setWorkingDirectory(QDir::home().exists() ? QDir::homePath() : QDir::rootPath());
    application.setStandardInputFile(QProcess::nullDevice());
    application.setStandardOutputFile(QProcess::nullDevice());
    application.setStandardErrorFile(QProcess::nullDevice());
    if (!application.startDetached()) {
        return std::unexpected(*executable + ": " + application.errorString().toStdString());
    }
    return {};
}

} // namespace quorvale::platform::workspace
