#include "platform/defaults/UserDefaults.hpp"

#include <QDataStream>
#include <QDateTime>
#include <QDir>
#include <QFileDevice>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QStringDecoder>
#include <QVariant>

#include <cmath>
#include <utility>
#include <vector>

namespace quorvale::platform::defaults {

namespace {

using connection::Date;
using connection::Dictionary;
using connection::PropertyList;

QString textOf(std::string_view utf8) {
    // A text may begin with U+FEFF, which QString::fromUtf8 drops.
    using Flag = QStringConverter::Flag;
    return QStringDecoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom)(
        QByteArrayView(utf8.data(), static_cast<qsizetype>(utf8.size())));
}

struct ToVariant {
    QVariant operator()(const std::string& text) const { return textOf(text); }

    QVariant operator()(std::int64_t number) const { return static_cast<qlonglong>(number); }

    QVariant operator()(double number) const { return number; }

    QVariant operator()(bool value) const { return value; }

    QVariant operator()(const std::vector<std::byte>& bytes) const {
        return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    }

    QVariant operator()(Date date) const {
        return QDateTime::fromMSecsSinceEpoch(std::llround(date.secondsSince1970 * 1000)).toUTC();
    }

    QVariant operator()(const std::vector<PropertyList>& items) const {
        QVariantList list;
        for (const auto& item : items) {
            list.append(std::visit(*this, item.value));
        }
        return list;
    }

    QVariant operator()(const Dictionary& dictionary) const {
        QVariantMap map;
        for (const auto& [key, item] : dictionary) {
            map.insert(textOf(key), std::visit(*this, item.value));
        }
        return map;
    }
};

/// None where `ToVariant` makes no such variant; inside of others these are left out.
std::optional<PropertyList> propertyList(const QVariant& variant) {
    switch (variant.typeId()) {
    case QMetaType::QString:
        return PropertyList{variant.toString().toStdString()};
    case QMetaType::LongLong:
        return PropertyList{static_cast<std::int64_t>(variant.toLongLong())};
    case QMetaType::Double:
        return PropertyList{variant.toDouble()};
    case QMetaType::Bool:
        return PropertyList{variant.toBool()};
    case QMetaType::QByteArray: {
        const auto bytes = variant.toByteArray();
        const auto* const begin = reinterpret_cast<const std::byte*>(bytes.data());
        return PropertyList{std::vector(begin, begin + bytes.size())};
    }
    case QMetaType::QDateTime:
        return PropertyList{Date{static_cast<double>(variant.toDateTime().toMSecsSinceEpoch()) / 1000}};
    case QMetaType::QVariantList: {
        std::vector<PropertyList> items;
        for (const auto& entry : variant.toList()) {
            if (auto item = propertyList(entry)) {
                items.push_back(*std::move(item));
            }
        }
        return PropertyList{std::move(items)};
    }
    case QMetaType::QVariantMap: {
        Dictionary dictionary;
        for (const auto& [key, entry] : variant.toMap().asKeyValueRange()) {
            if (auto item = propertyList(entry)) {
                dictionary.insert_or_assign(key.toStdString(), *std::move(item));
            }
        }
        return PropertyList{std::move(dictionary)};
    }
    default:
        return std::nullopt;
    }
}

bool readFile(QIODevice& file, QSettings::SettingsMap& values) {
    QDataStream stream(&file);
    stream.setVersion(QDataStream::Qt_6_0);
    stream >> values;
    if (stream.status() != QDataStream::Ok) {
        values.clear();
    }
    return true;
}

bool writeFile(QIODevice& file, const QSettings::SettingsMap& values) {
    QDataStream stream(&file);
    stream.setVersion(QDataStream::Qt_6_0);
    stream << values;
    // Of what it still has in its buffer when it replaces the file, QSaveFile wouldn't notice that the disk is full.
    return stream.status() == QDataStream::Ok && static_cast<QFileDevice&>(file).flush();
}

/// Not an INI file, in which numbers and truths become texts, and a full disk leaves part of a file.
QSettings::Format format() {
    static const auto registered = QSettings::registerFormat(QStringLiteral("defaults"), readFile, writeFile);
    return registered;
}

QString fileIn(const std::string& folder) {
    return textOf(folder + "/Defaults");
}

std::unexpected<std::string> failure(const QSettings& settings) {
    return std::unexpected(settings.fileName().toStdString() + ": can't be read or written");
}

} // namespace

UserDefaults::UserDefaults(std::string_view suiteName)
    : folder_(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation).toStdString() + '/' +
              std::string(suiteName)) {}

std::expected<std::optional<UserDefaults::Value>, std::string> UserDefaults::value(std::string_view key) const {
    const QSettings settings(fileIn(folder_), format());
    if (settings.status() != QSettings::NoError) {
        return failure(settings);
    }
    return propertyList(settings.value(textOf(key)));
}

std::expected<void, std::string> UserDefaults::setValue(std::string_view key, const std::optional<Value>& value) {
    // QSettings would let others look into the folder that it makes.
    QDir().mkpath(QFileInfo(textOf(folder_)).path());
    QDir().mkdir(textOf(folder_), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QSettings settings(fileIn(folder_), format());
    if (settings.status() != QSettings::NoError) {
        return failure(settings);
    }
    if (value) {
        settings.setValue(textOf(key), std::visit(ToVariant{}, value->value));
    } else {
        settings.remove(textOf(key));
    }
    settings.sync();
    return settings.status() == QSettings::NoError ? std::expected<void, std::string>() : failure(settings);
}

} // namespace quorvale::platform::defaults
