#include "platform/connection/Coding.hpp"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QStringList>
#include <QVariant>

#include <array>
#include <utility>

namespace quorvale::platform::connection {

namespace {

QVariant toBusVariant(const PropertyList& list);

QDBusArgument toBusDictionary(const Dictionary& dictionary) {
    QDBusArgument argument;
    argument.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<QDBusVariant>());
    for (const auto& [key, value] : dictionary) {
        argument.beginMapEntry();
        argument << QString::fromStdString(key) << QDBusVariant(toBusVariant(value));
        argument.endMapEntry();
    }
    argument.endMap();
    return argument;
}

struct ToBusVariant {
    QVariant operator()(const std::string& text) const { return QString::fromStdString(text); }

    QVariant operator()(std::int64_t number) const { return QVariant::fromValue<qlonglong>(number); }

    QVariant operator()(double number) const { return number; }

    QVariant operator()(bool value) const { return value; }

    QVariant operator()(const std::vector<std::byte>& data) const {
        return QByteArray(reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size()));
    }

    QVariant operator()(const Date& date) const {
        QDBusArgument argument;
        argument.beginStructure();
        argument << date.secondsSince1970;
        argument.endStructure();
        return QVariant::fromValue(argument);
    }

    QVariant operator()(const std::vector<PropertyList>& list) const {
        QDBusArgument argument;
        argument.beginArray(QMetaType::fromType<QDBusVariant>());
        for (const auto& element : list) {
            argument << QDBusVariant(toBusVariant(element));
        }
        argument.endArray();
        return QVariant::fromValue(argument);
    }

    QVariant operator()(const Dictionary& dictionary) const { return QVariant::fromValue(toBusDictionary(dictionary)); }
};

QVariant toBusVariant(const PropertyList& list) {
    return std::visit(ToBusVariant{}, list.value);
}

std::optional<PropertyList> propertyList(const QVariant& value);

std::optional<Dictionary> dictionaryOf(const QDBusArgument& argument) {
    Dictionary dictionary;
    argument.beginMap();
    while (!argument.atEnd()) {
        QString key;
        QDBusVariant value;
        argument.beginMapEntry();
        argument >> key >> value;
        argument.endMapEntry();
        auto member = propertyList(value.variant());
        if (!member) {
            return std::nullopt;
        }
        dictionary.insert_or_assign(key.toStdString(), *std::move(member));
    }
    argument.endMap();
    return dictionary;
}

std::optional<PropertyList> listOf(const QDBusArgument& argument) {
    std::vector<PropertyList> list;
    argument.beginArray();
    while (!argument.atEnd()) {
        auto element = propertyList(argument.asVariant());
        if (!element) {
            return std::nullopt;
        }
        list.push_back(*std::move(element));
    }
    argument.endArray();
    return PropertyList{std::move(list)};
}

/// What arrives in a form of its own: arrays other than of bytes or strings, maps, structures.
std::optional<PropertyList> propertyList(const QDBusArgument& argument) {
    const auto signature = argument.currentSignature();
    if (signature == QLatin1String("a{sv}")) {
        auto dictionary = dictionaryOf(argument);
        return dictionary ? std::optional(PropertyList{*std::move(dictionary)}) : std::nullopt;
    }
    if (signature == QLatin1String("(d)")) {
        Date date;
        argument.beginStructure();
        argument >> date.secondsSince1970;
        argument.endStructure();
        return PropertyList{date};
    }
    return argument.currentType() == QDBusArgument::ArrayType ? listOf(argument) : std::nullopt;
}

std::optional<PropertyList> propertyList(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::QString:
        return PropertyList{value.toString().toStdString()};
    case QMetaType::Bool:
        return PropertyList{value.toBool()};
    case QMetaType::Double:
        return PropertyList{value.toDouble()};
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return PropertyList{std::int64_t{value.toLongLong()}};
    case QMetaType::ULongLong:
        return std::in_range<std::int64_t>(value.toULongLong())
                   ? std::optional(PropertyList{static_cast<std::int64_t>(value.toULongLong())})
                   : std::nullopt;
    case QMetaType::QByteArray: {
        const auto bytes = value.toByteArray();
        const auto* const begin = reinterpret_cast<const std::byte*>(bytes.constData());
        return PropertyList{std::vector<std::byte>(begin, begin + bytes.size())};
    }
    case QMetaType::QStringList: {
        std::vector<PropertyList> list;
        for (const auto& text : value.toStringList()) {
            list.push_back({text.toStdString()});
        }
        return PropertyList{std::move(list)};
    }
    default:
        break;
    }
    if (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        return propertyList(value.value<QDBusVariant>().variant());
    }
    if (value.metaType() == QMetaType::fromType<QDBusArgument>()) {
        return propertyList(value.value<QDBusArgument>());
    }
    return std::nullopt;
}

struct ToBus {
    QVariant operator()(const std::string& text) const { return QString::fromStdString(text); }

    QVariant operator()(bool value) const { return value; }

    QVariant operator()(double number) const { return number; }

    QVariant operator()(const Dictionary& dictionary) const { return QVariant::fromValue(toBusDictionary(dictionary)); }

    QVariant operator()(const std::optional<std::string>& text) const {
        return text ? QStringList(QString::fromStdString(*text)) : QStringList();
    }
};

} // namespace

std::string_view signatureOf(Type type) {
    static constexpr std::array<std::string_view, std::variant_size_v<Value>> signatures{"s", "b", "d", "a{sv}", "as"};
    return signatures[std::to_underlying(type)];
}

QVariant toBus(const Value& value) {
    return std::visit(ToBus{}, value);
}

std::optional<Value> fromBus(Type type, const QVariant& value) {
    const auto is = [&](QMetaType::Type expected) { return value.typeId() == expected; };
    switch (type) {
    case Type::text:
        return is(QMetaType::QString) ? std::optional<Value>(value.toString().toStdString()) : std::nullopt;
    case Type::boolean:
        return is(QMetaType::Bool) ? std::optional<Value>(value.toBool()) : std::nullopt;
    case Type::number:
        return is(QMetaType::Double) ? std::optional<Value>(value.toDouble()) : std::nullopt;
    case Type::dictionary: {
        const auto argument = value.value<QDBusArgument>();
        if (value.metaType() != QMetaType::fromType<QDBusArgument>() ||
            argument.currentSignature() != QLatin1String("a{sv}")) {
            return std::nullopt;
        }
        auto dictionary = dictionaryOf(argument);
        return dictionary ? std::optional<Value>(*std::move(dictionary)) : std::nullopt;
    }
    case Type::optionalText: {
        const auto texts = value.toStringList();
        if (!is(QMetaType::QStringList) || texts.size() > 1) {
            return std::nullopt;
        }
        auto text = texts.isEmpty() ? std::nullopt : std::optional(texts.front().toStdString());
        return Value(std::move(text));
    }
    }
    return std::nullopt;
}

} // namespace quorvale::platform::connection
