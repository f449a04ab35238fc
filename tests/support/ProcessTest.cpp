#include "support/Process.hpp"

#include <gtest/gtest.h>

#include <csignal>

namespace quorvale::tests {

TEST(ProcessTest, ExchangesLinesAndGivesEachOnce) {
    Process cat({.program = "cat", .arguments = {}, .environment = {}});
    cat.send("one");
    cat.send("two");
    EXPECT_EQ(cat.waitForLine("o"), "one");
    EXPECT_EQ(cat.waitForLine("o"), "two");
    cat.closeInput();
    EXPECT_EQ(cat.waitForExit(), (Process::Exit{.code = 0, .bySignal = false}));
    EXPECT_EQ(cat.waitForLine("o"), std::nullopt) << "an ended child gives no further line";
}

TEST(ProcessTest, TellsAnExitStatusFromASignal) {
    Process failing({.program = "sh",
                     .arguments = {"-c", "echo $GREETING >&2; exit 3"},
                     .environment = {{"GREETING", "hello"}},
                     .errorOutput = Process::ErrorOutput::Merged});
    EXPECT_EQ(failing.waitForLine("hello"), "hello");
    EXPECT_EQ(failing.waitForExit(), (Process::Exit{.code = 3, .bySignal = false}));

    Process terminated({.program = "cat", .arguments = {}, .environment = {}});
    terminated.terminate();
    EXPECT_EQ(terminated.waitForExit(), (Process::Exit{.code = SIGTERM, .bySignal = true}));
}

} // namespace quorvale::tests
