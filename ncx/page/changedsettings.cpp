#include "ncx/page/changedsettings.h"

#include "store/lineprotocols.h"
#include "store/objectdatabase.h"
#include "store/settings.h"
#include "store/tables/descriptiondefaults.h"

#include <QFile>
#include <QHash>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Words
{
    QString label;
    QString meaning;
};

QString withoutMarkup(QString text)
{
    static const QRegularExpression link(uR"(\[([^\]]*)\]\([^)]*\))"_s);
    return text.replace(link, u"\\1"_s).remove(u'`').trimmed();
}

/// The group of settings that the rows below a heading are of; nothing for a heading that does not tell.
std::optional<QString> groupOf(const QString &heading)
{
    if (heading == "## Settings that the server reaches"_L1)
        return u"GeneralSettings"_s;
    static const QRegularExpression form(u"^### (\\w+Settings)$"_s);
    const QRegularExpressionMatch match = form.match(heading);
    return match.hasMatch() ? std::optional(match.captured(1)) : std::nullopt;
}

/// By group and key. The rows of the tables are "| keys | meaning |" or "| key | label | values | needs | meaning |".
QHash<QString, Words> readWords()
{
    QHash<QString, Words> words;
    QFile file(u":/page/settings.md"_s);
    if (!file.open(QIODevice::ReadOnly))
        return words;
    static const QRegularExpression key(u"`([A-Za-z0-9_]+)`"_s);
    QString group;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        group = groupOf(line).value_or(group);
        if (!line.startsWith("| `"_L1) || !line.endsWith(" |"_L1))
            continue;
        const QStringList cells = line.sliced(2).chopped(2).split(u" | "_s);
        if (cells.size() != 2 && cells.size() != 5)
            continue;
        const QString label = cells.size() == 5 ? withoutMarkup(cells.at(1)) : QString();
        for (const QRegularExpressionMatch &match : key.globalMatch(cells.first()))
            words.insert(group + u'/' + match.captured(1), {.label = label, .meaning = withoutMarkup(cells.last())});
    }
    return words;
}

/// True for what the program keeps by itself, and for the types of lines, which no line is without.
bool isKept(const QString &key)
{
    static const QRegularExpression lineType(u"^line[0-9]+type$"_s);
    static const QStringList keys{u"use_core_headers"_s, u"new_init_structure"_s, u"qlk_generation_count"_s};
    return keys.contains(key) || lineType.match(key).hasMatch();
}

/// A number that is not set counts as 0.
bool isUnset(const QString &value, Settings::Form form)
{
    const bool isNumber = form == Settings::Form::OneValue || form == Settings::Form::PerLine;
    return value.trimmed().isEmpty() || (isNumber && value.trimmed() == "0"_L1);
}

class Collection
{
public:
    explicit Collection(QList<quint8> lines)
        : lines_(std::move(lines))
        , words_(readWords())
    {
    }

    void add(const QString &group, const QString &key, const QString &value, std::optional<quint8> line = {},
             const QString &byDefault = {})
    {
        QJsonObject json{{u"group"_s, group}, {u"key"_s, key}, {u"value"_s, value}};
        if (line)
            json.insert(u"line"_s, *line);
        const Words words = words_.value(group + u'/' + key);
        for (const auto &[name, text] :
             {std::pair{u"default"_s, byDefault}, {u"label"_s, words.label}, {u"meaning"_s, words.meaning}}) {
            if (!text.isEmpty())
                json.insert(name, text);
        }
        list_.append(json);
    }

    /// A table of the stack's settings, by key; of a list, a row for each line that it is meant for.
    void addTable(ObjectDataBase &store, Settings::Table table, const QString &group,
                  const QHash<QString, QString> &values)
    {
        const Settings settings(store, table);
        QStringList keys = values.keys();
        std::ranges::sort(keys);
        for (const QString &key : keys) {
            const Settings::Form form = Settings::form(key, table);
            const bool isList = form == Settings::Form::PerLine || form == Settings::Form::TextPerLine;
            if (isKept(key))
                continue;
            if (!isList) {
                if (!isUnset(values.value(key), form))
                    add(group, key, values.value(key));
                continue;
            }
            for (const quint8 line : lines_) {
                const bool isMeant = table == Settings::Table::General || LineProtocols::ofLine(store, line).j1939;
                const QString value = settings.text(key, line);
                if (isMeant && !isUnset(value, form))
                    add(group, key, value, line);
            }
        }
    }

    void addDescriptions(ObjectDataBase &store)
    {
        for (const quint8 line : lines_) {
            if (!LineProtocols::ofLine(store, line).canOpen)
                continue;
            store.setCurrentLine(line);
            for (const auto &[key, byDefault] : DescriptionDefaults::all) {
                const QString value = store.getDescriptionSetting(key);
                if (value != byDefault)
                    add(u"DescriptionSettings"_s, key, value, line, byDefault);
            }
        }
    }

    void addMisc(ObjectDataBase &store)
    {
        for (const QString &key : {u"costackpath"_s, u"SuppressedWarningGroups"_s, u"disableDocu"_s, u"generateML"_s,
                                   u"postGenEnabled"_s, u"postgencmd"_s, u"postgencmdargs"_s, u"postGenWait"_s}) {
            const QString value = store.getMiscSetting(key);
            if (!value.isEmpty() && value != "false"_L1)
                add(u"MiscSettings"_s, key, value);
        }
    }

    const QJsonArray &list() const { return list_; }

private:
    QList<quint8> lines_;
    QHash<QString, Words> words_;
    QJsonArray list_;
};

} // namespace

QJsonArray changedSettings(ObjectDataBase &store, const QList<quint8> &lines)
{
    Collection collection(lines);
    collection.addTable(store, Settings::Table::General, u"GeneralSettings"_s, store.getGeneralSettings());
    collection.addTable(store, Settings::Table::J1939, u"J1939Settings"_s, store.getJ1939Settings());
    collection.addDescriptions(store);
    collection.addMisc(store);
    return collection.list();
}
