#include "agent_link/AgentCommunication.hpp"
#include "agent_link/HelperXPC.hpp"
#include "link/Agent.hpp"
#include "link/BareClient.hpp"
#include "link/Helper.hpp"
#include "platform/connection/Connection.hpp"
#include "support/Figures.hpp"

#include <QCoreApplication>
#include <QProcess>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <semaphore>
#include <string>
#include <string_view>

namespace {

using namespace quorvale;
using agent_link::AgentCommunication;
using platform::connection::Connection;

constexpr std::size_t turns = 9;
constexpr int roundTrips = 3'000;

/// Microseconds from a request until its reply is there, with a thread that waits for one after the other.
template <typename Request>
double roundTrip(const Request& request) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < roundTrips; ++i) {
        std::binary_semaphore replied(0);
        request([&](const std::optional<std::string>& state) {
            if (!state) {
                std::abort();
            }
            replied.release();
        });
        replied.acquire();
    }
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count() / roundTrips;
}

} // namespace

/// Measures a request for the agent's state, from the thread that asks to the handler of the reply. With the argument
/// "agent" it is the agent that answers.
int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc == 2 && std::string_view(argv[1]) == "agent") {
        bench::Agent agent;
        std::puts("ready");
        std::fflush(stdout);
        agent.serve();
    }
    QProcess agent;
    bench::start(agent, QCoreApplication::applicationFilePath(), {QStringLiteral("agent")});
    agent.waitForReadyRead();

    const auto connection = Connection::toService(agent_link::HelperXPC::agentService());
    connection->setRemoteObjectInterface(AgentCommunication::interface());
    connection->resume();
    const auto proxy = connection->remoteObjectProxyWithErrorHandler([](const auto& error) {
        std::fprintf(stderr, "%s\n", error.description().c_str());
        std::_Exit(EXIT_FAILURE);
    });
    bench::BareClient bare;

    const auto ofOurs = [&] {
        return roundTrip([&](auto reply) { proxy.send(AgentCommunication::agentState, std::move(reply)); });
    };
    const auto ofBare = [&] { return roundTrip([&](auto reply) { bare.requestState(std::move(reply)); }); };
    ofOurs();
    ofBare();
    bench::Figure figure{
        .what = "state round trip, us", .ours = {}, .baselineName = "bare sd-bus", .baseline = {}, .most = 1.1};
    bench::sampleByTurns(turns, figure, ofOurs, ofBare);
    agent.kill();
    agent.waitForFinished();
    return bench::print({figure}) ? EXIT_SUCCESS : EXIT_FAILURE;
}
