#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <xcb/xcb.h>

namespace quorvale::platform::desktop {

/// The text setting `name` in the property in which a settings manager keeps all of them; none where it isn't there, or
/// the property, which anybody can write, is not of that form.
/// https://specifications.freedesktop.org/xsettings-spec/xsettings-latest.html
std::optional<std::string> textSetting(std::string_view property, std::string_view name);

/// The name of the desktop's GTK theme, as the X server's settings manager tells it; empty where there is none. GUI
/// thread, where the program's windows are on X11.
class XSettings final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit XSettings(QObject* parent = nullptr);
    ~XSettings() override;
    XSettings(const XSettings&) = delete;
    XSettings& operator=(const XSettings&) = delete;

    [[nodiscard]] QString themeName() const { return themeName_; }

Q_SIGNALS:
    void themeNameChanged();

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void findManager();
    void read();

    const xcb_atom_t selection_;
    const xcb_atom_t settings_;
    const xcb_atom_t managerMessage_;
    xcb_window_t manager_ = XCB_WINDOW_NONE;
    QString themeName_;
};

} // namespace quorvale::platform::desktop
