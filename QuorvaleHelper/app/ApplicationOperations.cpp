#include "app/ApplicationOperations.hpp"

#include "app/HelperIdentity.hpp"
#include "platform/bundle/Bundle.hpp"
#include "platform/workspace/Workspace.hpp"

#include <iterator>

namespace quorvale::app {

std::optional<std::filesystem::path> mainApplicationPath(const std::filesystem::path& helperBundlePath) {
    constexpr auto levels = 4;
    const auto count = std::distance(helperBundlePath.begin(), helperBundlePath.end());
    if (count < levels) {
        return std::nullopt;
    }
    std::filesystem::path path;
    for (auto part = helperBundlePath.begin(); part != std::next(helperBundlePath.begin(), count - levels); ++part) {
        path /= *part;
    }
    return path;
}

void openMainApplication() {
    openMainApplication(
        platform::bundle::Bundle::main().bundlePath(),
        [](const std::string& path) { platform::workspace::Workspace{}.openApplication(path); }, logger());
}

void openMainApplication(const std::filesystem::path& helperBundlePath,
                         const std::function<void(const std::string&)>& open, const platform::log::Logger& logger) {
    if (const auto path = mainApplicationPath(helperBundlePath)) {
        open(path->string());
    } else {
        logger.error("Failed to open the main application: %{public}s",
                     "the helper is not inside it: " + helperBundlePath.string());
    }
}

} // namespace quorvale::app
