#include "mcp/tools/settingscatalogue.h"
#include "mcp/tools/toolfamilies.h"
#include "nodedict/cohelper.h"
#include "support/mcpdriver.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// The tables of the documents are written from the catalogues of the program. scripts/server-docs renews them.

namespace {

QString row(const QStringList &cells)
{
    QStringList escaped;
    for (const QString &cell : cells)
        escaped.append(QString(cell).replace(u'|', "\\|"_L1).replace(u'<', "&lt;"_L1));
    return u"| %1 |\n"_s.arg(escaped.join(" | "_L1));
}

QString code(const QString &text)
{
    return text.isEmpty() ? text : u"`%1`"_s.arg(text);
}

QString argumentsOf(const Tool &tool)
{
    QStringList arguments;
    for (const Property &property : tool.required)
        arguments.append(code(property.name));
    for (const Property &property : tool.optional)
        arguments.append(u"[%1]"_s.arg(code(property.name)));
    return arguments.join(", "_L1);
}

QString toolTables()
{
    struct Family
    {
        QString title;
        QList<std::span<const Tool>> tables;
    };
    const QList<Family> families{
        {u"Project"_s, {ToolFamilies::project()}},
        {u"Lines"_s, {ToolFamilies::lines(), ToolFamilies::lineEdits()}},
        {u"Object dictionary (CANopen lines)"_s, {ToolFamilies::dictionary(), ToolFamilies::dictionaryEdits()}},
        {u"Reference profiles"_s, {ToolFamilies::profiles()}},
        {u"PGNs and SPNs (J1939 lines)"_s, {ToolFamilies::j1939()}},
        {u"CAN-IDs and data elements (raw CAN lines)"_s, {ToolFamilies::rawCan()}},
        {u"Settings"_s, {ToolFamilies::settings()}},
    };
    QString text;
    for (const auto &[title, tables] : families) {
        text += u"\n### %1\n\n| tool | arguments | what it does |\n|---|---|---|\n"_s.arg(title);
        for (const auto table : tables) {
            for (const Tool &tool : table)
                text += row({code(tool.name), argumentsOf(tool), tool.description});
        }
    }
    return text + u'\n';
}

/// The tools of `ncx mcp`, as a client lists them; without the arguments that all of a kind have.
QString assistantTable()
{
    static const QStringList common{u"verbose"_s, u"extended"_s};
    McpDriver server(u"ncx"_s);
    server.sendLine(R"({"id":1,"method":"tools/list"})");
    QString text = u"\n| tool | arguments | what it does |\n|---|---|---|\n"_s;
    for (const QJsonValue tool : server.reply().value("result"_L1).toObject().value("tools"_L1).toArray()) {
        const QJsonObject schema = tool["inputSchema"_L1].toObject();
        QStringList required;
        for (const QJsonValue name : schema.value("required"_L1).toArray())
            required.append(code(name.toString()));
        QStringList optional;
        for (const QString &name : schema.value("properties"_L1).toObject().keys()) {
            if (!required.contains(code(name)) && !common.contains(name))
                optional.append(u"[%1]"_s.arg(code(name)));
        }
        text += row(
            {code(tool["name"_L1].toString()), (required + optional).join(", "_L1), tool["description"_L1].toString()});
    }
    EXPECT_EQ(server.close().exitCode, 0);
    return text + u'\n';
}

QString valuesOf(const Setting &setting)
{
    switch (setting.type) {
    case Setting::Type::Bool:
        return u"yes or no"_s;
    case Setting::Type::Enum:
        return setting.enumValues.join(", "_L1);
    case Setting::Type::String:
        return u"text"_s;
    case Setting::Type::UInt:
        break;
    }
    return setting.min || setting.max ? u"%1 to %2"_s.arg(setting.min.value_or(0)).arg(setting.max.value_or(0xFFFFFFFF))
                                      : u"number"_s;
}

QString settingsTables()
{
    QString text;
    QString heading;
    for (const Setting &setting : SettingsCatalogue::settings()) {
        const QString here = u"\n## %1: %2\n\n"_s.arg(setting.group, setting.section);
        if (here != heading)
            text += here + u"| setting | label | values | needs | what it does |\n|---|---|---|---|---|\n"_s;
        heading = here;
        const QStringList marks{setting.isPerLine() ? u"per line"_s : u""_s, setting.readOnly ? u"read only"_s : u""_s};
        const QString notes = (QStringList{valuesOf(setting)} + marks).join(u' ').simplified();
        text += row({code(setting.key), setting.label, notes, code(setting.requiredKey), setting.description});
    }
    return text + u'\n';
}

QString dataTypeTable()
{
    QString text = u"\n| code | hex | name | short | bits | lowest | highest |\n|---:|---|---|---|---:|---:|---:|\n"_s;
    constexpr quint32 allCodes = 0x200;
    for (quint32 type = 1; type < allCodes; ++type) {
        const QString shortName = COHelper::index2DataTypeShortString(type);
        if (shortName.isEmpty())
            continue;
        const quint32 bits = COHelper::getDataLengthBits(type);
        const COHelper::Limits limits = COHelper::getDefaultLimits(type);
        text += row({QString::number(type), code(u"0x%1"_s.arg(type, 4, 16, QChar(u'0'))),
                     COHelper::index2DataTypeString(type), code(shortName), bits > 0 ? QString::number(bits) : u"any"_s,
                     limits.low, limits.high});
    }
    return text + u'\n';
}

/// Compares the part of a document between two marks, or writes it.
void expectInDocument(const QString &name, const QString &tables)
{
    const QString path = QStringLiteral(NCX_SOURCE_DIR "/docs/") + name;
    const QString document = QString::fromUtf8(readFile(path));
    const QString begin = u"<!-- begin: written by scripts/server-docs -->\n"_s;
    const QString end = u"<!-- end -->"_s;
    const qsizetype from = document.indexOf(begin) + begin.size();
    const qsizetype to = document.indexOf(end);
    ASSERT_TRUE(from >= begin.size() && to >= from) << qPrintable(name);
    if (qEnvironmentVariableIntValue("NCX_ACCEPT") == 1)
        writeFile(path, (document.first(from) + tables + document.sliced(to)).toUtf8());
    else
        EXPECT_TRUE(document.sliced(from, to - from) == tables)
            << qPrintable(name) << " is stale: run scripts/server-docs";
}

TEST(Documents, ListAllTools)
{
    expectInDocument(u"server.md"_s, toolTables());
}

TEST(Documents, ListAllToolsOfAssistants)
{
    expectInDocument(u"assistants.md"_s, assistantTable());
}

TEST(Documents, ListAllSettings)
{
    expectInDocument(u"settings.md"_s, settingsTables());
}

TEST(Documents, ListAllDataTypes)
{
    expectInDocument(u"data-types.md"_s, dataTypeTable());
}

} // namespace
