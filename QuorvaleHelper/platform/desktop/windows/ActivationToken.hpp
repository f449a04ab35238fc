#pragma once

#include <QString>

namespace quorvale::platform::desktop {

/// Lets the windows that are shown during its life take the focus on Wayland. Qt hands the token to the compositor
/// when a window asks to be active; no child process may inherit it. GUI thread.
/// https://wayland.app/protocols/xdg-activation-v1
class ActivationToken {
public:
    /// `token` is a peer's word, and may be empty.
    explicit ActivationToken(const QString& token);
    ~ActivationToken();

    /// Takes the token with which this process was started out of its environment; empty if there is none.
    static QString takeOwn();

    ActivationToken(const ActivationToken&) = delete;
    ActivationToken& operator=(const ActivationToken&) = delete;

private:
    bool isSet_ = false;
};

} // namespace quorvale::platform::desktop
