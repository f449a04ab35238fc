#include "platform/desktop/appearance/SymbolImage.hpp"

#include <QFile>
#include <QPainter>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace quorvale::platform::desktop {

class SymbolImageTest : public testing::Test {
protected:
    SymbolImageTest() {
        QFile file(path);
        EXPECT_TRUE(file.open(QFile::WriteOnly));
        file.write(
            R"(<svg xmlns="http://www.w3.org/2000/svg" width="20" height="10"><rect width="20" height="10"/></svg>)");
    }

    QTemporaryDir directory;
    QString path = directory.filePath(QStringLiteral("symbol.svg"));
};

TEST_F(SymbolImageTest, KeepsItsProportionsInTheMiddleOfASquareAtAnyScale) {
    const SymbolImage symbol(path);
    EXPECT_EQ(symbol.naturalSize(), QSizeF(20, 10));
    for (const auto scale : {1.0, 1.5, 2.0, 3.0}) {
        QImage canvas(QSizeF(24 * scale, 24 * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
        canvas.setDevicePixelRatio(scale);
        canvas.fill(Qt::transparent);
        {
            QPainter painter(&canvas);
            symbol.paint(painter, QRectF(2, 1, 20, 20), Qt::red);
        }
        const auto at = [&](double x, double y) {
            return canvas.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
        };
        // Sharp: full colour up to the edge, and nothing behind it.
        EXPECT_EQ(at(2, 6), QColor(Qt::red)) << scale;
        EXPECT_EQ(at(21.9, 15.9), QColor(Qt::red)) << scale;
        EXPECT_EQ(at(12, 5).alpha(), 0) << scale;
        EXPECT_EQ(at(12, 16.1).alpha(), 0) << scale;
        EXPECT_EQ(at(1, 12).alpha(), 0) << scale;
        EXPECT_EQ(at(22.1, 12).alpha(), 0) << scale;
    }
}

TEST_F(SymbolImageTest, HasItsOwnColorsUnlessTintedAndNoneWhenItCantBeRead) {
    const SymbolImage symbol(path);
    EXPECT_EQ(symbol.image({20, 10}).pixelColor(5, 5), QColor(Qt::black));
    EXPECT_EQ(symbol.image({20, 10}, Qt::green).pixelColor(5, 5), QColor(Qt::green));
    const SymbolImage absent(directory.filePath(QStringLiteral("absent.svg")));
    EXPECT_FALSE(absent.isValid());
    EXPECT_EQ(absent.image({4, 4}, Qt::red).pixelColor(2, 2).alpha(), 0);
}

} // namespace quorvale::platform::desktop
