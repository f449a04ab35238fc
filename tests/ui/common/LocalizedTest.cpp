#include "ui/common/localized.hpp"

#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTranslator>
#include <gtest/gtest.h>

namespace quorvale::ui::common {

namespace {

const auto tables = QStringLiteral(QUORVALE_TABLES_FOLDER);

class LocalizedTest : public testing::Test {
protected:
    ~LocalizedTest() override {
        for (auto* const table : qApp->findChildren<QTranslator*>()) {
            delete table;
        }
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }

    static QString protectedIn(const QStringList& languages, const QString& folder = tables) {
        for (auto* const table : qApp->findChildren<QTranslator*>()) {
            delete table;
        }
        EXPECT_TRUE(loadLocalizedTexts(folder, languages));
        return localized("Protected");
    }
};

QSet<QString> keysOfTheSources() {
    const QRegularExpression use(QStringLiteral(R"(\blocalized\("([^"]*)\"\))"));
    QSet<QString> keys;
    QDirIterator sources(QStringLiteral(QUORVALE_SOURCES), {QStringLiteral("*.cpp")}, QDir::Files,
                         QDirIterator::Subdirectories);
    while (sources.hasNext()) {
        QFile source(sources.next());
        EXPECT_TRUE(source.open(QFile::ReadOnly));
        for (auto uses = use.globalMatch(QString::fromUtf8(source.readAll())); uses.hasNext();) {
            keys.insert(uses.next().captured(1));
        }
    }
    return keys;
}

} // namespace

TEST_F(LocalizedTest, HaveATextForEveryKeyInEveryLanguage) {
    const auto keys = keysOfTheSources();
    EXPECT_TRUE(keys.contains(QStringLiteral("Protected")) && keys.contains(QStringLiteral("Unprotected")));
    for (const auto* const language : {"ar", "de", "es", "fr", "ja"}) {
        QTranslator table;
        ASSERT_TRUE(table.load(QStringLiteral("%1/Localizable_%2.qm").arg(tables, QLatin1String(language))));
        for (const auto& key : keys) {
            EXPECT_FALSE(table.translate("", qPrintable(key)).isEmpty()) << language << ' ' << qPrintable(key);
        }
    }
}

TEST_F(LocalizedTest, AreThoseOfTheFirstLanguageThatHasSome) {
    // As in the environment.
    const std::pair<const char*, const char*> cases[] = {
        {"de_AT:de", "Geschützt"},
        {"fr_CA.UTF-8", "Protégé"},
        {"it_IT:tlh:C:es", "Protegido"},
        {"ja_JP", "保護されています"},
        {"en_GB:en:de", "Protected"},
        {"C", "Protected"},
        {"it:../../etc/x", "Protected"},
        {"", "Protected"},
        {"ar_EG:de", "محمي"},
    };
    for (const auto& [languages, expected] : cases) {
        EXPECT_EQ(protectedIn(QString::fromLatin1(languages).split(u':')), QString::fromUtf8(expected)) << languages;
    }
    EXPECT_EQ(QGuiApplication::layoutDirection(), Qt::RightToLeft);
    EXPECT_EQ(localized("Settings..."), QStringLiteral("Settings...")) << "a key without an entry";
    EXPECT_EQ(protectedIn({QStringLiteral("de_AT")}), QStringLiteral("Geschützt"));
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Abbrechen")) << "the toolkit's";
}

TEST_F(LocalizedTest, AreTheKeysWhereTheTableIsMissingOrBroken) {
    const QTemporaryDir folder;
    const QStringList arabic{QStringLiteral("ar")};
    EXPECT_EQ(protectedIn(arabic, folder.path()), QStringLiteral("Protected"));
    for (const auto* const contents : {"", "no table"}) {
        QFile file(folder.filePath(QStringLiteral("Localizable_ar.qm")));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(contents);
        file.close();
        const auto loaded = loadLocalizedTexts(folder.path(), arabic);
        ASSERT_FALSE(loaded);
        EXPECT_TRUE(loaded.error().contains(file.fileName()));
        EXPECT_EQ(localized("Protected"), QStringLiteral("Protected"));
        EXPECT_EQ(QGuiApplication::layoutDirection(), Qt::LeftToRight);
    }
}

} // namespace quorvale::ui::common
