#pragma once

#include "platform/connection/Value.hpp"

#include <optional>
#include <string_view>

class QVariant;

namespace quorvale::platform::connection {

/// The D-Bus signature that carries a type.
std::string_view signatureOf(Type type);

QVariant toBus(const Value& value);

/// Nothing when `value` is not what `type` is carried as.
std::optional<Value> fromBus(Type type, const QVariant& value);

} // namespace quorvale::platform::connection
