#include "link/Agent.hpp"
#include "link/Helper.hpp"
#include "support/Figures.hpp"

#include <QCoreApplication>
#include <QProcess>

#include <cstdlib>

namespace {

constexpr std::size_t turns = 9;
constexpr std::size_t pushes = 20'000;
constexpr std::size_t window = 64;

} // namespace

/// Measures how many pushes a second the helper takes, from an agent that sends as fast as it can. They count when the
/// last is answered and its line is in the log. Arguments: the helper, the bare receiver.
int main(int argc, char** argv) {
    using namespace quorvale::bench;
    const QCoreApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    Agent agent;
    Helper helper(arguments[1]);
    const auto ours = agent.waitForClient();
    QProcess receiver;
    start(receiver, arguments[2]);
    const auto bare = agent.waitForClient();

    const auto ofOurs = [&] {
        const auto start = std::chrono::steady_clock::now();
        agent.flood(ours, pushes, window);
        helper.waitForLines(pushes, "Helper: Agent State: ");
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        helper.waitForRest();
        return pushes / taken.count();
    };
    const auto ofBare = [&] { return pushes / agent.flood(bare, pushes, window).count(); };
    ofOurs();
    ofBare();
    Figure figure{.what = "pushes a second", .ours = {}, .baselineName = "bare sd-bus", .baseline = {}, .least = 0.9};
    sampleByTurns(turns, figure, ofOurs, ofBare);
    receiver.kill();
    receiver.waitForFinished();
    return print({figure}) ? EXIT_SUCCESS : EXIT_FAILURE;
}
