#include "support/UnicodeTestFile.hpp"

#include <QString>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace quorvale::tests {

std::vector<GraphemeBreakCase> graphemeBreakCases() {
    std::vector<GraphemeBreakCase> cases;
    std::ifstream stream("/usr/share/unicode/auxiliary/GraphemeBreakTest.txt");
    EXPECT_TRUE(stream) << "is unicode-data installed?";
    for (std::string line; std::getline(stream, line);) {
        GraphemeBreakCase test{.line = line, .characters = {}};
        std::istringstream words(line.substr(0, line.find('#')));
        for (std::string word; words >> word;) {
            if (word == "÷") {
                test.characters.emplace_back();
            } else if (word != "×") {
                const char32_t scalar = static_cast<char32_t>(std::stoul(word, nullptr, 16));
                test.characters.back() += QString::fromUcs4(&scalar, 1).toStdString();
            }
        }
        if (!test.characters.empty()) {
            // The last mark stands at the end of the text.
            test.characters.pop_back();
            cases.push_back(std::move(test));
        }
    }
    return cases;
}

} // namespace quorvale::tests
