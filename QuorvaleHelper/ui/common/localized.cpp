#include "ui/common/localized.hpp"

#include <QFile>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <memory>
#include <utility>

namespace quorvale::ui::common {

namespace {

void install(std::unique_ptr<QTranslator> table) {
    table->setParent(qApp);
    QCoreApplication::installTranslator(table.release());
}

} // namespace

QString localized(const char* key) {
    return QCoreApplication::translate("", key);
}

std::expected<void, QString> loadLocalizedTexts(const QString& folder, const QStringList& languages) {
    for (const auto& name : languages) {
        const QLocale locale(name);
        // A language wanted less than English is not wanted. One that Qt doesn't know, it takes for that of C.
        if (locale.language() == QLocale::English) {
            break;
        }
        const auto path =
            QStringLiteral("%1/Localizable_%2.qm").arg(folder, QLocale::languageToCode(locale.language()));
        if (!QFile::exists(path)) {
            continue;
        }
        auto table = std::make_unique<QTranslator>();
        if (!table->load(path)) {
            return std::unexpected(QStringLiteral("%1 is no table of texts").arg(path));
        }
        install(std::move(table));
        // What the toolkit's own dialogs and menus say is in a package of its own, which may not be there.
        auto toolkit = std::make_unique<QTranslator>();
        if (toolkit->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            install(std::move(toolkit));
        }
        if (locale.textDirection() == Qt::RightToLeft) {
            QGuiApplication::setLayoutDirection(Qt::RightToLeft);
        }
        break;
    }
    return {};
}

} // namespace quorvale::ui::common
