#include "support/Process.hpp"

#include <QProcessEnvironment>
#include <QStringList>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <sys/prctl.h>

namespace quorvale::tests {

namespace {

QProcessEnvironment environmentOf(const Process::Launch& launch) {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : launch.environment) {
        if (value) {
            environment.insert(QString::fromStdString(name), QString::fromStdString(*value));
        } else {
            environment.remove(QString::fromStdString(name));
        }
    }
    return environment;
}

} // namespace

Process::Process(const Launch& launch) {
    process_.setProcessEnvironment(environmentOf(launch));
    process_.setProcessChannelMode(launch.errorOutput == ErrorOutput::Merged ? QProcess::MergedChannels
                                                                             : QProcess::ForwardedErrorChannel);
    process_.setChildProcessModifier([] {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // Whoever runs the tests in the background may have them ignored.
        for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
            std::signal(signal, SIG_DFL);
        }
    });
    QObject::connect(&process_, &QProcess::readyRead, [this] { readLines(); });

    QStringList arguments;
    std::ranges::transform(launch.arguments, std::back_inserter(arguments),
                           [](const std::string& argument) { return QString::fromStdString(argument); });
    process_.start(QString::fromStdString(launch.program), arguments);
    if (!process_.waitForStarted(-1)) {
        ADD_FAILURE() << launch.program << " doesn't start: " << process_.errorString().toStdString();
    }
}

Process::~Process() {
    process_.disconnect();
    kill();
}

void Process::send(std::string_view line) {
    process_.write(line.data(), static_cast<qint64>(line.size()));
    process_.write("\n", 1);
}

void Process::closeInput() {
    process_.closeWriteChannel();
}

std::optional<std::string> Process::waitForLine(const LinePredicate& wanted, std::chrono::milliseconds deadline) {
    std::optional<std::string> found;
    const auto look = [&] {
        while (!found && next_ < lines_.size()) {
            if (wanted(lines_[next_])) {
                found = lines_[next_];
            }
            ++next_;
        }
        return found.has_value();
    };
    const auto ended = [&] { return process_.state() == QProcess::NotRunning && next_ == lines_.size(); };
    if (!waitUntil([&] { return look() || ended(); }, deadline) || !found) {
        std::fputs(transcript().c_str(), stderr);
    }
    return found;
}

std::optional<std::string> Process::waitForLine(std::string_view text, std::chrono::milliseconds deadline) {
    return waitForLine([text](std::string_view line) { return line.contains(text); }, deadline);
}

void Process::terminate() {
    process_.terminate();
}

void Process::signal(int number) const {
    EXPECT_EQ(::kill(static_cast<pid_t>(process_.processId()), number), 0);
}

void Process::kill() {
    if (process_.state() == QProcess::NotRunning) {
        return;
    }
    process_.kill();
    process_.waitForFinished(-1);
}

std::optional<Process::Exit> Process::waitForExit(std::chrono::milliseconds deadline) {
    if (!waitUntil([this] { return process_.state() == QProcess::NotRunning; }, deadline)) {
        return {};
    }
    return Exit{.code = process_.exitCode(), .bySignal = process_.exitStatus() == QProcess::CrashExit};
}

void Process::readLines() {
    const auto output = process_.readAllStandardOutput();
    partial_.append(output.constData(), static_cast<std::size_t>(output.size()));
    std::size_t start = 0;
    for (auto end = partial_.find('\n'); end != std::string::npos; end = partial_.find('\n', start)) {
        lines_.push_back(partial_.substr(start, end - start));
        start = end + 1;
    }
    partial_.erase(0, start);
}

std::string Process::transcript() const {
    auto text = process_.program().toStdString() + " has written:\n";
    for (const auto& line : lines_) {
        text += "  " + line + "\n";
    }
    return text;
}

} // namespace quorvale::tests
