#include "agent_link/AgentCommunication.hpp"
#include "agent_link/HelperXPC.hpp"
#include "support/BusPeer.hpp"
#include "support/PrivateBus.hpp"
#include "support/RecordedLog.hpp"
#include "support/waitUntil.hpp"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <compare>
#include <cstdlib>
#include <functional>
#include <future>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <ranges>
#include <semaphore>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

// Random histories of the link, its agents and the bus, compared with a model of what may come of them. What happens
// at the same time in different processes happens in the model in every order that each of them leaves open.

namespace quorvale::agent_link {

namespace {

using namespace std::chrono_literals;
using tests::BusPeer;

constexpr auto active = R"({"active":true})";
constexpr auto inactive = R"({"active":false})";

constexpr auto proxyError = "error: Error creating provider proxy: <private>";
constexpr auto registrationError = "error: Failed to register client with agent: <private>";
constexpr auto invalidated = "Helper XPC: Connection invalidated";

/// A way for an agent to deal with a question for its state, and the line that comes of it.
struct Policy {
    void (*answer)(BusPeer& agent, sd_bus_message* call);
    const char* line;
};

constexpr std::size_t toHold = 0;
constexpr std::size_t toSayYes = 1;
constexpr auto policies = std::to_array<Policy>({
    {nullptr, nullptr},
    {[](auto& agent, auto* call) { agent.answer(call, "as", 1, active); }, "Initial State Changed: true"},
    {[](auto& agent, auto* call) { agent.answer(call, "as", 1, inactive); }, "Initial State Changed: false"},
    {[](auto& agent, auto* call) {
         agent.answer(call, "as", 1, active);
         agent.answer(call, "as", 1, inactive);
     },
     "Initial State Changed: true"},
    {[](auto& agent, auto* call) { agent.answer(call, "as", 0); }, nullptr},
    {[](auto& agent, auto* call) { agent.answer(call, "as", 2, active, active); }, proxyError},
    {[](auto& agent, auto* call) { agent.answer(call, "s", "text"); }, proxyError},
    {[](auto& /*agent*/, auto* call) { sd_bus_reply_method_errorf(call, "com.example.Error", "no"); }, proxyError},
    {[](auto& agent, auto* call) { agent.answer(call, "as", 1, "{}"); },
     "error: Failed to decode the agent state: key not found (active) at top level: No value for this key."},
});

/// What can be told of the world from outside: what was logged and applied since the last comparison, and whom the
/// newest connection listens to.
struct Sight {
    std::map<std::string, int> lines;
    std::vector<bool> applied;
    bool isAlive = false;
    std::array<bool, 2> accepts{}; ///< by agent
    std::size_t held = 0;          ///< its questions that agents have yet to answer
    auto operator<=>(const Sight&) const = default;

    /// Of a status, it is applied, too.
    void log(const std::string& line) {
        ++lines[line];
        if (line.ends_with(": true") || line.ends_with(": false")) {
            applied.push_back(line.ends_with("true"));
        }
    }

    friend void PrintTo(const Sight& sight, std::ostream* out) {
        *out << testing::PrintToString(
            std::tuple(sight.lines, sight.applied, sight.isAlive, sight.accepts, sight.held));
    }
};

/// What the world may be like.
struct Model {
    enum class Phase : std::uint8_t { asking, starting, live, dead };

    struct Link {
        Phase phase = Phase::asking;
        int registrations = 0; ///< delivered without the connection's knowing yet
        auto operator<=>(const Link&) const = default;
    };

    struct Agent {
        std::size_t policy = toSayYes;
        std::vector<std::size_t> unread; ///< state requests, by their connections
        std::vector<std::size_t> held;
        auto operator<=>(const Agent&) const = default;
    };

    bool hasBus = true;
    std::optional<std::size_t> owner;
    std::vector<Link> links; ///< the connections that there have been
    std::array<Agent, 2> agents;
    Sight seen;

    auto operator<=>(const Model&) const = default;

