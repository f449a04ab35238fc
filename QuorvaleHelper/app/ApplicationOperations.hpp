#pragma once

#include "platform/log/Logger.hpp"

#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvale::app {

/// The main application's bundle: the helper's own lies four levels below it. None when `helperBundlePath` has fewer
/// than four components, the leading slash counted as one.
std::optional<std::filesystem::path> mainApplicationPath(const std::filesystem::path& helperBundlePath);

/// Opens the main application in which the helper's bundle lies. What can't be opened is one error line. Main thread.
void openMainApplication();

/// The same for a helper at another place; `open` starts the bundle at a path or says why it can't.
void openMainApplication(const std::filesystem::path& helperBundlePath,
                         const std::function<std::expected<void, std::string>(const std::string&)>& open,
                         const platform::log::Logger& logger);

} // namespace quorvale::app
