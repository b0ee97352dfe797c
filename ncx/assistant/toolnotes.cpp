#include "ncx/assistant/toolnotes.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using enum ToolNote::Effect;
using Answer = ToolNote::Answer;

constexpr ToolNote notes[] = {
    {"open_project"_L1, Opens, Answer::Object},
    {"new_project"_L1, Opens, Answer::Object},
    {"import_file"_L1, Removes, Answer::Edit},
    {"generate"_L1, Writes, Answer::Object},
    {"save_project"_L1, Writes, Answer::Object},
    {"check_model"_L1, Reads, Answer::Findings},
    {"show"_L1, Reads, Answer::Object},
    {"diff_project"_L1, Reads, Answer::Page},
    {"undo"_L1, Steps, Answer::Edit},
    {"redo"_L1, Steps, Answer::Edit},
    {"list_lines"_L1, Reads, Answer::Items},
    {"get_line"_L1, Reads, Answer::Object},
    {"add_line"_L1, Adds, Answer::Edit},
    {"set_line"_L1, Sets, Answer::Edit},
    {"delete_line"_L1, Removes, Answer::Edit},
    {"list_indices"_L1, Reads, Answer::Page},
    {"find_indices"_L1, Reads, Answer::Page},
    {"get_index"_L1, Reads, Answer::Object},
    {"get_subindex"_L1, Reads, Answer::Object},
    {"add_index"_L1, Adds, Answer::Edit},
    {"set_index"_L1, Sets, Answer::Edit},
    {"set_index_name"_L1, Sets, Answer::Edit},
    {"delete_index"_L1, Removes, Answer::Edit},
    {"copy_index"_L1, Removes, Answer::Edit},
    {"add_subindex"_L1, Adds, Answer::Edit},
    {"set_subindex"_L1, Sets, Answer::Edit},
    {"set_subindex_value"_L1, Sets, Answer::Edit},
    {"delete_subindex"_L1, Removes, Answer::Edit},
    {"list_profiles"_L1, Reads, Answer::Items},
    {"list_profile_indices"_L1, Reads, Answer::Page},
    {"get_profile_index"_L1, Reads, Answer::Object},
    {"import_profile_indices"_L1, Adds, Answer::Edit},
    {"list_pgns"_L1, Reads, Answer::Page},
    {"get_pgn"_L1, Reads, Answer::Object},
    {"add_pgn"_L1, Adds, Answer::Edit},
    {"delete_pgn"_L1, Removes, Answer::Edit},
    {"list_spns"_L1, Reads, Answer::Items},
    {"get_spn"_L1, Reads, Answer::Object},
    {"add_spn"_L1, Adds, Answer::Edit},
    {"delete_spn"_L1, Removes, Answer::Edit},
    {"list_can_ids"_L1, Reads, Answer::Page},
    {"get_can_id"_L1, Reads, Answer::Object},
    {"add_can_id"_L1, Adds, Answer::Edit},
    {"delete_can_id"_L1, Removes, Answer::Edit},
    {"add_data_element"_L1, Adds, Answer::Edit},
    {"delete_data_element"_L1, Removes, Answer::Edit},
    {"get_settings"_L1, Reads, Answer::Object},
    {"get_setting"_L1, Reads, Answer::Object},
    {"set_setting"_L1, Sets, Answer::Edit},
    {"list_description_settings"_L1, Reads, Answer::Page},
    {"set_description_setting"_L1, Sets, Answer::Edit},
    {"list_j1939_settings"_L1, Reads, Answer::Page},
    {"set_j1939_setting"_L1, Sets, Answer::Edit},
};

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
                     {u"findings"_s, countsSchema()},
                     {u"new"_s, listOf(typed(u"object"_s))},
                     {u"gone"_s, listOf(typed(u"object"_s))},
                     {u"untold"_s, typed(u"integer"_s, u"new findings that are left out"_s)}},
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

ToolNote ToolNote::of(QLatin1StringView tool)
{
    const auto *const found = std::ranges::find(notes, tool, &ToolNote::name);
    return found == std::end(notes) ? ToolNote{tool, Effect::Writes, Answer::Object} : *found;
}

QJsonObject ToolNote::annotations() const
{
    return {{u"readOnlyHint"_s, effect == Effect::Reads},
            {u"destructiveHint"_s, effect == Effect::Removes || effect == Effect::Opens || effect == Effect::Writes ||
                                       effect == Effect::Steps},
            {u"idempotentHint"_s, effect == Effect::Reads || effect == Effect::Sets || effect == Effect::Writes},
            {u"openWorldHint"_s, false}};
}

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
