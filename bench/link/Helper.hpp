#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <cstddef>
#include <fstream>
#include <string_view>

namespace quorvale::bench {

/// The helper as it is installed, in the session of this process, with its log in a file.
class Helper {
public:
    /// Starts it and tells it, as the updater does, to connect to the agent.
    explicit Helper(const QString& program);
    ~Helper();
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;

    /// Has it open the window under its icon.
    void openWindow() const;

    /// Waits until it has written so many more lines with `text`.
    void waitForLines(std::size_t count, std::string_view text);

    /// Waits until it takes no processor time.
    void waitForRest() const;

private:
    QTemporaryDir folder_;
    QProcess process_;
    std::ifstream log_;
};

/// Starts a program that is ended with `process`.
void start(QProcess& process, const QString& program, const QStringList& arguments = {});

} // namespace quorvale::bench
