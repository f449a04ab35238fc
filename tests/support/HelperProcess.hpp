#pragma once

#include "support/PrivateBus.hpp"
#include "support/Process.hpp"

#include <cstddef>
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

    /// Private buses, and no screen.
    static Environment on(const PrivateBus& systemBus, const PrivateBus& sessionBus);

    /// On private buses and without a screen.
    HelperProcess(const PrivateBus& systemBus, const PrivateBus& sessionBus,
                  const std::vector<std::string>& arguments = {});

    /// In the test program's session, changed by `environment`. `launcher` is a program with its first arguments, which
    /// ends by running the program that its other arguments name.
    explicit HelperProcess(const Environment& environment, const std::vector<std::string>& arguments = {},
                           const std::vector<std::string>& launcher = {});

    /// Waits until the helper has written a line that ends with "LEVEL TEXT" behind the first `skipped` ones.
    bool logs(std::string_view levelAndText, std::size_t skipped = 0);

    /// "LEVEL TEXT" of each line so far, in order.
    [[nodiscard]] std::vector<std::string> log() const;

    /// What the icon says, as its panel gets to know it from the helper's main thread; no value if there is no answer
    /// within a second.
    [[nodiscard]] std::optional<std::string> icon() const;

    /// Waits until the icon says "Protected" or "Unprotected", and each answer has come within a second.
    [[nodiscard]] bool shows(std::string_view status) const;

    [[nodiscard]] Process& process() { return process_; }

    /// Sends the updater's notification over the session bus that the helper is on.
    void notify(std::string_view appState) const;

private:
    Environment environment_;
    Process process_;
};

} // namespace quorvale::tests
