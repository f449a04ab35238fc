#include "platform/workspace/Workspace.hpp"

#include "platform/bundle/Bundle.hpp"
#include "platform/workspace/ServiceManager.hpp"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <filesystem>

namespace quorvale::platform::workspace {

namespace {

void startFromHere(const ApplicationStart& start) {
    QProcess application;
    application.setProgram(QFile::decodeName(start.executable.c_str()));
    application.setWorkingDirectory(QFile::decodeName(start.workingDirectory.c_str()));
    application.setStandardInputFile(QProcess::nullDevice());
    application.setStandardOutputFile(QProcess::nullDevice());
    application.setStandardErrorFile(QProcess::nullDevice());
    application.startDetached();
}

} // namespace

void Workspace::openApplication(const std::string& bundlePath) const {
    const std::filesystem::path path(bundlePath);
    const bundle::Bundle bundle(path);
    const auto executable = bundle.executablePath();
    if (!path.is_absolute() || !executable) {
        return;
    }
    // An account may name a home that does not exist.
    const auto home = QDir::home().exists() ? QDir::homePath() : QDir::rootPath();
    const ApplicationStart start{.identifier = bundle.bundleIdentifier().value_or(path.stem().string()),
                                 .executable = *executable,
                                 .workingDirectory = QFile::encodeName(home).toStdString()};
    startAsUnit(start, [start] { startFromHere(start); });
}

} // namespace quorvale::platform::workspace
