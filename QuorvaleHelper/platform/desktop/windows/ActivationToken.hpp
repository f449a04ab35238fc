#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace quorvale::platform::desktop {

/// The desktop's leave for a window that is opened during this object's life to come to the front: on Wayland a token,
/// on X11 the id of a startup sequence, or the time of what the user did. Both come from a peer and are checked here.
/// No child process may inherit them. GUI thread. https://wayland.app/protocols/xdg-activation-v1
/// https://specifications.freedesktop.org/startup-notification-spec/startup-notification-latest.txt
class ActivationToken {
public:
    /// Characters of a token.
    static constexpr qsizetype longest = 512;

    /// One that is empty, too long, or not of printable ASCII is none. `userTime` is in the X server's milliseconds;
    /// 0 if it isn't known. The time that a startup id names goes before it.
    explicit ActivationToken(const QString& token, std::uint32_t userTime = 0);
    ~ActivationToken();

    /// Those with which this process was started.
    struct Own {
        QString token;
        QString startupId;
    };

    /// Takes them out of the environment. To be called before there is an application object, which takes one as well.
    static Own takeOwn();

    /// The innermost token alive, on X11 a startup id: empty if there is none.
    static QByteArray current();
    /// That of the innermost token alive, on X11: 0 if it isn't known. As checked as a peer's word can be without a
    /// server.
    static std::uint32_t userTime();

    ActivationToken(const ActivationToken&) = delete;
    ActivationToken& operator=(const ActivationToken&) = delete;

private:
    QByteArray token_;
    std::uint32_t userTime_;
    ActivationToken* outer_;
};

} // namespace quorvale::platform::desktop
