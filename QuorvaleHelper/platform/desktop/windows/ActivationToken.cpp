#include "platform/desktop/windows/ActivationToken.hpp"

#include "platform/desktop/windows/WindowSystem.hpp"

#include <QtGlobal>

namespace quorvale::platform::desktop {

namespace {

constexpr auto variable = "XDG_ACTIVATION_TOKEN";

} // namespace

ActivationToken::ActivationToken(const QString& token) {
    // Other threads may be reading the environment: it is changed only where the compositor knows the token.
    if (!token.isEmpty() && windowSystem() == WindowSystem::Wayland) {
        isSet_ = true;
        qputenv(variable, token.toUtf8());
    }
}

ActivationToken::~ActivationToken() {
    if (isSet_) {
        qunsetenv(variable);
    }
}

QString ActivationToken::takeOwn() {
    const auto token = qEnvironmentVariable(variable);
    qunsetenv(variable);
    return token;
}

} // namespace quorvale::platform::desktop
