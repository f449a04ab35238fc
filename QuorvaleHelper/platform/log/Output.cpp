#include "platform/log/Output.hpp"

#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <ctime>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/uio.h>
#include <syslog.h>
#include <unistd.h>

namespace quorvale::platform::log {

namespace {

class JournalOutput final : public Output {
public:
    void write(const Entry& entry) override {
        const std::array fields{
            std::string("PRIORITY=") + std::to_string(entry.level == Level::error ? LOG_ERR : LOG_INFO),
            "SUBSYSTEM=" + entry.identity.subsystem,
            "CATEGORY=" + entry.identity.category,
            std::string("FORMAT=").append(entry.format),
            std::string("MESSAGE=").append(entry.composedMessage),
        };
        std::array<iovec, fields.size()> parts{};
        for (std::size_t i = 0; i < fields.size(); ++i) {
            parts[i] = {const_cast<char*>(fields[i].data()), fields[i].size()};
        }
        sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
    }
};

bool isControl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7f;
}

void appendEscaped(std::string& line, std::string_view text) {
    while (true) {
        const auto* const control = std::ranges::find_if(text, isControl);
        line.append(text.begin(), control);
        if (control == text.end()) {
            return;
        }
        if (*control == '\n') {
            line += "\\n";
        } else if (*control == '\t') {
            line += "\\t";
        } else {
            std::array<char, 5> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02x", static_cast<unsigned char>(*control));
            line += escape.data();
        }
        text = {control + 1, text.end()};
    }
}

/// Times as of RFC 3339, in UTC with milliseconds. Most lines of a burst are of the same second, which it spells once.
class Clock {
public:
    void append(std::string& line, std::chrono::system_clock::time_point date) {
        using namespace std::chrono;
        const auto second = floor<seconds>(date);
        if (second_ != second) {
            second_ = second;
            const auto time = system_clock::to_time_t(second);
            std::tm parts{};
            gmtime_r(&time, &parts);
            std::array<char, 32> text{};
            text_.assign(text.data(), std::strftime(text.data(), text.size(), "%FT%T", &parts));
        }
        const auto milliseconds = static_cast<int>(floor<std::chrono::milliseconds>(date - second).count());
        const auto digit = [](int number) { return static_cast<char>('0' + number % 10); };
        const std::array fraction{'.', digit(milliseconds / 100), digit(milliseconds / 10), digit(milliseconds), 'Z'};
        line.append(text_).append(fraction.data(), fraction.size());
    }

private:
    std::optional<std::chrono::sys_seconds> second_;
    std::string text_;
};

class LineOutput final : public Output {
public:
    explicit LineOutput(int fileDescriptor) : fileDescriptor_(fileDescriptor) {}

    void write(const Entry& entry) override {
        const auto before = lines_.size();
        clock_.append(lines_, entry.date);
        lines_ += ' ';
        lines_ += entry.identity.subsystem;
        lines_ += ' ';
        lines_ += entry.identity.category;
        lines_ += entry.level == Level::error ? " error " : " info ";
        appendEscaped(lines_, entry.composedMessage);
        lines_ += '\n';
        if (lines_.size() > PIPE_BUF) {
            send(before);
        }
    }

    void flush() override {
        send(lines_.size());
        lines_.shrink_to_fit();
    }

private:
    /// Writes the first `count` bytes; what can't be written is lost.
    void send(std::size_t count) {
        std::size_t at = 0;
        while (at < count) {
            const auto written = ::write(fileDescriptor_, lines_.data() + at, count - at);
            if (written > 0) {
                at += static_cast<std::size_t>(written);
            } else if (written < 0 && errno == EAGAIN) {
                // Whoever shares the descriptor may have set it so.
                pollfd writable{fileDescriptor_, POLLOUT, 0};
                ::poll(&writable, 1, -1);
            } else if (written == 0 || errno != EINTR) {
                break;
            }
        }
        const bool isCut = at > 0 && lines_[at - 1] != '\n';
        lines_.erase(0, count);
        if (isCut) {
            lines_.insert(0, 1, '\n');
        }
    }

    const int fileDescriptor_;
    Clock clock_;
    std::string lines_;
};

} // namespace

std::unique_ptr<Output> journalOutput() {
    return std::make_unique<JournalOutput>();
}

std::unique_ptr<Output> lineOutput(int fileDescriptor) {
    return std::make_unique<LineOutput>(fileDescriptor);
}

std::unique_ptr<Output> systemOutput() {
    const bool journalRuns = ::access("/run/systemd/journal/socket", W_OK) == 0;
    return journalRuns ? journalOutput() : lineOutput(STDERR_FILENO);
}

} // namespace quorvale::platform::log
