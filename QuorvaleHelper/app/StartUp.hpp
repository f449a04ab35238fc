#pragma once

#include "platform/bundle/Bundle.hpp"

#include <functional>
#include <string>

namespace quorvale::app {

/// The short version and, in parentheses, the build number: "2.1.0 (57)".
std::string versionLine(const platform::bundle::Bundle& bundle);

/// What the helper does once, before its user interface is there: says that it starts and in which version (and why
/// not, where Info.plist is broken), asks the agent for its state if the link is connected, which it is not in a fresh
/// process, and listens for the updater's notifications. Main thread.
void startUp(std::function<void()> quitApplication);

} // namespace quorvale::app
