#include "ui/common/localized.hpp"

#include <QFile>
#include <QGuiApplication>
#include <QLocale>
#include <QTranslator>

#include <memory>

namespace quorvale::ui::common {

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
        table->setParent(qApp);
        QCoreApplication::installTranslator(table.release());
        if (locale.textDirection() == Qt::RightToLeft) {
            QGuiApplication::setLayoutDirection(Qt::RightToLeft);
        }
        break;
    }
    return {};
}

} // namespace quorvale::ui::common