    void log(const std::string& line) { seen.log(line); }

    [[nodiscard]] Sight sight() const {
        auto now = seen;
        now.isAlive = !links.empty() && links.back().phase != Phase::dead;
        now.accepts = {now.isAlive && owner == 0, now.isAlive && owner == 1};
        now.held = agents[0].held.size() + agents[1].held.size();
        return now;
    }

    void setOwner(std::optional<std::size_t> next) {
        if (!hasBus) {
            return;
        }
        for (const auto& link : links) {
            if (owner && owner != next && (link.phase == Phase::live || link.phase == Phase::starting)) {
                log("Helper XPC: Connection interrupted");
            }
        }
        owner = next;
    }

    void end(std::size_t link) {
        if (links[link].phase == Phase::dead) {
            return;
        }
        for (auto& agent : agents) {
            for (auto left = std::erase(agent.unread, link) + std::erase(agent.held, link); left > 0; --left) {
                log(proxyError);
            }
        }
        for (; links[link].registrations > 0; --links[link].registrations) {
            log(registrationError);
        }
        links[link].phase = Phase::dead;
        log(invalidated);
    }

    void release(std::size_t agent) {
        if (owner == agent) {
            setOwner({});
        }
    }

    void crash(std::size_t agent) {
        release(agent);
        auto& [policy, unread, held] = agents[agent];
        for (auto left = unread.size() + held.size(); left > 0; --left) {
            log(proxyError);
        }
        unread.clear();
        held.clear();
        policy = toSayYes;
    }

    void registerOn(std::size_t link) {
        if (links[link].phase == Phase::dead || !owner) {
            log(registrationError);
        } else {
            ++links[link].registrations;
        }
    }

    void request(std::size_t link) {
        if (links[link].phase == Phase::dead || !owner) {
            log(proxyError);
        } else {
            agents[*owner].unread.push_back(link);
        }
    }

    void push(std::size_t agent, std::size_t link, bool value) {
        if (owner == agent && links[link].phase != Phase::dead && links[link].phase != Phase::asking) {
            log(value ? "Helper: Agent State: true" : "Helper: Agent State: false");
        }
    }

    void answerHeld(std::size_t agent, bool value) {
        for (auto left = std::exchange(agents[agent].held, {}).size(); left > 0; --left) {
            log(policies[value ? toSayYes : toSayYes + 1].line);
        }
    }

    void read(std::size_t agent) {
        auto& [policy, unread, held] = agents[agent];
        const auto link = unread.front();
        unread.erase(unread.begin());
        if (policy == toHold) {
            held.push_back(link);
        } else if (const auto* const line = policies.at(policy).line) {
            log(line);
        }
    }

