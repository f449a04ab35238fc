#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quorvale::platform::desktop {

/// The text setting `name` in the property in which a settings manager keeps all of them; none where it isn't there, or
/// the property, which anybody can write, is not of that form.
/// https://specifications.freedesktop.org/xsettings-spec/xsettings-latest.html
std::optional<std::string> textSetting(std::string_view property, std::string_view name);

/// The name of the desktop's GTK theme, as the X server's settings manager tells it. GUI thread.
class XSettings final : public QObject {
    Q_OBJECT

public:
    /// On a connection of its own to the display that DISPLAY names. Where there is none, or no settings manager, the
    /// name is empty.
    explicit XSettings(QObject* parent = nullptr);
    ~XSettings() override;

    [[nodiscard]] QString themeName() const { return themeName_; }

Q_SIGNALS:
    void themeNameChanged();

private:
    void read();
    void takeEvents();

    class Display;
    std::unique_ptr<Display> display_;
    QString themeName_;
};

} // namespace quorvale::platform::desktop
