#pragma once

#include "support/PrivateBus.hpp"
#include "support/Process.hpp"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvale::tests {

/// The helper as a process of its own, started from the staged bundle, with its log lines read as they are written.
class HelperProcess {
public:
    using Environment = std::map<std::string, std::optional<std::string>>;

    /// On private buses and without a screen.
    HelperProcess(const PrivateBus& systemBus, const PrivateBus& sessionBus,
                  const std::vector<std::string>& arguments = {});

    /// In the test program's session, changed by `environment`.
    explicit HelperProcess(const Environment& environment, const std::vector<std::string>& arguments = {});

    /// Waits until the helper has written a line that ends with "LEVEL TEXT".
    bool logs(std::string_view levelAndText);

    /// "LEVEL TEXT" of each line so far, in order.
    [[nodiscard]] std::vector<std::string> log() const;

    [[nodiscard]] Process& process() { return process_; }

    /// Sends the updater's notification over the session bus that the helper is on.
    void notify(std::string_view appState) const;

private:
    Environment environment_;
    Process process_;
};

} // namespace quorvale::tests
