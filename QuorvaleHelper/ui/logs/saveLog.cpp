#include "ui/logs/saveLog.hpp"

#include "platform/workspace/saveText.hpp"
#include "ui/common/localized.hpp"

#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QStandardPaths>

#include <expected>
#include <utility>

namespace quorvale::ui::logs {

namespace {

constexpr auto fileName = "QuorvaleHelper.log";

void tell(QWidget& window, const std::string& failure) {
    auto* const message = new QMessageBox(&window);
    message->setAttribute(Qt::WA_DeleteOnClose);
    message->setIcon(QMessageBox::Warning);
    message->setText(common::localized("The log could not be saved."));
    // Names of files are in it.
    message->setTextFormat(Qt::PlainText);
    message->setInformativeText(QString::fromStdString(failure));
    message->open();
}

} // namespace

void saveLog(QWidget& window, std::shared_ptr<const std::string> text, const platform::log::Logger& logger) {
    auto* const dialog = new QFileDialog(&window, common::localized("Save Log"),
                                         QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(QString::fromLatin1(fileName));
    QObject::connect(dialog, &QFileDialog::fileSelected, &window,
                     [window = QPointer(&window), text = std::move(text), &logger](const QString& path) {
                         platform::workspace::saveText(
                             path.toStdString(), text,
                             [window, &logger](const std::expected<void, std::string>& saved) {
                                 if (saved) {
                                     return;
                                 }
                                 logger.error("Failed to save the log: %{public}s", saved.error());
                                 if (window) {
                                     tell(*window, saved.error());
                                 }
                             });
                     });
    dialog->open();
}

} // namespace quorvale::ui::logs
