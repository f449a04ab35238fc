#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <string>

namespace quorvale::platform::workspace {

/// Puts a file with `text` and a line feed in the place of what is at `path`, an absolute path or a link, whole or not
/// at all. Only the user may read it. Where this process may write to nothing there, being confined, the user's service
/// manager is asked to (systemd-run(1)); what is written then doesn't pass through it.
///
/// `done` runs later, once the file is on the disk, or with a sentence on why it isn't. A process that ends before that
/// leaves what was there. Main thread.
void saveText(const std::string& path, const std::shared_ptr<const std::string>& text,
              std::function<void(std::expected<void, std::string>)> done);

} // namespace quorvale::platform::workspace
