#pragma once

#include "support/waitUntil.hpp"

#include <QProcess>

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace quorvale::tests {

/// A child process that a test talks to line by line. Every wait runs the test's event loop. The child is
/// killed with this object, and also when the test program dies. A child that doesn't start fails the test.
class Process {
public:
    enum class ErrorOutput {
        /// Goes where the test program's own goes.
        Forwarded,
        /// Its lines are among those of the standard output.
        Merged,
    };

    struct Launch {
        std::string program;
        std::vector<std::string> arguments = {};
        /// Set besides what the test program's environment holds; no value takes a variable away.
        std::map<std::string, std::optional<std::string>> environment = {};
        ErrorOutput errorOutput = ErrorOutput::Forwarded;
    };

    struct Exit {
        /// The exit status, or the number of the signal that ended the process.
        int code = 0;
        bool bySignal = false;
        bool operator==(const Exit&) const = default;
    };

    using LinePredicate = std::function<bool(std::string_view)>;

    explicit Process(const Launch& launch);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Writes `line` and a line feed to the child's standard input.
    void send(std::string_view line);
    void closeInput();

    /// The first line for which `wanted` holds, of those after the line that the previous call gave; no value if
    /// none comes within `deadline` or before the child's output ends.
    std::optional<std::string> waitForLine(const LinePredicate& wanted,
                                           std::chrono::milliseconds deadline = defaultDeadline);
    /// The same for a line that contains `text`.
    std::optional<std::string> waitForLine(std::string_view text, std::chrono::milliseconds deadline = defaultDeadline);

    /// Every whole line so far, those already waited for included.
    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }

    [[nodiscard]] bool running() const { return process_.state() == QProcess::Running; }

    [[nodiscard]] pid_t id() const { return static_cast<pid_t>(process_.processId()); }

    /// Asks the child to end (SIGTERM).
    void terminate();
    /// Sends it that signal.
    void signal(int number) const;
    /// Ends the child (SIGKILL) and returns when it is gone.
    void kill();
    /// No value if the child still runs after `deadline`.
    std::optional<Exit> waitForExit(std::chrono::milliseconds deadline = defaultDeadline);

private:
    void readLines();
    [[nodiscard]] std::string transcript() const;

    QProcess process_;
    std::string partial_;
    std::vector<std::string> lines_;
    std::size_t next_ = 0;
};

} // namespace quorvale::tests
