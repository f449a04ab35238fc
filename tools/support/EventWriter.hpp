#pragma once

#include <QStringList>

#include <functional>

namespace quorvale::simulator {

/// Writes what happens to standard output, each event as one line of words with blanks between, at once.
class EventWriter {
public:
    enum class Timestamps {
        Off,
        /// The first word is the milliseconds of the monotonic clock, whose zero all processes share.
        On,
    };

    void setTimestamps(Timestamps timestamps) { timestamps_ = timestamps; }

    /// Line feeds and backslashes inside a word are written as \n and \\, so that an event stays one line.
    void write(const QStringList& words);

    /// Calls `observer` with each event, without its time, after it has been written.
    void observe(std::function<void(const QString& event)> observer) { observer_ = std::move(observer); }

private:
    Timestamps timestamps_ = Timestamps::Off;
    std::function<void(const QString&)> observer_;
};

} // namespace quorvale::simulator
