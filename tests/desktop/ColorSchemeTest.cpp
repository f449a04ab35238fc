#include "desktop/DesktopSession.hpp"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

namespace quorvale {

using tests::DesktopSession;
using tests::HelperProcess;
using tests::Process;

TEST(ColorSchemeTest, FollowsTheThemeThatTheSettingsManagerOfX11Names) {
    const QColor darkPaper(0x1E, 0x1E, 0x20);
    const QTemporaryDir directory;
    const auto settings = directory.filePath(QStringLiteral("settings")).toStdString();
    const auto choose = [&](const char* theme) {
        std::ofstream(settings) << "Net/CursorBlink 1\nNet/ThemeName \"" << theme << "\"\nXft/Hinting 0\n";
    };
    choose("Adwaita-dark");
    const DesktopSession session;
    HelperProcess helper(session.environment());
    ASSERT_TRUE(helper.logs("info Quorvale Helper launched"));
    session.openLog();
    const Process manager(
        {.program = "xsettingsd", .arguments = {"--config", settings}, .environment = session.environment()});
    session.waitForArea(darkPaper);
    choose("Adwaita");
    manager.signal(SIGHUP);
    EXPECT_TRUE(session.waitForNothingOf(darkPaper));
}

} // namespace quorvale
