#pragma once

#include "platform/bundle/Bundle.hpp"
#include "platform/log/Logger.hpp"

#include <string>
#include <string_view>

namespace quorvale::app {

/// The names under which the helper's log lines are written and found again.
struct LogSubsystems {
    std::string own;    ///< the bundle identifier; the identity that the agent knows where there is none
    std::string filter; ///< the same, followed by ".filter"
    std::string helper; ///< the same, followed by ".helper"

    static LogSubsystems of(const platform::bundle::Bundle& bundle);
};

/// The process's log writer: the main bundle's identifier, category "default". Created on first use, any thread.
const platform::log::Logger& logger();

const std::string& filterSubsystem();
const std::string& helperSubsystem();

/// The text that the bundle's information dictionary holds for `key`, or "⚠️" when there is none.
std::string bundleInfoString(const platform::bundle::Bundle& bundle, std::string_view key);

/// "CFBundleShortVersionString" of the bundle.
std::string appVersion(const platform::bundle::Bundle& bundle = platform::bundle::Bundle::main());

/// "CFBundleVersion" of the bundle.
std::string buildNumber(const platform::bundle::Bundle& bundle = platform::bundle::Bundle::main());

} // namespace quorvale::app
