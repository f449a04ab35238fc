#include "platform/desktop/status_icon/MenuBarIcon.hpp"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <limits>

namespace quorvale::platform::desktop {

namespace {

void write(const QString& path, const char* contents) {
    QFile file(path);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write(contents);
}

} // namespace

TEST(MenuBarIconTest, IsEighteenPointsHighWithItsProportionsKeptWhereTheyAreUsable) {
    const std::pair<QSizeF, QSizeF> cases[] = {
        {{512, 512}, {18, 18}}, {{200, 100}, {36, 18}}, {{10, 20}, {9, 18}}, {{0.5, 0.25}, {36, 18}}};
    for (const auto& [natural, expected] : cases) {
        EXPECT_EQ(menuBarIconSize(natural), expected);
        EXPECT_EQ(menuBarIconSize(expected), expected) << "built again, it is another size";
    }
    const auto infinity = std::numeric_limits<double>::infinity();
    const auto nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& natural :
         {QSizeF(), {0, 18}, {18, 0}, {-18, -18}, {infinity, 18}, {nan, 18}, {18, nan}, {100000, 1}, {1, 100000}}) {
        EXPECT_FALSE(menuBarIconSize(natural)) << natural.width() << 'x' << natural.height();
    }
}

TEST(MenuBarIconTest, IsDrawnForPanelsOfAnyHeightFirstTheUnscaledOne) {
    const QTemporaryDir directory;
    const auto drawing = directory.filePath(QStringLiteral("icon.svg"));
    write(drawing,
          R"(<svg xmlns="http://www.w3.org/2000/svg" width="200" height="100"><rect width="200" height="100"/></svg>)");
    const auto icon = MenuBarIcon::load(drawing);
    ASSERT_TRUE(icon) << qPrintable(icon.error());
    EXPECT_EQ(icon->size, QSizeF(36, 18));
    EXPECT_EQ(icon->images().constFirst().size(), QSize(36, 18));
    QList<int> heights;
    for (const auto& image : icon->images()) {
        heights << image.height();
        EXPECT_EQ(image.width(), 2 * image.height());
        EXPECT_EQ(image.pixelColor(image.width() / 2, image.height() / 2), QColor(Qt::black));
        EXPECT_EQ(image.pixelColor(image.width() / 2, image.height() - 1), QColor(Qt::white)) << "the edge";
    }
    EXPECT_EQ(icon->icon().pixmap(QSize(40, 40)).size(), QSize(40, 20)) << "drawn in its own proportions";
    for (const auto height : {16, 18, 22, 24, 27, 32, 36, 48, 54, 64}) {
        EXPECT_TRUE(heights.contains(height)) << height;
    }
}

TEST(MenuBarIconTest, IsNotLoadedFromWhatIsNoPicture) {
    const QTemporaryDir directory;
    const std::pair<const char*, const char*> cases[] = {
        {"absent.svg", nullptr},
        {"broken.svg", "no picture"},
        {"long.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="90000" height="1"/>)"},
    };
    for (const auto& [name, contents] : cases) {
        const auto path = directory.filePath(QString::fromLatin1(name));
        if (contents) {
            write(path, contents);
        }
        const auto icon = MenuBarIcon::load(path);
        ASSERT_FALSE(icon) << name;
        EXPECT_TRUE(icon.error().contains(path)) << qPrintable(icon.error());
    }
}

} // namespace quorvale::platform::desktop
