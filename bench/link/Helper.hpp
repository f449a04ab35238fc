#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <chrono>
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

    [[nodiscard]] const QProcess& process() const { return process_; }

private:
    QTemporaryDir folder_;
    QProcess process_;
    std::ifstream log_;
};

/// Starts a program that is ended with `process`.
void start(QProcess& process, const QString& program, const QStringList& arguments = {});

/// Waits until it takes no more processor time: all that it took so far.
std::chrono::duration<double> processorTimeAtRest(const QProcess& process);

} // namespace quorvale::bench
