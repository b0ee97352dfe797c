#include "mcp/call/property.h"

#include <QJsonArray>
#include <QMap>
#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

QStringList texts(std::span<const QLatin1StringView> views)
{
    return {views.begin(), views.end()};
}

QString typeName(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return u"boolean"_s;
    case QJsonValue::Double: {
        const double number = value.toDouble();
        return std::isfinite(number) && number == std::floor(number) ? u"integer"_s : u"number"_s;
    }
    case QJsonValue::String:
        return u"string"_s;
    case QJsonValue::Array:
        return u"array"_s;
    case QJsonValue::Object:
        return u"object"_s;
    default:
        return u"null"_s;
    }
}

bool isOneOf(const QString &type, std::span<const QLatin1StringView> types)
{
    return std::ranges::any_of(types, [&](QLatin1StringView allowed) {
        return allowed == type || (allowed == "number"_L1 && type == "integer"_L1);
    });
}

QString integerText(const QJsonValue &value)
{
    const double number = value.toDouble();
    const qint64 whole = value.toInteger(); // 0 for what 64 bits do not hold
    return static_cast<double>(whole) == number ? QString::number(whole) : QString::number(number, 'f', 0);
}

std::optional<QString> rangeProblem(const QString &path, const QJsonValue &value, const Property &property)
{
    const double number = value.toDouble();
    const QString format = u"Argument \"%1\" is out of range (%2 %3, got %4)."_s;
    if (property.minimum && number < static_cast<double>(*property.minimum))
        return format.arg(path, u"minimum"_s, QString::number(*property.minimum), integerText(value));
    if (property.maximum && number > static_cast<double>(*property.maximum))
        return format.arg(path, u"maximum"_s, QString::number(*property.maximum), integerText(value));
    return {};
}

std::optional<QString> memberProblem(const QString &path, const QJsonObject &object, std::span<const Property> members);

std::optional<QString> valueProblem(const QString &path, const QJsonValue &value, const Property &property)
{
    const QString type = typeName(value);
    if (!isOneOf(type, property.types))
        return u"Argument \"%1\" must be of type %2, got %3."_s.arg(path, texts(property.types).join(" or "_L1), type);
    if (type == "integer"_L1)
        return rangeProblem(path, value, property);
    if (type == "array"_L1 && property.items) {
        const QJsonArray elements = value.toArray();
        for (qsizetype i = 0; i < elements.size(); ++i) {
            if (auto problem = valueProblem(u"%1[%2]"_s.arg(path, QString::number(i)), elements.at(i), *property.items))
                return problem;
        }
    }
    if (type == "object"_L1 && !property.members.empty())
        return memberProblem(path, value.toObject(), property.members);
    return {};
}

QString unknownArgument(const QString &name, const QStringList &known)
{
    if (known.isEmpty())
        return u"Unknown argument \"%1\", this tool takes no arguments."_s.arg(name);
    return u"Unknown argument \"%1\", expected one of: %2."_s.arg(name, known.join(", "_L1));
}

std::optional<QString> memberProblem(const QString &path, const QJsonObject &object, std::span<const Property> members)
{
    if (!object.contains(members.front().name))
        return u"Missing required argument: %1.%2"_s.arg(path, members.front().name);
    QStringList known;
    for (const Property &member : members)
        known.append(member.name);
    for (const QString &name : object.keys()) {
        const qsizetype place = known.indexOf(name);
        const QString memberPath = u"%1.%2"_s.arg(path, name);
        if (place < 0)
            return unknownArgument(memberPath, known);
        if (auto problem = valueProblem(memberPath, object.value(name), members[static_cast<std::size_t>(place)]))
            return problem;
    }
    return {};
}

std::optional<QString> wordProblem(const QString &path, const QJsonValue &value, const Property &property)
{
    if (value.isString() && !property.choices.empty() &&
        std::ranges::none_of(property.choices, [&](auto choice) { return choice == value.toString(); })) {
        return u"Argument \"%1\" must be one of: %2; got \"%3\"."_s.arg(path, texts(property.choices).join(", "_L1),
                                                                        value.toString().left(40));
    }
    if (value.isArray() && property.items) {
        const QJsonArray elements = value.toArray();
        for (qsizetype i = 0; i < elements.size(); ++i) {
            if (auto problem = wordProblem(u"%1[%2]"_s.arg(path, QString::number(i)), elements.at(i), *property.items))
                return problem;
        }
    }
    for (const Property &member : property.members) {
        if (auto problem = wordProblem(u"%1.%2"_s.arg(path, member.name), value[member.name], member))
            return problem;
    }
    return {};
}

} // namespace

QJsonObject Property::schema() const
{
    QJsonObject schema;
    if (types.size() == 1)
        schema.insert(u"type"_s, types.front());
    else
        schema.insert(u"type"_s, QJsonArray::fromStringList(texts(types)));
    if (!description.isEmpty())
        schema.insert(u"description"_s, description);
    if (minimum)
        schema.insert(u"minimum"_s, *minimum);
    if (maximum)
        schema.insert(u"maximum"_s, *maximum);
    if (!choices.empty())
        schema.insert(u"enum"_s, QJsonArray::fromStringList(texts(choices)));
    if (items)
        schema.insert(u"items"_s, items->schema());
    if (!members.empty()) {
        QJsonObject properties;
        for (const Property &member : members)
            properties.insert(member.name, member.schema());
        schema.insert(u"properties"_s, properties);
        schema.insert(u"required"_s, QJsonArray{members.front().name});
    }
    return schema;
}

std::optional<QString> argumentProblem(const QJsonObject &arguments, std::span<const Property> required,
                                       std::span<const Property> optional)
{
    QMap<QString, const Property *> properties;
    for (const auto &group : {required, optional}) {
        for (const Property &property : group)
            properties.insert(property.name, &property);
    }
    const QStringList given = arguments.keys();
    for (const QString &name : given) {
        if (!properties.contains(name))
            return unknownArgument(name, properties.keys());
    }
    for (const Property &property : required) {
        if (!arguments.contains(property.name))
            return u"Missing required argument: %1"_s.arg(property.name);
    }
    for (const QString &name : given) {
        if (auto problem = valueProblem(name, arguments.value(name), *properties.value(name)))
            return problem;
    }
    return {};
}

std::optional<QString> choiceProblem(const QJsonObject &arguments, std::span<const Property> properties)
{
    for (const Property &property : properties) {
        if (auto problem = wordProblem(property.name, arguments.value(property.name), property))
            return problem;
    }
    return {};
}
