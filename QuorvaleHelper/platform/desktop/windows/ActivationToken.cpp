#include "platform/desktop/windows/ActivationToken.hpp"

#include "platform/desktop/windows/WindowSystem.hpp"

#include <QtGlobal>

#include <algorithm>
#include <utility>

namespace quorvale::platform::desktop {

namespace {

constexpr auto tokenVariable = "XDG_ACTIVATION_TOKEN";
constexpr auto startupVariable = "DESKTOP_STARTUP_ID";

ActivationToken* innermost = nullptr;

QByteArray checked(const QString& token) {
    const bool isPlain = token.size() <= ActivationToken::longest &&
                         std::ranges::all_of(token, [](QChar letter) { return letter > u' ' && letter <= u'~'; });
    return isPlain ? token.toLatin1() : QByteArray();
}

/// The number behind the last "_TIME", with which a startup id ends; 0 if there is none.
std::uint32_t timeIn(const QByteArray& startupId) {
    const QByteArray mark = "_TIME";
    const auto at = startupId.lastIndexOf(mark);
    return at < 0 ? 0 : startupId.mid(at + mark.size()).toUInt();
}

QString takeVariable(const char* name) {
    auto value = qEnvironmentVariable(name);
    qunsetenv(name);
    return value;
}

} // namespace

ActivationToken::ActivationToken(const QString& token, std::uint32_t userTime)
    : token_(checked(token)), userTime_(userTime), outer_(std::exchange(innermost, this)) {
    if (const auto named = timeIn(token_); named != 0) {
        userTime_ = named;
    }
    // Other threads may be reading the environment: it is changed only where the compositor knows the token. Qt looks
    // for it there when a window asks to be active.
    if (!token_.isEmpty() && windowSystem() == WindowSystem::Wayland) {
        qputenv(tokenVariable, token_);
    }
}

ActivationToken::~ActivationToken() {
    innermost = outer_;
    if (!token_.isEmpty() && windowSystem() == WindowSystem::Wayland) {
        qunsetenv(tokenVariable);
    }
}

ActivationToken::Own ActivationToken::takeOwn() {
    return {takeVariable(tokenVariable), takeVariable(startupVariable)};
}

QByteArray ActivationToken::current() {
    return innermost ? innermost->token_ : QByteArray();
}

std::uint32_t ActivationToken::userTime() {
    return innermost ? innermost->userTime_ : 0;
}

} // namespace quorvale::platform::desktop
