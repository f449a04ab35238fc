#include "link/Agent.hpp"
#include "link/Helper.hpp"
#include "link/Screen.hpp"
#include "support/Figures.hpp"

#include <QCoreApplication>
#include <QProcess>
#include <QThread>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace quorvale::bench {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t latencies = 201;
constexpr std::size_t floods = 3;
constexpr std::size_t pushes = 20'000;
constexpr std::size_t window = 64;
/// Milliseconds of one frame of a screen that shows 60 a second, as timers count them.
constexpr double frame = 16;

/// A client whose window shows the status.
class Shown {
public:
    Shown(Agent& agent, Screen& screen, std::string client)
        : agent_(agent), screen_(screen), client_(std::move(client)) {
        const auto before = settled(false);
        settled(true);
        const auto place = screen_.change(before);
        if (!place) {
            std::fputs("a push changes nothing on the screen\n", stderr);
            std::_Exit(EXIT_FAILURE);
        }
        place_ = *place;
        settled(false);
        off_ = screen_.pixel(place_);
    }

    /// Milliseconds from a push until the screen shows it.
    double latency() {
        const auto before = screen_.pixel(place_);
        const auto start = std::chrono::steady_clock::now();
        agent_.push(client_, status_ = !status_);
        do {
            screen_.waitForPaint(place_);
        } while (screen_.pixel(place_) == before);
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
        agent_.waitForAnswers();
        // Each at another point of whatever goes by a clock.
        QThread::usleep(20'000 + 7'919 * (++count_ % 10));
        screen_.countPaints(place_, 0ms);
        return taken.count();
    }

    /// How often a second it paints while it is flooded.
    double paintsUnderFlood() {
        agent_.flood(client_, pushes, window);
        const auto paints = screen_.countPaints(place_, 300ms);
        if (screen_.pixel(place_) != off_) {
            std::fputs("the last push is not what the screen shows\n", stderr);
            std::_Exit(EXIT_FAILURE);
        }
        return paints.aSecond();
    }

private:
    std::vector<std::uint32_t> settled(bool status) {
        agent_.push(client_, status_ = status);
        agent_.waitForAnswers();
        screen_.countPaints({}, 300ms);
        return screen_.pixels();
    }

    Agent& agent_;
    Screen& screen_;
    const std::string client_;
    Place place_{};
    std::uint32_t off_ = 0;
    bool status_ = false;
    unsigned count_ = 0;
};

int run(const QStringList& arguments) {
    Agent agent;
    Screen screen;
    QProcess widget;
    start(widget, arguments[2]);
    Shown baseline(agent, screen, agent.waitForClient());
    const Helper helper(arguments[1]);
    const auto client = agent.waitForClient();
    helper.openWindow();
    Shown ours(agent, screen, client);

    constexpr auto name = "a widget that changes colour";
    Figure latency{.what = "push to pixels, ms", .ours = {}, .baselineName = name, .baseline = {}, .mostOfOurs = frame};
    sampleByTurns(latencies, latency, [&] { return ours.latency(); }, [&] { return baseline.latency(); });
    Figure paints{.what = "paints a second under a flood of pushes",
                  .ours = {},
                  .baselineName = name,
                  .baseline = {},
                  .mostOfOurs = 1000 / frame};
    sampleByTurns(floods, paints, [&] { return ours.paintsUnderFlood(); }, [&] { return baseline.paintsUnderFlood(); });
    widget.kill();
    widget.waitForFinished();
    return print({latency, paints}) ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

} // namespace quorvale::bench

/// Measures how long a push takes to be seen in an open window, and how often a flood of them is painted. Arguments:
/// the helper, minimal_window.
int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return quorvale::bench::run(QCoreApplication::arguments());
}
