#pragma once

#include <cstdlib>

namespace quorvale::fuzz {

/// Ends the run with a finding unless `condition` holds.
inline void check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

} // namespace quorvale::fuzz
