#pragma once

#include <string>
#include <utility>
#include <vector>

namespace quorvale::tests {

/// The `name = value` lines, in their order, of a file of hash test vectors that Debian's python3-cryptography-vectors
/// installs, such as "SHA2/SHA256ShortMsg.rsp". A missing file is a failure of the test.
std::vector<std::pair<std::string, std::string>> vectorsIn(const std::string& file);

} // namespace quorvale::tests
