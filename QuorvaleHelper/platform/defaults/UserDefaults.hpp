#pragma once

#include "platform/connection/Value.hpp"

#include <cstddef>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quorvale::platform::defaults {

/// In bytes.
inline constexpr std::size_t largestSuite = 16UL * 1024 * 1024;

/// A named suite of the user's defaults: values of property-list types by key, kept in the file
/// `$XDG_CONFIG_HOME/<suite>/Defaults.cbor` as one map in CBOR (RFC 8949).
///
/// Any thread; other processes may use the suite at the same time. Nothing is cached: what is read is what was written
/// last, by whomever. Errors are texts for the log.
class UserDefaults {
public:
    using Value = connection::PropertyList;

    /// The suite of that name, whether or not it was ever written to. A name has 1 to 128 ASCII letters, digits,
    /// dots, hyphens and underscores, and doesn't begin with a dot. Makes no file.
    static std::expected<std::shared_ptr<UserDefaults>, std::string>
    open(std::string_view suiteName, const std::filesystem::path& folder = userFolder());

    /// `$XDG_CONFIG_HOME`, or `.config` in the user's home.
    static std::filesystem::path userFolder();

    /// None where the suite has no such key. An error where it can't be read.
    [[nodiscard]] std::expected<std::optional<Value>, std::string> value(std::string_view key) const;

    /// Keeps `value` under `key`, or removes the key where there is no value; both are on the disk when this returns.
    /// A crash, of the machine too, leaves the file as it was before or as it is afterwards. Waits while another
    /// writer is at work, whose keys are kept. An error where the suite can't be read or written, and where a text of
    /// the value is not well-formed UTF-8 or it nests in 256 or more others; the file is then as it was.
    std::expected<void, std::string> setValue(std::string_view key, const std::optional<Value>& value);

private:
    explicit UserDefaults(std::filesystem::path folder) : folder_(std::move(folder)) {}

    const std::filesystem::path folder_;
};

} // namespace quorvale::platform::defaults
