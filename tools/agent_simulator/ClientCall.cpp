#include "agent_simulator/ClientCall.hpp"

#include <QDBusVariant>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <algorithm>
#include <utility>

namespace quorvale::agent_simulator {

namespace {

struct Parameter {
    QString type;
    QString standard;
};

const QMap<QString, QList<Parameter>>& methods() {
    static const auto boolean = Parameter{.type = QStringLiteral("b"), .standard = QStringLiteral("true")};
    static const auto text = Parameter{.type = QStringLiteral("s"), .standard = QStringLiteral("{}")};
    static const auto dictionary = Parameter{.type = QStringLiteral("a{sv}"), .standard = QStringLiteral("{}")};
    static const QMap<QString, QList<Parameter>> all{
        {QStringLiteral("promptUserWithAboutFlow"),
         {{.type = QStringLiteral("a{sv}"), .standard = QStringLiteral(R"({"remote":"203.0.113.7","port":443})")},
          {.type = QStringLiteral("s"), .standard = QStringLiteral("www.example.org")},
          {.type = QStringLiteral("s"), .standard = QStringLiteral("curl")},
          {.type = QStringLiteral("s"), .standard = QStringLiteral("domain")},
          {.type = QStringLiteral("s"), .standard = QStringLiteral("1")},
          {.type = QStringLiteral("d"), .standard = QStringLiteral("1700000000.5")}}},
        {QStringLiteral("updateProtectionStatus"), {boolean}},
        {QStringLiteral("updateRulesStatus"), {boolean}},
        {QStringLiteral("updateEventLogDefaults"), {text}},
        {QStringLiteral("updateGeoDataDefaults"), {text}},
        {QStringLiteral("sendDefaultsToClientWith"), {dictionary}},
    };
    return all;
}

/// `value` as an argument of the D-Bus type `type`; invalid if it isn't one.
QVariant argument(QStringView type, const QString& value) {
    bool converted = true;
    QVariant result;
    if (type == u"s") {
        result = value;
    } else if (type == u"b") {
        converted = value == u"true" || value == u"false";
        result = value == u"true";
    } else if (type == u"i") {
        result = value.toInt(&converted);
    } else if (type == u"u") {
        result = value.toUInt(&converted);
    } else if (type == u"x") {
        result = value.toLongLong(&converted);
    } else if (type == u"d") {
        result = value.toDouble(&converted);
    } else if (type == u"v") {
        result = QVariant::fromValue(QDBusVariant(value));
    } else if (type == u"as") {
        const auto json = QJsonDocument::fromJson(value.toUtf8());
        converted = json.isArray();
        result = json.array().toVariantList();
        converted = converted && result.convert(QMetaType::fromType<QStringList>());
    } else if (type == u"a{sv}") {
        const auto json = QJsonDocument::fromJson(value.toUtf8());
        converted = json.isObject();
        result = json.object().toVariantMap();
    } else {
        converted = false;
    }
    return converted ? result : QVariant();
}

bool isType(QStringView text) {
    static const QStringList types{QStringLiteral("s"),  QStringLiteral("b"), QStringLiteral("i"),
                                   QStringLiteral("u"),  QStringLiteral("x"), QStringLiteral("d"),
                                   QStringLiteral("as"), QStringLiteral("v"), QStringLiteral("a{sv}")};
    return types.contains(text);
}

} // namespace

bool ClientCall::isMethod(const QString& name) {
    return methods().contains(name);
}

std::expected<ClientCall, QString> ClientCall::parse(const QString& method, const QStringList& words) {
    const auto parameters = methods().value(method);
    ClientCall call{.method = method, .arguments = {}, .target = {}};
    bool defaults = true;
    for (const auto& word : words) {
        if (word.startsWith(u'@')) {
            call.target = word.mid(1);
            continue;
        }
        if (word == u"-") {
            defaults = false;
            continue;
        }
        const auto position = call.arguments.size();
        auto type = position < parameters.size() ? parameters[position].type : QStringLiteral("s");
        auto value = word;
        if (const auto colon = word.indexOf(u':'); colon > 0 && isType(QStringView(word).first(colon))) {
            type = word.first(colon);
            value = word.mid(colon + 1);
        }
        auto parsed = argument(type, value);
        if (!parsed.isValid()) {
            return std::unexpected(QStringLiteral("'%1' is no argument of type %2").arg(value, type));
        }
        call.arguments.append(std::move(parsed));
    }
    while (defaults && call.arguments.size() < parameters.size()) {
        const auto& parameter = parameters[call.arguments.size()];
        call.arguments.append(argument(parameter.type, parameter.standard));
    }
    return call;
}

} // namespace quorvale::agent_simulator