    /// What may come next without anybody's doing anything more.
    [[nodiscard]] std::vector<Model> successors() const {
        std::vector<Model> next;
        for (std::size_t agent = 0; agent < agents.size(); ++agent) {
            if (!agents[agent].unread.empty()) {
                next.emplace_back(*this).read(agent);
            }
        }
        for (std::size_t link = 0; link < links.size(); ++link) {
            if (links[link].registrations > 0) {
                next.emplace_back(*this).links[link].registrations = 0;
            }
            if (links[link].phase == Phase::starting) {
                auto& started = next.emplace_back(*this);
                if (owner) {
                    started.links[link].phase = Phase::live;
                } else {
                    started.end(link);
                }
            }
        }
        return next;
    }
};

struct Move {
    std::function<void(Model&)> change;
    /// The bus may see its process's end before it has read what that sent just before.
    bool isEnd = false;
};

/// What happens in each of several places, in order.
using Moves = std::map<std::string, std::vector<Move>>;
constexpr auto nowhere = "";

/// The worlds in which the moves may end when they start in one of `from`. Those in no place depend on none of the
/// others.
std::set<Model> outcomes(const std::set<Model>& from, Moves moves) {
    const auto independent = std::exchange(moves[nowhere], {});
    using Node = std::pair<Model, std::map<std::string, std::size_t>>;
    std::set<Node> seen;
    std::vector<Node> open;
    std::set<Model> ends;
    const auto visit = [&](Node node) {
        if (seen.insert(node).second) {
            open.push_back(std::move(node));
        }
    };
    for (auto model : from) {
        for (const auto& move : independent) {
            move.change(model);
        }
        visit({model, {}});
    }
    while (!open.empty()) {
        const auto [model, done] = open.back();
        open.pop_back();
        const auto ahead = model.successors();
        bool isEnd = ahead.empty();
        for (const auto& next : ahead) {
            visit({next, done});
        }
        for (const auto& [place, list] : moves) {
            const auto at = done.contains(place) ? done.at(place) : 0;
            for (auto next = at; next < list.size(); ++next) {
                isEnd = false;
                if (next == at || list[next].isEnd) {
                    Node node{model, done};
                    list[next].change(node.first);
                    node.second[place] = next + 1;
                    visit(std::move(node));
                }
            }
        }
        if (isEnd) {
            ends.insert(model);
        }
    }
    return ends;
}

class World {
public:
    World(std::uint64_t seed, int events) : random_(seed) {
        setenv("DBUS_SYSTEM_BUS_ADDRESS", bus_.address().c_str(), 1);
        startPeers();
        while (events > 0 && !testing::Test::HasFailure()) {
            events -= step();
        }
        // Nothing may still be on its way to the log when that ends.
        letTheDelayPass();
        if (Moves moves; !testing::Test::HasFailure()) {
            settle(moves);
        }
        if (testing::Test::HasFailure()) {
            const auto last = history_ | std::views::drop(history_.size() - std::min<std::size_t>(history_.size(), 20));
            ADD_FAILURE() << "after " << history_.size() << " events, the last of which were "
                          << testing::PrintToString(std::vector(last.begin(), last.end()));
        }
    }

    ~World() {
        if (const auto& connection = link_->clientConnection()) {
            connection->invalidate();
        }
        // The log ends, to which they may still have something to say.
        now_ = {};
        followTheDead();
    }

private:
    struct Agent {
        std::size_t policy = toSayYes;
        std::vector<std::shared_ptr<sd_bus_message>> held;
        std::unique_ptr<BusPeer> peer; ///< everything above is its thread's while there is one
    };

    [[nodiscard]] std::size_t connections() const { return made_.size(); }

    std::size_t pick(std::size_t count) { return random_() % count; }

    void note(std::string event) { history_.push_back(std::move(event)); }

    void startAgent(std::size_t index) {
        auto& agent = agents_[index];
        agent.policy = toSayYes;
        agent.peer = std::make_unique<BusPeer>(bus_.address(), [&agent](BusPeer& self, sd_bus_message* call) {
            if (sd_bus_message_is_method_call(call, nullptr, "agentState") == 0) {
                return;
            }
            if (agent.policy == toHold) {
                agent.held.emplace_back(sd_bus_message_ref(call), &sd_bus_message_unref);
            } else {
                policies.at(agent.policy).answer(self, call);
            }
        });
    }

    void endAgent(std::size_t index) {
        agents_[index].peer.reset();
        agents_[index].held.clear();
    }

