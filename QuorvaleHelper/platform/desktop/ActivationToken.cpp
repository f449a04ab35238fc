#include "platform/desktop/ActivationToken.hpp"

#include <QtGlobal>

namespace quorvale::platform::desktop {

namespace {

constexpr auto variable = "XDG_ACTIVATION_TOKEN";

} // namespace

ActivationToken::ActivationToken(const QString& token) {
    if (!token.isEmpty()) {
        qputenv(variable, token.toUtf8());
    }
}

ActivationToken::~ActivationToken() {
    qunsetenv(variable);
}

QString ActivationToken::takeOwn() {
    const auto token = qEnvironmentVariable(variable);
    qunsetenv(variable);
    return token;
}

} // namespace quorvale::platform::desktop
