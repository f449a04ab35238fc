#pragma once

#include "platform/connection/Value.hpp"

#include <optional>

struct sd_bus_message;

namespace quorvale::platform::connection {

/// Appends `value` to a message that is being made. False when the message can't hold it, and then is of no use.
bool append(sd_bus_message* message, const Value& value);

/// Reads the next value of a received message. Nothing when it is not what `type` is carried as; how far it was read
/// is then not known.
std::optional<Value> read(sd_bus_message* message, Type type);

} // namespace quorvale::platform::connection
