#pragma once

#include "platform/connection/Value.hpp"

#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace quorvale::platform::defaults {

/// A named suite of the user's defaults: values of property-list types by key, kept by QSettings in the file
/// `$XDG_CONFIG_HOME/<suite>/Defaults`, which is neither read nor made before a value is asked for or set. It holds one
/// map in the form of QDataStream.
///
/// Any thread; other processes may use the suite at the same time. A writer has the file locked, reads what others
/// wrote and replaces the file as a whole: a crash leaves the earlier one or the later one, and after one of the
/// machine a new folder may be gone. A broken file is as an empty one, and goes with the next write. Another
/// process's change is noticed by the file's size and its time in milliseconds. The file is as trusted as the user.
/// Errors are texts for the log.
/// https://doc.qt.io/qt-6/qsettings.html
class UserDefaults {
public:
    using Value = connection::PropertyList;

    /// `suiteName` can name a folder.
    explicit UserDefaults(std::string_view suiteName);

    /// None where the suite has no such key, or something else there than `setValue` keeps. An error where the file
    /// can't be read.
    [[nodiscard]] std::expected<std::optional<Value>, std::string> value(std::string_view key) const;

    /// Keeps `value` under `key`, or removes the key where there is no value. Waits for other writers, for one that
    /// crashed up to half a minute. Bytes that are no UTF-8 become U+FFFD,
    /// dates are kept to the millisecond. A key is not empty; slashes at its ends and the second of two are dropped. An
    /// error where the file can't be read or written: it is then as it was, but this process may see the value and
    /// write it with the next one.
    std::expected<void, std::string> setValue(std::string_view key, const std::optional<Value>& value);

private:
    const std::string folder_;
};

} // namespace quorvale::platform::defaults
