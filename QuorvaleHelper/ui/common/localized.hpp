#pragma once

#include <QString>
#include <QStringList>

#include <expected>

namespace quorvale::ui::common {

/// Looks `key` up in the application's one table of texts; the key itself where it has no entry.
QString localized(const char* key);

/// Gives the application its table of texts: Localizable_LANGUAGE.qm in `folder`, for the first of `languages`, most
/// wanted first, that has one, and Qt's for what its dialogs and menus say, where the system has it. The keys are
/// English and need none. The views run in the direction of the table's language from then on. GUI thread, before there
/// are views. An error is a sentence for the log; then keys are shown.
std::expected<void, QString> loadLocalizedTexts(const QString& folder, const QStringList& languages);

} // namespace quorvale::ui::common
