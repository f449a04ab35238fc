#pragma once

#include "platform/log/Entry.hpp"

#include <memory>

namespace quorvale::platform::log {

/// Where log messages are kept beyond the process. Used by one thread at a time, which it may keep waiting; never fails
/// to its caller: a message that can't be kept is lost.
class Output {
public:
    virtual ~Output() = default;

    /// May hold the message back until `flush`.
    virtual void write(const Entry& entry) = 0;

    virtual void flush() {}
};

/// The systemd journal's native protocol (https://systemd.io/JOURNAL_NATIVE_PROTOCOL/): MESSAGE is the composed text,
/// PRIORITY the syslog priority (6 for info, 3 for error), and SUBSYSTEM, CATEGORY and FORMAT are fields of our own. A
/// message has the time at which the journal took it, which its clients can't set.
std::unique_ptr<Output> journalOutput();

/// One line an entry on the file descriptor: time in UTC (ISO 8601), subsystem, category, level, composed text.
/// Control characters of the text, line feeds among them, are written as escapes (\n, \t, \xNN). Several lines go into
/// one write, but no more than a pipe takes as a whole, so that nothing of other processes gets between them.
std::unique_ptr<Output> lineOutput(int fileDescriptor);

/// The journal where one runs, standard error where none does.
std::unique_ptr<Output> systemOutput();

} // namespace quorvale::platform::log
