#pragma once

#include "platform/log/Logger.hpp"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvale::app {

/// The main application's bundle: the helper's own lies four levels below it. None when `helperBundlePath` has fewer
/// than four components, the leading slash counted as one.
std::optional<std::filesystem::path> mainApplicationPath(const std::filesystem::path& helperBundlePath);

/// Asks for the main application in which the helper's bundle lies to be opened. Whether it is, nobody learns. A helper
/// that can't lie in one, by its path, is one error line. Main thread.
void openMainApplication();

/// The same for a helper at another place; `open` asks for the bundle at a path to be opened.
void openMainApplication(const std::filesystem::path& helperBundlePath,
                         const std::function<void(const std::string&)>& open, const platform::log::Logger& logger);

} // namespace quorvale::app
