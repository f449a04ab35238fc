#pragma once

#include <cstddef>

namespace quorvale::bench {

/// How often this thread has called `operator new` so far. Only in programs that call this are the calls counted.
std::size_t allocations();

} // namespace quorvale::bench
