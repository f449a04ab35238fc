#pragma once

#include "platform/log/Logger.hpp"

#include <QWidget>

#include <memory>
#include <string>

namespace quorvale::ui::logs {

/// Asks where in the file system to, in a dialog over `window`, and saves `text` there. A failure is one error line,
/// and a message for who asked for it. Returns at once. Both references outlive the window's content. GUI thread.
void saveLog(QWidget& window, std::shared_ptr<const std::string> text, const platform::log::Logger& logger);

} // namespace quorvale::ui::logs
