#pragma once

#include "platform/connection/Value.hpp"

#include <algorithm>
#include <array>
#include <concepts>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace quorvale::platform::connection {

/// The `Type` of a C++ type that `Value` can hold.
template <typename Cpp>
constexpr Type typeOf = []<typename... Alternatives>(const std::variant<Alternatives...>* /*value*/) {
    constexpr std::array isIt{std::same_as<Cpp, Alternatives>...};
    return static_cast<Type>(std::ranges::find(isIt, true) - isIt.begin());
}(static_cast<const Value*>(nullptr));

struct Parameter {
    std::string_view name;
    Type type;
    bool operator==(const Parameter&) const = default;
};

/// One method of an interface. Without a reply type it is one-way.
struct Method {
    std::string_view name;
    std::vector<Parameter> parameters;
    std::optional<Type> reply;
    bool operator==(const Method&) const = default;
};

/// A method that is answered with one value.
template <typename Reply, typename... Arguments>
struct Request {
    std::string_view name;
    std::array<std::string_view, sizeof...(Arguments)> parameterNames;
};

/// A method whose only answer is that it could not be delivered.
template <typename... Arguments>
using OneWay = Request<void, Arguments...>;

template <typename Reply, typename... Arguments>
Method describe(const Request<Reply, Arguments...>& method) {
    std::optional<Type> reply;
    if constexpr (!std::is_void_v<Reply>) {
        reply = typeOf<Reply>;
    }
    return [&]<std::size_t... index>(std::index_sequence<index...>) {
        return Method{method.name, {{method.parameterNames[index], typeOf<Arguments>}...}, reply};
    }(std::index_sequence_for<Arguments...>{});
}

/// The methods that one side of a connection implements. The names are literals.
struct Interface {
    std::string_view name;
    std::vector<Method> methods;
    bool operator==(const Interface&) const = default;
};

/// An interface of one-way methods together with what each call does on the object that implements it.
template <typename Object>
class ExportedInterface {
public:
    using Handler = std::function<void(Object&, std::vector<Value>)>;

    explicit ExportedInterface(std::string_view name) : interface_{name, {}} {}

    /// Adds a method whose calls go to `member` of the exported object.
    template <typename... Arguments>
    ExportedInterface& method(const OneWay<Arguments...>& method, void (Object::*member)(Arguments...)) {
        interface_.methods.push_back(describe(method));
        handlers_.push_back([member](Object& object, std::vector<Value> arguments) {
            [&]<std::size_t... index>(std::index_sequence<index...>) {
                (object.*member)(std::get<Arguments>(std::move(arguments[index]))...);
            }(std::index_sequence_for<Arguments...>{});
        });
        return *this;
    }

    [[nodiscard]] const Interface& interface() const { return interface_; }

    [[nodiscard]] const std::vector<Handler>& handlers() const { return handlers_; }

private:
    Interface interface_;
    std::vector<Handler> handlers_;
};

} // namespace quorvale::platform::connection
