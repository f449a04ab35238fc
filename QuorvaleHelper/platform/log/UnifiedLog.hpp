#pragma once

#include "platform/log/EntryStore.hpp"
#include "platform/log/Output.hpp"

namespace quorvale::platform::log {

/// Where every log message of the process goes: into the store that can be read back, and to the output.
class UnifiedLog {
public:
    /// The log of the process, with the system's output. Created on first use, any thread, and never destroyed:
    /// a connection's queue may still write while the process ends.
    static UnifiedLog& shared();

    /// Without an output, messages go to the store only.
    explicit UnifiedLog(std::unique_ptr<Output> output, std::size_t budget = EntryStore::defaultBudget);

    /// Any thread.
    void write(const Entry& entry, std::string_view format);

    EntryStore& store() { return store_; }

private:
    EntryStore store_;
    std::unique_ptr<Output> output_;
};

} // namespace quorvale::platform::log
