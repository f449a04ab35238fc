#pragma once

#include "platform/log/UnifiedLog.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace quorvale::platform::log {

/// A pipe as short as they come, and a log that writes to it.
class LogPipe {
public:
    /// `writeFlags` are of the end that is written to, as O_NONBLOCK.
    explicit LogPipe(int writeFlags = 0, std::size_t budget = EntryStore::defaultBudget) {
        EXPECT_EQ(::pipe2(ends_, O_CLOEXEC), 0);
        EXPECT_GE(::fcntl(writeEnd(), F_SETPIPE_SZ, 1), 0);
        EXPECT_EQ(::fcntl(writeEnd(), F_SETFL, writeFlags), 0);
        log_ = std::make_unique<UnifiedLog>(lineOutput(writeEnd()), budget);
    }

    ~LogPipe() {
        // The log would wait for whoever reads what it has left.
        closeReadEnd();
        log_.reset();
        ::close(writeEnd());
    }

    LogPipe(const LogPipe&) = delete;
    LogPipe& operator=(const LogPipe&) = delete;

    [[nodiscard]] UnifiedLog& log() const { return *log_; }

    void closeReadEnd() { ::close(std::exchange(ends_[0], -1)); }

    /// The next line, without its line feed; what there is of it if the rest doesn't come.
    std::string line() {
        auto end = read_.find('\n');
        for (pollfd readable{ends_[0], POLLIN, 0}; end == std::string::npos; end = read_.find('\n')) {
            char bytes[4096];
            const auto count = ::poll(&readable, 1, 20'000) == 1 ? ::read(ends_[0], bytes, sizeof bytes) : 0;
            if (count <= 0) {
                ADD_FAILURE() << "no more is written";
                return std::exchange(read_, {});
            }
            read_.append(bytes, static_cast<std::size_t>(count));
        }
        const auto line = read_.substr(0, end);
        read_.erase(0, end + 1);
        return line;
    }

private:
    [[nodiscard]] int writeEnd() const { return ends_[1]; }

    int ends_[2]{-1, -1};
    std::unique_ptr<UnifiedLog> log_;
    std::string read_;
};

} // namespace quorvale::platform::log
