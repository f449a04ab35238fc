#pragma once

#include "platform/log/Entry.hpp"

#include <memory>
#include <string_view>

namespace quorvale::platform::log {

/// Where log messages are kept beyond the process. Used from any thread; never fails to its caller.
class Output {
public:
    virtual ~Output() = default;
    virtual void write(const Entry& entry, std::string_view format) = 0;
};

/// The systemd journal's native protocol (https://systemd.io/JOURNAL_NATIVE_PROTOCOL/): MESSAGE is the composed text,
/// PRIORITY the syslog priority (6 for info, 3 for error), and SUBSYSTEM, CATEGORY and FORMAT are fields of our own.
std::unique_ptr<Output> journalOutput();

/// One line an entry on the file descriptor: time in UTC (ISO 8601), subsystem, category, level, composed text.
/// Control characters of the text, line feeds among them, are written as escapes (\n, \t, \xNN).
std::unique_ptr<Output> lineOutput(int fileDescriptor);

/// The journal where one runs, standard error where none does.
std::unique_ptr<Output> systemOutput();

} // namespace quorvale::platform::log