    /// The agents, and a stranger who learns of each connection by the first thing that it asks the bus for. (Nobody
    /// overhears a question that the bus answers with an error.)
    void startPeers() {
        startAgent(0);
        startAgent(1);
        stranger_ = std::make_unique<BusPeer>(bus_.address(), [this](BusPeer& self, sd_bus_message* call) {
            if (sd_bus_message_get_sender(call) != self.name()) {
                met_.emplace_back(sd_bus_message_get_sender(call));
            }
        });
        stranger_->run([this] {
            stranger_->call({"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "AddMatch"}, {},
                            "s", "eavesdrop='true',type='method_call',member='AddMatch'");
        });
    }

    /// The name of the error that a call of `client` is answered with; an empty one if it succeeds.
    static std::string ask(BusPeer& peer, const std::string& client) {
        const auto answer = std::make_shared<std::promise<std::string>>();
        peer.post([answer, &peer, client] {
            callClient(peer, client, "updateRulesStatus", true,
                       [answer](std::string_view error) { answer->set_value(std::string(error)); });
        });
        auto error = answer->get_future();
        const bool isAnswered = error.wait_for(20s) == std::future_status::ready;
        EXPECT_TRUE(isAnswered);
        return isAnswered ? error.get() : "none";
    }

    /// Learns the name of the connection that is alive. Old ones may be, too, for a moment.
    void findClient() {
        stranger_->run([this] { std::ranges::move(std::exchange(met_, {}), std::back_inserter(clients_)); });
        std::erase_if(clients_,
                      [this](const auto& name) { return ask(*stranger_, name) != SD_BUS_ERROR_ACCESS_DENIED; });
        client_ = clients_.size() == 1 ? clients_.front() : "";
    }

    static std::string place(const char* kind, std::size_t index) { return kind + std::to_string(index); }

    /// Does something without waiting for what comes of it. `isStalled`: the bus does not let anyone in.
    void act(Moves& moves, bool isStalled) {
        const auto index = pick(2);
        const auto value = pick(2) == 0;
        auto& agent = agents_[index];
        auto& ofAgent = moves[place("agent", index)];
        const auto name = place("agent ", index);
        const auto text = std::string(value ? " true" : " false");
        const auto newest = connections() - 1;
        const auto choice = pick(40);
        constexpr std::size_t choicesOfOthers = 12;
        if (choice >= choicesOfOthers && !agent.peer && !isStalled && isBusUp_) {
            startAgent(index);
        }
        if (choice >= choicesOfOthers && !agent.peer) {
            return;
        }
        if (choice < 3) {
            connect(moves);
        } else if (choice < 4) {
            if (link_->clientConnection()) {
                note("invalidate");
                link_->clientConnection()->invalidate();
                moves[place("link", newest)].emplace_back([=](Model& model) { model.end(newest); });
            }
        } else if (choice < 6) {
            note(name + " crashes");
            endAgent(index);
            ofAgent.emplace_back([=](Model& model) { model.crash(index); }, true);
        } else if (choice < 11) {
            request(moves);
        } else if (choice < 12) {
            if (!isStalled && pick(4) == 0) {
                note("the bus ends");
                stopBus(moves);
            }
        } else if (choice < 18) {
            note(name + " takes the name");
            agent.peer->post([&peer = *agent.peer] { peer.own(HelperXPC::agentService().name); });
            ofAgent.emplace_back([=](Model& model) { model.setOwner(index); });
        } else if (choice < 20) {
            note(name + " releases the name");
            agent.peer->post([&peer = *agent.peer] { peer.release(HelperXPC::agentService().name); });
            ofAgent.emplace_back([=](Model& model) { model.release(index); });
        } else if (choice < 25) {
            const auto policy = pick(policies.size());
            note(name + " gets policy " + std::to_string(policy));
            agent.peer->post([&agent, policy] { agent.policy = policy; });
            ofAgent.emplace_back([=](Model& model) { model.agents[index].policy = policy; });
        } else if (choice < 28) {
            note(name + " answers what it holds" + text);
            agent.peer->post([&agent, &peer = *agent.peer, value] {
                for (const auto& call : std::exchange(agent.held, {})) {
                    peer.answer(call.get(), "as", 1, value ? active : inactive);
                }
            });
            ofAgent.emplace_back([=](Model& model) { model.answerHeld(index, value); });
        } else if (knownConnection_ == connections() && connections() > 0) {
            const auto isStranger = choice < 30;
            note((isStranger ? "a stranger" : name) + " pushes" + text);
            auto& peer = *(isStranger ? stranger_ : agent.peer);
            peer.post([&peer, client = client_, value] { callClient(peer, client, "updateProtectionStatus", value); });
            if (!isStranger) {
                ofAgent.emplace_back([=](Model& model) { model.push(index, newest, value); });
            }
        }
    }

    static void callClient(BusPeer& peer, const std::string& client, const char* method, bool value,
                           BusPeer::Outcome outcome = {}) {
        peer.call({client, "/com/quorvale/QuorvaleHelper", "com.quorvale.ClientCommunication", method},
                  std::move(outcome), "b", int{value});
    }

    void connect(Moves& moves) {
        note("connect");
        auto& now = moves[nowhere];
        const bool hadOne = link_->clientConnection() != nullptr;
        const auto old = connections() - 1;
        mainQueue_.asyncAfter(platform::queue::MainQueue::Clock::now() + 500ms, [this] { ++firedBefore_; });
        link_->connectToAgent();
        mainQueue_.asyncAfter(platform::queue::MainQueue::Clock::now() + 500ms, [this] { ++firedAfter_; });
        now.emplace_back([hadOne](Model& model) {
            model.log("Helper XPC: Attempting to connect to agent");
            if (hadOne) {
                model.log("Helper XPC: Invalidating existing connection");
            }
        });
        if (hadOne) {
            moves[place("link", old)].emplace_back([old](Model& model) { model.end(old); });
        }
        if (!link_->clientConnection()) {
            EXPECT_FALSE(isBusUp_);
            delayed_.emplace_back();
            now.emplace_back([](Model& model) { model.log("Helper XPC: Failed to connect to agent"); });
            return;
        }
        const auto link = connections() - 1;
        delayed_.emplace_back(link);
        // The model has room for the connection from the beginning; it is asked about once it has resumed.
        std::set<Model> withLink;
        for (auto model : possible_) {
            model.links.emplace_back();
            withLink.insert(std::move(model));
        }
        possible_ = std::move(withLink);
        now.emplace_back([](Model& model) {
            model.log("Helper XPC: resuming XPC connection");
            model.log("Helper XPC: Connection resumed");
        });
        moves[place("link", link)].emplace_back([link](Model& model) {
            model.links[link].phase = model.owner ? Model::Phase::live : Model::Phase::starting;
        });
    }

    void request(Moves& moves) {
        note("request");
        link_->requestAgentState();
        requested(moves);
    }

    /// Nowhere for a connection that is dead whatever happens.
    std::string placeOf(std::size_t link, const Moves& moves) const {
        const auto place = World::place("link", link);
        const bool isDead = !moves.contains(place) && std::ranges::all_of(possible_, [&](const Model& model) {
            return model.links[link].phase == Model::Phase::dead;
        });
        return isDead ? nowhere : place;
    }

    void requested(Moves& moves) {
        if (link_->clientConnection()) {
            moves[placeOf(connections() - 1, moves)].emplace_back(
                [link = connections() - 1](Model& model) { model.request(link); });
        } else {
            moves[nowhere].emplace_back(
                [](Model& model) { model.log("error: Failed to create a remote object proxy for the provider"); });
        }
    }

    void stopBus(Moves& moves) {
        bus_.stop();
        isBusUp_ = false;
        endAgent(0);
        endAgent(1);
        stranger_.reset();
        moves["bus"].emplace_back([](Model& model) {
            for (std::size_t link = 0; link < model.links.size(); ++link) {
                model.end(link);
            }
            model.crash(0);
            model.crash(1);
            model.hasBus = false;
        });
    }

    /// Runs the main queue. Work that was delayed is another move.
    void runMainQueue(Moves& moves) {
        QCoreApplication::processEvents();
        while (firedBefore_ != firedAfter_) {
            QCoreApplication::processEvents();
        }
        for (; handled_ < firedAfter_; ++handled_) {
            if (const auto link = delayed_[handled_]) {
                note("registration on connection " + std::to_string(*link) + ", request");
                moves[placeOf(*link, moves)].emplace_back([link = *link](Model& model) { model.registerOn(link); });
                requested(moves);
            }
        }
    }

    /// Lets everyone who is there call the newest connection, three times: whatever was posted to it, sent by it,
    /// answered and received before has had its effect then.
    void exchangeMessages() {
        now_ = {};
        for (int round = 0; round < 3 && isBusUp_; ++round) {
            findClient();
            // Without a connection the bus itself answers, with an error.
            const auto name = client_.empty() ? "org.freedesktop.DBus" : client_;
            now_ = {};
            now_.isAlive = !client_.empty();
            for (std::size_t index = 0; index < agents_.size(); ++index) {
                if (auto& [policy, held, peer] = agents_[index]; peer) {
                    now_.accepts[index] = ask(*peer, name).empty();
                    peer->run([&] {
                        now_.held += static_cast<std::size_t>(std::ranges::count_if(
                            held, [&](const auto& call) { return sd_bus_message_get_sender(call.get()) == name; }));
                    });
                }
            }
        }
    }

    /// Whatever was posted to connections that are dead has had its effect when this returns.
    void followTheDead() {
        static constexpr auto message = AgentCommunication::reloadCloud;
        const auto dead = std::span(made_).first(connections() - (now_.isAlive ? 1 : 0));
        const auto failed = std::make_shared<std::counting_semaphore<>>(0);
        for (const auto& connection : dead) {
            connection->remoteObjectProxyWithErrorHandler([failed](const auto&) { failed->release(); }).send(message);
        }
        for (std::size_t waited = 0; waited < dead.size(); ++waited) {
            EXPECT_TRUE(failed->try_acquire_for(20s));
        }
    }

    /// How many events there were.
    int step() {
        const auto before = history_.size();
        Moves moves;
        if (!isBusUp_ && pick(3) == 0) {
            note("the bus comes back");
            bus_.start();
            isBusUp_ = true;
            met_.clear();
            clients_.clear();
            startPeers();
            moves[nowhere].emplace_back([](Model& model) {
                model.hasBus = true;
                model.agents = {};
            });
        }
        runMainQueue(moves);
        const bool isStalled = isBusUp_ && pick(8) == 0;
        if (isStalled) {
            note("the bus stalls");
            bus_.stall();
        }
        for (auto actions = pick(2) == 0 ? 1 : 1 + pick(4); actions > 0; --actions) {
            act(moves, isStalled);
        }
        if (isStalled) {
            bus_.goOn();
        }
        // What is due all at once comes in too many orders to follow if it is much.
        const auto waiting = delayed_.size() - firedAfter_;
        if (waiting > 5 || (waiting > 0 && pick(25) == 0)) {
            note("the delay passes");
            letTheDelayPass();
        }
        settle(moves);
        return static_cast<int>(history_.size() - before);
    }

    void letTheDelayPass() {
        EXPECT_TRUE(tests::waitUntil([&] { return firedAfter_ == delayed_.size(); }));
    }

    void settle(Moves& moves) {
        std::set<Model> matching;
        std::set<Model> ends;
        Sight seen;
        bool isSettled = false;
        const auto count = [&] {
            std::size_t all = 0;
            for (const auto& [place, list] : moves) {
                all += list.size();
            }
            return all;
        };
        const auto isOver = [&](std::size_t followed) {
            exchangeMessages();
            runMainQueue(moves);
            if (count() != followed) {
                return true;
            }
            seen = observed();
            matching.clear();
            std::ranges::copy_if(ends, std::inserter(matching, matching.end()),
                                 [&](const Model& end) { return end.sight() == seen; });
            if (matching.empty()) {
                return false;
            }
            followTheDead();
            return observed() == seen;
        };
        // Work that runs meanwhile is to be followed, too.
        for (std::size_t followed = SIZE_MAX; followed != count();) {
            followed = count();
            ends = outcomes(possible_, moves);
            const auto deadline = std::chrono::steady_clock::now() + 20s;
            while (!(isSettled = isOver(followed)) && std::chrono::steady_clock::now() < deadline) {
                std::this_thread::yield();
            }
        }
        if (!isSettled) {
            ADD_FAILURE() << "observed: " << testing::PrintToString(seen);
            for (const auto& end : ends) {
                ADD_FAILURE() << "possible: " << testing::PrintToString(end.sight());
            }
        }
        possible_.clear();
        for (auto model : matching) {
            model.seen = {};
            possible_.insert(std::move(model));
        }
        for (const auto& [line, times] : seen.lines) {
            linesBefore_ += static_cast<std::size_t>(times);
        }
        values_.clear();
        knownConnection_ = now_.isAlive ? connections() : 0;
    }

    /// The lines and the values since the last comparison.
    Sight observed() {
        auto seen = now_;
        const auto lines = log_.lines();
        for (auto line = linesBefore_; line < lines.size(); ++line) {
            seen.log(lines[line]);
        }
        if (!values_.empty()) {
            values_.back() = status_->status();
        }
        seen.applied = values_;
        return seen;
    }

    std::mt19937_64 random_;
    tests::PrivateBus bus_;
    bool isBusUp_ = true;
    std::array<Agent, 2> agents_;
    std::vector<std::string> met_;     ///< names of new connections; the stranger's thread's
    std::vector<std::string> clients_; ///< those that may be alive
    std::string client_;               ///< the one that is
    std::unique_ptr<BusPeer> stranger_;

    tests::RecordedLog log_;
    std::size_t linesBefore_ = 0;
    platform::queue::MainQueue mainQueue_;
    std::shared_ptr<status::StatusManager> status_ = std::make_shared<status::StatusManager>(mainQueue_);
    std::vector<bool> values_;
    platform::observable::Subscription observation_ = status_->objectWillChange([this] {
        if (!values_.empty()) {
            values_.back() = status_->status();
        }
        values_.push_back(false);
    });
    std::shared_ptr<HelperXPC> link_ = std::make_shared<HelperXPC>(HelperXPC::Collaborators{
        .mainQueue = mainQueue_,
        .logger = log_.logger(),
        .makeConnection =
            [this] {
                auto connection = platform::connection::Connection::toService(HelperXPC::agentService());
                if (connection) {
                    made_.push_back(connection);
                }
                return connection;
            },
        .sleep = [](std::chrono::seconds) {},
        .statusManager = [this] { return status_; },
    });
    std::vector<std::shared_ptr<platform::connection::Connection>> made_; ///< every connection so far
    std::size_t knownConnection_ = 0;                 ///< how many there were when the newest one was last alive
    std::vector<std::optional<std::size_t>> delayed_; ///< by call of connectToAgent: the connection it made
    std::size_t firedBefore_ = 0;
    std::size_t firedAfter_ = 0;
    std::size_t handled_ = 0;

    Sight now_; ///< without lines and values
    std::set<Model> possible_{Model{}};
    std::vector<std::string> history_;
};

std::uint64_t setting(const char* variable, std::uint64_t otherwise) {
    const auto* const text = std::getenv(variable);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

} // namespace

/// From two seeds, to run at the same time. QUORVALE_SEED and QUORVALE_EVENTS choose other histories and more of them.
class LinkHistoryTest : public testing::TestWithParam<std::uint64_t> {};

TEST_P(LinkHistoryTest, LogsAndAppliesWhatTheModelAllows) {
    constexpr int eventsOfOne = 250;
    auto seed = setting("QUORVALE_SEED", GetParam());
    auto left = static_cast<int>(setting("QUORVALE_EVENTS", 5'000));
    for (; left > 0 && !HasFailure(); left -= eventsOfOne, ++seed) {
        SCOPED_TRACE("QUORVALE_SEED=" + std::to_string(seed));
        auto world = std::make_unique<World>(seed, std::min(left, eventsOfOne));
        if (HasFailure()) {
            // What went wrong may still be at work on it.
            std::ignore = world.release();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, LinkHistoryTest, testing::Values(1, 21));

} // namespace quorvale::agent_link
