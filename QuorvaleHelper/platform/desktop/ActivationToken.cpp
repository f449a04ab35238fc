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

} // namespace quorvale::platform::desktop
