#include "faults/FaultsTest.hpp"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>

namespace quorvale::tests {

namespace {

using testing::AnyOf;
using testing::StartsWith;

using HostilePeersTest = RunningFaultsTest;

constexpr auto clientPath = "/com/quorvale/QuorvaleHelper";
constexpr auto clientInterface = "com.quorvale.ClientCommunication";
constexpr auto application = "org.freedesktop.Application";

const std::vector<std::string> paths{clientPath, "/", "/com/quorvale", "/com/quorvale/QuorvaleHelper/x"};

/// Arguments as the raw peer words them. The deep ones go as far as the bus lets them: 64 levels, of which an element
/// of a dictionary is three.
const auto bodies = [] {
    std::istringstream list(
        "|b|s|d|v|h|as|bb|ss|a{ss}|a{sv}|asa{sv}|sava{sv}|a{sv}ssssd|a{sv}ssssi|(a{sv}av)|a(sa{sv})|v 1 62 v|"
        "a{sv} 1 20|a{sv} 1 60 v|sava{sv} 1 30 av|ay 100000|s 100000|as 10000|a{sv} 20000|a{sv}ssssd 20000|sava{sv} "
        "20000");
    std::vector<std::string> all;
    for (std::string body; std::getline(list, body, '|');) {
        all.push_back(body);
    }
    return all;
}();

std::string signatureOf(const std::string& body) {
    return body.substr(0, body.find(' '));
}

testing::Matcher<std::string> error(const std::string& name) {
    return StartsWith("org.freedesktop.DBus.Error." + name);
}

struct Call {
    std::string path;
    std::string interface;
    std::string method;
    std::string body;

    [[nodiscard]] std::string text() const { return path + ' ' + interface + ' ' + method + ' ' + body; }
};

using Answers = std::function<testing::Matcher<std::string>(const Call&)>;

void expectAnswers(RawPeerProcess& peer, const std::string& destination, const std::vector<Call>& calls,
                   const Answers& expected) {
    std::vector<std::string> commands;
    std::ranges::transform(calls, std::back_inserter(commands),
                           [&](const Call& call) { return "call " + destination + ' ' + call.text(); });
    const auto answers = peer.obey(commands);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_THAT(answers[i], expected(calls[i])) << commands[i];
    }
}

/// What there is to call, and beside each part of it something that there isn't.
std::vector<Call> calls(const std::string& ownInterface, const std::map<std::string, std::string>& methods) {
    std::vector<Call> all;
    for (const auto& path : paths) {
        for (const auto& interface : {ownInterface, std::string("com.quorvale.AgentCommunication")}) {
            for (const auto& [method, signature] : methods) {
                for (const auto& body : bodies) {
                    // What is as far off as that needs no size.
                    if ((path == clientPath && interface == ownInterface) || !body.contains('0')) {
                        all.push_back({path, interface, method, body});
                    }
                }
            }
        }
    }
    return all;
}

const auto unknown = AnyOf(error("UnknownObject"), error("UnknownInterface"), error("UnknownMethod"));

} // namespace

