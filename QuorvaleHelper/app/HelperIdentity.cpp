#include "app/HelperIdentity.hpp"

#include "agent_link/HelperXPC.hpp"

namespace quorvale::app {

namespace {

using platform::bundle::Bundle;

/// Never destroyed, as the logger isn't.
const LogSubsystems& subsystems() {
    static const auto* const names = new LogSubsystems(LogSubsystems::of(Bundle::main()));
    return *names;
}

} // namespace

LogSubsystems LogSubsystems::of(const Bundle& bundle) {
    const auto own = bundle.bundleIdentifier().value_or(std::string(agent_link::HelperXPC::clientIdentity));
    return {.own = own, .filter = own + ".filter", .helper = own + ".helper"};
}

const platform::log::Logger& logger() {
    // A connection's queue may still write when the process ends.
    static const auto* const writer = new platform::log::Logger(subsystems().own, "default");
    return *writer;
}

const std::string& filterSubsystem() {
    return subsystems().filter;
}

const std::string& helperSubsystem() {
    return subsystems().helper;
}

std::string bundleInfoString(const Bundle& bundle, std::string_view key) {
    return bundle.infoText(key).value_or("⚠️");
}

std::string appVersion(const Bundle& bundle) {
    return bundleInfoString(bundle, "CFBundleShortVersionString");
}

std::string buildNumber(const Bundle& bundle) {
    return bundleInfoString(bundle, "CFBundleVersion");
}

} // namespace quorvale::app
