#include "support/VectorFile.hpp"

#include <gtest/gtest.h>

#include <fstream>

namespace quorvale::tests {

std::vector<std::pair<std::string, std::string>> vectorsIn(const std::string& file) {
    std::vector<std::pair<std::string, std::string>> vectors;
    std::ifstream stream("/usr/lib/python3/dist-packages/cryptography_vectors/hashes/" + file);
    EXPECT_TRUE(stream) << file << ": is python3-cryptography-vectors installed?";
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        constexpr std::string_view separator = " = ";
        if (const auto end = line.find(separator); end != std::string::npos && !line.starts_with('#')) {
            vectors.emplace_back(line.substr(0, end), line.substr(end + separator.size()));
        }
    }
    return vectors;
}

} // namespace quorvale::tests
