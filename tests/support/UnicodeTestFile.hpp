#pragma once

#include <string>
#include <vector>

namespace quorvale::tests {

struct GraphemeBreakCase {
    std::string line; ///< as it stands in the file
    std::vector<std::string> characters;
};

/// The cases of Unicode's GraphemeBreakTest.txt, which Debian's unicode-data installs. A missing file is a failure of
/// the test.
std::vector<GraphemeBreakCase> graphemeBreakCases();

} // namespace quorvale::tests