TEST_F(HostilePeersTest, AnswersEveryWrongCallOfTheAgentAndOfStrangersWithTheRightError) {
    const std::map<std::string, std::string> methods{
        {"promptUserWithAboutFlow", "a{sv}ssssd"},
        {"updateProtectionStatus", "b"},
        {"updateRulesStatus", "b"},
        {"updateEventLogDefaults", "s"},
        {"updateGeoDataDefaults", "s"},
        {"sendDefaultsToClientWith", "a{sv}"},
        {"none", ""},
    };
    AgentProcess agent(systemBus_, {"--state", active});
    const auto client = connect(agent);
    RawPeerProcess stranger(systemBus_);
    RawPeerProcess successor(systemBus_);
    replace(agent, successor);
    const auto before = helper_.log();
    const auto answers = [&](const Call& call, bool ofTheAgent) -> testing::Matcher<std::string> {
        if (call.body == "h") {
            return error("NotSupported"); // by the bus: the helper takes no descriptors
        }
        if (call.path != clientPath || call.interface != clientInterface) {
            return unknown;
        }
        if (!ofTheAgent) {
            return error("AccessDenied");
        }
        if (call.method == "none") {
            return error("UnknownMethod");
        }
        return signatureOf(call.body) == methods.at(call.method) ? testing::Matcher<std::string>("ok")
                                                                 : error("InvalidArgs " + call.method + ": argument ");
    };
    auto all = calls(clientInterface, methods);
    expectAnswers(stranger, client, all, [&](const Call& call) { return answers(call, false); });
    std::erase_if(all, [](const Call& call) { return call.method == "updateProtectionStatus" && call.body == "b"; });
    expectAnswers(successor, client, all, [&](const Call& call) { return answers(call, true); });
    for (const auto& [call, argument] :
         {std::pair("promptUserWithAboutFlow a{sv}ssssi", "epoch"), {"updateRulesStatus bb", "number 2"}}) {
        EXPECT_THAT(successor.obey("call " + client + ' ' + clientPath + ' ' + clientInterface + ' ' + call),
                    testing::EndsWith(std::string(": argument ") + argument + " does not decode."));
    }
    EXPECT_EQ(helper_.log(), before);
    EXPECT_TRUE(helper_.shows("Protected"));
}

TEST_F(HostilePeersTest, KeepsToWhatItHasOnTheSessionBus) {
    const std::map<std::string, std::string> methods{
        {"Activate", "a{sv}"}, {"Open", "asa{sv}"}, {"ActivateAction", "sava{sv}"}, {"none", ""}};
    RawPeerProcess stranger(sessionBus_);
    const auto before = helper_.log();
    const auto answers = [&](const Call& call) -> testing::Matcher<std::string> {
        if (call.path != clientPath || call.interface != application || call.method == "none" ||
            signatureOf(call.body) != methods.at(call.method)) {
            return unknown;
        }
        if (call.method == "Activate") {
            return "ok";
        }
        return call.method == "Open" ? error("NotSupported") : error("InvalidArgs There is no action x");
    };
    expectAnswers(stranger, "com.quorvale.QuorvaleHelper", calls(application, methods), answers);
    EXPECT_EQ(helper_.log(), before);
    EXPECT_TRUE(helper_.shows("Unprotected"));
}

TEST_F(HostilePeersTest, LogsOneLineForEachNotificationThatItCannotTake) {
    RawPeerProcess updater(sessionBus_);
    const auto before = helper_.log().size();
    std::vector<std::string> signals;
    std::vector<testing::Matcher<std::string>> expected;
    for (const std::string target : {"- /x ", "com.quorvale.QuorvaleHelper / "}) {
        for (const std::string name :
             {"com.quorvale.DistributedNotification QuorvaleHelper ", "com.quorvale.DistributedNotification Quorvale ",
              "com.quorvale.ClientCommunication QuorvaleHelper "}) {
            for (const auto& body : bodies) {
                signals.push_back(std::string("signal ").append(target).append(name).append(body));
                if (name.ends_with("Notification QuorvaleHelper ") && !body.empty()) {
                    const auto signature = signatureOf(body);
                    expected.push_back(
                        StartsWith("error Failed to decode the updater's notification: " +
                                   (signature == "s" ? "data corrupted"
                                                     : "its object is not text but of type \"" + signature + '"')));
                }
            }
        }
    }
    EXPECT_THAT(updater.obey(signals), testing::Each("ok"));
    helper_.notify(R"({"running":true,"restart":false,"terminate":false})");
    expected.emplace_back("info Received notification: true");
    ASSERT_TRUE(helper_.logs("info Received notification: true"));
    EXPECT_THAT(logSince(helper_, before), testing::ElementsAreArray(expected));
    EXPECT_TRUE(helper_.shows("Protected"));
}

} // namespace quorvale::tests
