#include "link/Agent.hpp"
#include "link/Helper.hpp"
#include "support/Figures.hpp"

#include <QCoreApplication>
#include <QProcess>

#include <chrono>
#include <cstdlib>
#include <vector>

namespace {

constexpr std::size_t turns = 9;
constexpr std::size_t pushes = 20'000;
constexpr std::size_t window = 64;
constexpr auto name = "bare sd-bus";

} // namespace

/// Measures how many pushes a second the helper takes, from an agent that sends as fast as it can. They count when the
/// last is answered and its line is in the log. What the window and the icon make of them is in the processor time.
/// Arguments: the helper, the bare receiver.
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

    Figure rate{.what = "pushes a second", .ours = {}, .baselineName = name, .baseline = {}, .least = 0.9};
    Figure cost{.what = "processor time a push, us", .ours = {}, .baselineName = name, .baseline = {}};
    const auto measured = [](const QProcess& process, std::vector<double>& costs, const auto& takePushes) {
        const auto before = processorTimeAtRest(process);
        const auto start = std::chrono::steady_clock::now();
        takePushes();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        costs.push_back(1e6 * (processorTimeAtRest(process) - before).count() / pushes);
        return pushes / taken.count();
    };
    const auto ofOurs = [&] {
        return measured(helper.process(), cost.ours, [&] {
            agent.flood(ours, pushes, window);
            helper.waitForLines(pushes, "Helper: Agent State: ");
        });
    };
    const auto ofBare = [&] { return measured(receiver, cost.baseline, [&] { agent.flood(bare, pushes, window); }); };
    ofOurs();
    ofBare();
    sampleByTurns(turns, rate, ofOurs, ofBare);
    receiver.kill();
    receiver.waitForFinished();
    return print({rate, cost}) ? EXIT_SUCCESS : EXIT_FAILURE;
}
