#pragma once

#include "platform/connection/Value.hpp"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

namespace quorvale::platform::connection {

/// The `Type` of a C++ type that `Value` can hold.
template <typename Cpp>
consteval Type typeOf() {
    if constexpr (std::same_as<Cpp, std::string>) {
        return Type::text;
    } else if constexpr (std::same_as<Cpp, bool>) {
        return Type::boolean;
    } else if constexpr (std::same_as<Cpp, double>) {
        return Type::number;
    } else if constexpr (std::same_as<Cpp, Dictionary>) {
        return Type::dictionary;
    } else {
        static_assert(std::same_as<Cpp, std::optional<std::string>>);
        return Type::optionalText;
    }
}

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

/// A method whose only answer is that it could not be delivered.
template <typename... Arguments>
struct OneWay {
    std::string_view name;
    std::array<std::string_view, sizeof...(Arguments)> parameterNames;
};

/// A method that is answered with one value.
template <typename Reply, typename... Arguments>
struct Request {
    std::string_view name;
    std::array<std::string_view, sizeof...(Arguments)> parameterNames;
};

template <typename... Arguments>
std::vector<Parameter> parametersOf(const std::array<std::string_view, sizeof...(Arguments)>& names) {
    return [&]<std::size_t... index>(std::index_sequence<index...>) {
        return std::vector<Parameter>{{names[index], typeOf<Arguments>()}...};
    }(std::index_sequence_for<Arguments...>{});
}

template <typename... Arguments>
Method describe(const OneWay<Arguments...>& method) {
    return {method.name, parametersOf<Arguments...>(method.parameterNames), std::nullopt};
}

template <typename Reply, typename... Arguments>
Method describe(const Request<Reply, Arguments...>& method) {
    return {method.name, parametersOf<Arguments...>(method.parameterNames), typeOf<Reply>()};
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
