#pragma once

#include "platform/application/Application.hpp"

namespace quorvale::app {

/// Logs the end of launching and the start of termination.
class AppDelegate final : public platform::application::ApplicationDelegate {
public:
    void applicationWillTerminate() override;
    void applicationDidFinishLaunching() override;
};

} // namespace quorvale::app
