#pragma once

#include "platform/log/UnifiedLog.hpp"
#include "ui/logs/LogStore.hpp"

#include <cstddef>
#include <memory>
#include <string>

namespace quorvale::bench {

/// A helper's log of so many messages, one every ten seconds, with a store of the lines that they make.
struct SampleLog {
    explicit SampleLog(std::size_t count);

    platform::log::UnifiedLog log;
    platform::log::Logger logger;
    ui::logs::LogStore lines;
};

} // namespace quorvale::bench
