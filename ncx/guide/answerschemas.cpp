// The schemas of what tools answer.

#include "ncx/guide/toolnotes.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

QJsonObject typed(const QString &type, const QString &description = {})
{
    QJsonObject schema{{u"type"_s, type}};
    if (!description.isEmpty())
        schema.insert(u"description"_s, description);
    return schema;
}

QJsonObject listOf(const QJsonObject &items)
{
    return {{u"type"_s, u"array"_s}, {u"items"_s, items}};
}

QJsonObject objectOf(const QJsonObject &properties, const QStringList &required)
{
    return {
        {u"type"_s, u"object"_s}, {u"properties"_s, properties}, {u"required"_s, QJsonArray::fromStringList(required)}};
}

QJsonObject countsSchema()
{
    QJsonObject counts;
    const QStringList keys{u"errors"_s, u"warnings"_s, u"corrections"_s, u"notes"_s};
    for (const QString &key : keys)
        counts.insert(key, typed(u"integer"_s));
    return objectOf(counts, keys);
}

QJsonObject findingSchema()
{
    return objectOf({{u"severity"_s, typed(u"string"_s)},
                     {u"rule"_s, typed(u"string"_s)},
                     {u"at"_s, typed(u"string"_s, u"line, and object:subindex, PGN, CAN-ID or setting"_s)},
                     {u"message"_s, typed(u"string"_s)},
                     {u"advice"_s, typed(u"string"_s, u"what to do"_s)},
                     {u"group"_s, typed(u"string"_s, u"warning group"_s)},
                     {u"count"_s, typed(u"integer"_s, u"findings of the same rule"_s)},
                     {u"alsoAt"_s, listOf(typed(u"string"_s))}},
                    {u"severity"_s, u"message"_s});
}

QJsonObject editSchema()
{
    return objectOf({{u"changed"_s, typed(u"string"_s)},
                     {u"findings"_s, typed(u"object"_s)},
                     {u"new"_s, listOf(typed(u"object"_s))},
                     {u"gone"_s, listOf(typed(u"object"_s))},
                     {u"untold"_s, typed(u"integer"_s)}},
                    {u"changed"_s, u"findings"_s, u"new"_s, u"gone"_s});
}

QJsonObject pageSchema()
{
    return objectOf({{u"items"_s, listOf(typed(u"object"_s))},
                     {u"total"_s, typed(u"integer"_s)},
                     {u"offset"_s, typed(u"integer"_s)},
                     {u"nextOffset"_s, typed(u"integer"_s, u"of the next page; missing on the last one"_s)}},
                    {u"items"_s, u"total"_s, u"offset"_s});
}

} // namespace

QJsonObject ToolNote::outputSchema() const
{
    switch (answer) {
    case Answer::Edit:
        return editSchema();
    case Answer::Page:
        return pageSchema();
    case Answer::Items:
        return objectOf({{u"items"_s, QJsonObject{{u"type"_s, u"array"_s}}}}, {u"items"_s});
    case Answer::Findings:
        return objectOf({{u"findings"_s, countsSchema()},
                         {u"items"_s, listOf(findingSchema())},
                         {u"total"_s, typed(u"integer"_s)},
                         {u"offset"_s, typed(u"integer"_s)},
                         {u"nextOffset"_s, typed(u"integer"_s)}},
                        {u"findings"_s, u"items"_s, u"total"_s});
    case Answer::Object:
        break;
    }
    return typed(u"object"_s);
}
