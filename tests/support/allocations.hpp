#pragma once

#include <cstddef>

namespace quorvale::tests {

/// How often this thread has called `operator new` so far. Only in programs that call this are the calls counted.
std::size_t allocations();

} // namespace quorvale::tests
