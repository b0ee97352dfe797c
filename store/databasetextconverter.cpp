#include "store/databasetextconverter.h"

#include "store/objectdatabase.h"
#include "store/objectrowwriter.h"
#include "texttools/settingstext.h"
#include "texttools/wholefile.h"

#include <QBuffer>
#include <QDebug>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>

#include <algorithm>
#include <span>
#include <utility>

using namespace Qt::StringLiterals;

enum class DatabaseTextConverter::Table
{
    DescriptionSettings,
    GeneralSettings,
    MiscSettings,
    SubObjects,
    Objects,
    Nodes,
    PGNs,
    SPNs,
    J1939Settings,
    UDSSettings
};

/// How a family of tables stands in the text.
struct DatabaseTextConverter::TableForm
{
    Table kind;
    QLatin1StringView word; ///< what the names of the tables hold
    QLatin1StringView path; ///< the groups of a row, as an expression on its columns; empty for a table of settings
    QLatin1StringView key;  ///< columns whose values the groups tell, joined by ","
    bool keyIsWritten;      ///< the key columns stand among the row's keys as well
    bool descriptionIsText; ///< like the name, "description" stands as its text instead of its id
};

namespace {

using Word = QLatin1StringView;

constexpr Word ignoredWords[] = {"CANIDs"_L1,       "Connections"_L1,    "DataElements"_L1, "EnergyBusSettings"_L1,
                                 "Groups"_L1,       "SignalGroups"_L1,   "Signals"_L1,      "Strings"_L1,
                                 "VirtualNodes"_L1, "LockedMappings"_L1, "LockedPDOs"_L1};
constexpr Word canopenWords[] = {"Objects"_L1, "Nodes"_L1, "SubObjects"_L1};
constexpr Word j1939Words[] = {"PGNs"_L1, "SPNs"_L1, "J1939Settings"_L1};

/// Columns of a subindex that the text never holds.
constexpr Word hiddenSubObjectColumns[] = {"cyclicread"_L1,   "changedbyuser"_L1, "dcfcomponent"_L1,
                                           "wizardsource"_L1, "signalid"_L1,      "denotation"_L1};

bool holdsOneOf(const QString &table, std::span<const Word> words)
{
    return std::any_of(words.begin(), words.end(), [&](Word word) { return table.contains(word); });
}

void logFailure(const char *operation, const QSqlQuery &query)
{
    qDebug().noquote() << operation << query.lastQuery() << "failed:" << query.lastError().text();
}

QString quotedName(QString name)
{
    return u'"' + name.replace(u'"', R"("")"_L1) + u'"';
}

struct ColumnInfo
{
    QString name;
    QString type;
};

/// The columns of a table in the order of their names.
QList<ColumnInfo> columnsOf(const QSqlDatabase &database, const QString &table)
{
    QList<ColumnInfo> columns;
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(u"SELECT name, type FROM PRAGMA_TABLE_INFO('%1')"_s.arg(QString(table).replace(u'\'', "''"_L1))))
        logFailure("columnsOf", query);
    while (query.next())
        columns.append({query.value(0).toString(), query.value(1).toString()});
    std::sort(columns.begin(), columns.end(),
              [](const ColumnInfo &left, const ColumnInfo &right) { return left.name < right.name; });
    return columns;
}

QStringList columnNamesOf(const QSqlDatabase &database, const QString &table)
{
    QStringList names;
    for (const ColumnInfo &column : columnsOf(database, table))
        names.append(column.name);
    return names;
}

/// Which protocols the lines of a project speak. Combined and raw CAN types count as neither of the two, but for
/// "CANopen and J1939".
class LineTypes
{
public:
    explicit LineTypes(const QSqlDatabase &database)
    {
        static const QRegularExpression form(u"^line(0|[1-9]\\d{0,2})type$"_s);
        QSqlQuery query(database);
        query.setForwardOnly(true);
        if (!query.exec(u"SELECT item, value FROM GeneralSettings"_s))
            logFailure("LineTypes", query);
        while (query.next()) {
            const auto match = form.match(query.value(0).toString());
            const uint line = match.captured(1).toUInt();
            if (match.hasMatch() && line <= lastLine)
                types_.insert(line, query.value(1).toInt());
        }
    }

    bool isLeftOut(const QString &table) const
    {
        if (holdsOneOf(table, canopenWords))
            return !hasProtocol(canopen) || typeOfTable(table) == j1939;
        if (holdsOneOf(table, j1939Words))
            return !hasProtocol(j1939) || typeOfTable(table) == canopen;
        return false;
    }

private:
    static constexpr uint lastLine = 255;
    static constexpr int canopen = 1;
    static constexpr int j1939 = 2;
    static constexpr int canopenAndJ1939 = 5;

    bool hasProtocol(int type) const
    {
        return std::any_of(types_.begin(), types_.end(),
                           [type](int lineType) { return lineType == type || lineType == canopenAndJ1939; });
    }

    /// The type of the line whose number ends the table's name; 0 for none.
    int typeOfTable(const QString &table) const
    {
        static const QRegularExpression form(u"(\\d+)$"_s);
        const auto match = form.match(table);
        if (!match.hasMatch())
            return 0;
        bool ok = false;
        const uint line = match.captured(1).toUInt(&ok);
        if (!ok)
            qWarning() << "Could not convert captured digits:" << match.captured(1);
        return ok ? types_.value(line) : 0;
    }

    QHash<uint, int> types_;
};

/// Gathers the keys of each row of a group, whose rows stand `depth` groups deep; keys elsewhere belong to no row.
void forEachRow(const SettingsText::Reader &reader, const QString &group, qsizetype depth,
                const std::function<void(const TextRow &)> &visit)
{
    QString path;
    TextRow row;
    QStringList columnsBefore;
    const auto finish = [&] {
        if (!row.columns.isEmpty())
            visit(row);
        columnsBefore = std::exchange(row.columns, {});
        row.values.clear();
    };
    reader.forEachKey(group, [&](const QString &key, const QVariant &value) {
        const qsizetype end = key.lastIndexOf(u'/');
        if (end < 0 || key.count(u'/') != depth)
            return;
        const QStringView keyPath = QStringView(key).first(end);
        if (keyPath != path || row.columns.isEmpty()) {
            finish();
            path = keyPath.toString();
            row.groups = path.split(u'/');
        }
        // Nearly every row has the columns of the one before.
        const QStringView column = QStringView(key).sliced(end + 1);
        const qsizetype place = row.columns.size();
        const bool isAsBefore = place < columnsBefore.size() && columnsBefore.at(place) == column;
        row.columns.append(isAsBefore ? columnsBefore.at(place) : column.toString());
        row.values.append(value);
    });
    finish();
}

} // namespace

const DatabaseTextConverter::TableForm *DatabaseTextConverter::formOf(const QString &table)
{
    // The first family that fits is a table's own; of two rows with one number the second gets a path of its own.
    static constexpr TableForm forms[] = {
        {Table::DescriptionSettings, "DescriptionSettings"_L1, {}, {}, false, false},
        {Table::GeneralSettings, "GeneralSettings"_L1, {}, {}, false, false},
        {Table::MiscSettings, "MiscSettings"_L1, {}, {}, false, false},
        {Table::SubObjects, "SubObjects"_L1, "printf('0x%x/%d', objectindex, subindex)"_L1, "objectindex,subindex"_L1,
         false, true},
        {Table::Objects, "Objects"_L1, "printf('0x%x', objectindex)"_L1, "objectindex"_L1, false, true},
        {Table::Nodes, "Nodes"_L1, "nodeId"_L1, "nodeId"_L1, false, false},
        {Table::PGNs, "PGNs"_L1,
         "number || CASE row_number() OVER (PARTITION BY number ORDER BY rowid) WHEN 1 THEN '' ELSE '_' || "
         "row_number() OVER (PARTITION BY number ORDER BY rowid) END"_L1,
         "number"_L1, true, false},
        {Table::SPNs, "SPNs"_L1,
         "pgnnumber || '/' || spnnumber || CASE row_number() OVER (PARTITION BY pgnnumber, spnnumber ORDER BY rowid) "
         "WHEN 1 THEN '' ELSE '_' || row_number() OVER (PARTITION BY pgnnumber, spnnumber ORDER BY rowid) END"_L1,
         "pgnnumber,spnnumber"_L1, true, false},
        {Table::J1939Settings, "J1939Settings"_L1, {}, {}, false, false},
        {Table::UDSSettings, "UDSSettings"_L1, "sid"_L1, "sid"_L1, true, false},
    };
    const auto *const form = std::find_if(std::begin(forms), std::end(forms),
                                          [&](const TableForm &candidate) { return table.contains(candidate.word); });
    return form == std::end(forms) ? nullptr : form;
}

QStringList DatabaseTextConverter::tableNames() const
{
    QStringList tables;
    QSqlQuery query(database_);
    query.setForwardOnly(true);
    if (!query.exec(u"SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"_s))
        logFailure("tableNames", query);
    while (query.next())
        tables.append(query.value(0).toString());
    return tables;
}

bool DatabaseTextConverter::convertSqlToText()
{
    if (!file_)
        return false;
    replaceNulls();
    const QStringList tables = tableNames();
    writeFailed_ = tables.isEmpty();
    if (writeFailed_)
        return true;
    WholeFile file(*file_);
    if (file.open(QIODevice::WriteOnly)) {
        writeFailed_ = !writeTables(tables, file) || !file.commitWhole();
    } else {
        QBuffer text;
        text.open(QIODevice::WriteOnly);
        writeFailed_ = !writeTables(tables, text) || !WholeFile::overwriteInClosedFolder(*file_, text.data());
    }
    if (writeFailed_)
        qDebug().noquote() << "convertSqlToText" << *file_ << file.errorString();
    return true;
}

bool DatabaseTextConverter::writeTables(const QStringList &tables, QIODevice &device)
{
    SettingsText::Writer writer(device);
    const LineTypes lineTypes(database_);
    for (const QString &table : tables) {
        if (holdsOneOf(table, ignoredWords) || lineTypes.isLeftOut(table))
            qDebug().noquote() << "Ignored table " << table;
        else if (const TableForm *form = formOf(table))
            writeTable(table, *form, writer);
        else
            qDebug().noquote() << "unhandled table" << table;
    }
    return writer.flush();
}

void DatabaseTextConverter::replaceNulls()
{
    for (const QString &table : tableNames())
        replaceNulls(table);
}

void DatabaseTextConverter::replaceNulls(const QString &table)
{
    if (table == "Strings"_L1)
        return;
    QStringList assignments;
    QStringList conditions;
    for (const ColumnInfo &column : columnsOf(database_, table)) {
        // Newer versions of SQLite tell the common types in capitals, whatever the table was made with.
        const bool isNumber = column.type.compare("integer"_L1, Qt::CaseInsensitive) == 0;
        if (!isNumber && column.type.compare("text"_L1, Qt::CaseInsensitive) != 0)
            continue;
        const QString name = quotedName(column.name);
        assignments.append(u"%1 = ifnull(%1, %2)"_s.arg(name, isNumber ? u"0"_s : u"''"_s));
        conditions.append(name + " IS NULL"_L1);
    }
    if (assignments.isEmpty())
        return;
    QSqlQuery query(database_);
    // A row whose empty text would stand twice where it may stand once stays as it is.
    if (!query.exec(u"UPDATE OR IGNORE %1 SET %2 WHERE %3"_s.arg(quotedName(table), assignments.join(", "_L1),
                                                                 conditions.join(" OR "_L1))))
        logFailure("replaceNulls", query);
}

void DatabaseTextConverter::writeTable(const QString &table, const TableForm &form, SettingsText::Writer &writer)
{
    writer.setSection(table);
    if (form.path.isEmpty())
        writeSettings(table, writer);
    else
        writeRows(table, form, writer);
}

void DatabaseTextConverter::writeSettings(const QString &table, SettingsText::Writer &writer)
{
    QSqlQuery query(database_);
    query.setForwardOnly(true);
    if (!query.exec(u"SELECT item, value FROM %1 ORDER BY item"_s.arg(quotedName(table)))) {
        logFailure("writeSettings", query);
        return;
    }
    QMap<QString, QString> settings;
    while (query.next()) {
        // In a key the text form holds no empty group.
        const QString key = query.value(0).toString().split(u'/', Qt::SkipEmptyParts).join(u'/');
        if (!key.isEmpty())
            settings.insert(key, query.value(1).toString());
    }
    for (const auto &[key, value] : settings.asKeyValueRange())
        writer.writeText(SettingsText::escapedKey(key), value);
}

void DatabaseTextConverter::writeRows(const QString &table, const TableForm &form, SettingsText::Writer &writer)
{
    const QStringList keyColumns = QString(form.key).split(u',');
    QStringList expressions = {form.path + " AS rowpath"_L1};
    QList<QByteArray> keys;
    qsizetype metadataColumn = -1;
    for (const ColumnInfo &column : columnsOf(database_, table)) {
        const bool isHidden =
            form.kind == Table::SubObjects &&
            std::ranges::find(hiddenSubObjectColumns, column.name) != std::end(hiddenSubObjectColumns);
        if (isHidden || (!form.keyIsWritten && keyColumns.contains(column.name)))
            continue;
        const bool isText = form.kind != Table::Nodes && form.kind != Table::UDSSettings &&
                            (column.name == "name"_L1 || (form.descriptionIsText && column.name == "description"_L1));
        const QString name = quotedName(column.name);
        if (column.name == "metadata"_L1)
            metadataColumn = expressions.size();
        expressions.append(isText ? u"(SELECT string FROM Strings WHERE id = t.%1)"_s.arg(name) : u"t."_s + name);
        keys.append('\\' + SettingsText::escapedKey(column.name));
    }
    QSqlQuery query(database_);
    query.setForwardOnly(true);
    if (!query.exec(
            u"SELECT %1 FROM %2 AS t ORDER BY rowpath || '/'"_s.arg(expressions.join(", "_L1), quotedName(table)))) {
        logFailure("writeRows", query);
        return;
    }
    while (query.next()) {
        writer.setRow(SettingsText::escapedKey(query.value(0).toString()));
        for (int column = 1; column <= keys.size(); ++column) {
            const QVariant value = query.value(column);
            const QByteArray &key = keys.at(column - 1);
            if (column == metadataColumn) {
                const QByteArray bytes = value.toByteArray();
                writer.writeBytes(key, bytes.isEmpty() ? "0"_ba : bytes);
            } else if (value.typeId() == QMetaType::LongLong) {
                writer.writeNumber(key, value.toLongLong());
            } else {
                writer.writeText(key, value.toString());
            }
        }
    }
    writer.setRow({});
}

bool DatabaseTextConverter::convertTextToSql()
{
    SettingsText::Reader reader;
    if (!file_ || !store_ || !reader.open(*file_))
        return false;
    QStringList groups = reader.groups();
    // A file that names no table of ours is another file, whatever brackets it holds.
    if (std::none_of(groups.begin(), groups.end(), [](const QString &group) { return formOf(group) != nullptr; }))
        return false;
    // The other tables of a line exist once the line does.
    if (groups.removeAll(u"Nodes"_s) > 0)
        readLines(reader);
    else
        addLinesOf(groups);
    for (const QString &group : std::as_const(groups))
        readGroup(group, reader);
    return true;
}

void DatabaseTextConverter::readGroup(const QString &group, const SettingsText::Reader &reader)
{
    static const QRegularExpression tableName(u"^\\w+$"_s);
    const TableForm *form = formOf(group);
    if (!form || form->kind == Table::Nodes || !tableName.match(group).hasMatch())
        qDebug().noquote() << "unhandled group" << group;
    else if (form->path.isEmpty())
        readSettings(group, form->kind, reader);
    else if (form->kind == Table::Objects || form->kind == Table::SubObjects)
        readObjects(group, *form, reader);
    else
        readRows(group, *form, reader);
}

void DatabaseTextConverter::readLines(const SettingsText::Reader &reader)
{
    QStringList known = columnNamesOf(database_, u"Nodes"_s);
    known.removeAll(u"nodeId"_s);
    forEachRow(reader, u"Nodes"_s, 1, [&](const TextRow &row) {
        bool ok = false;
        const uint line = row.groups.first().toUInt(&ok);
        if (!ok || line > 0xff) {
            qDebug().noquote() << "no line" << row.groups.first();
            return;
        }
        ObjectDataBase::NODE_DATA_T node;
        node.outputpath = u"C:/"_s;
        store_->addNode(static_cast<quint8>(line), node);
        for (qsizetype i = 0; i < row.columns.size(); ++i) {
            const QString &column = row.columns.at(i);
            if (known.contains(column))
                store_->setNodeSqlValue(QString::number(line), column,
                                        ObjectDataBase::withQuotesDoubled(row.values.at(i).toString()));
            else
                qDebug().noquote() << "no column of a line" << column;
        }
    });
}

/// The text of a project without CANopen says nothing of its lines; they are those that it has tables of.
void DatabaseTextConverter::addLinesOf(const QStringList &groups)
{
    static const QRegularExpression form(u"^(?:PGNs|SPNs|UDSSettings)(\\d{1,3})$"_s);
    for (const QString &group : groups) {
        const auto match = form.match(group);
        const uint line = match.captured(1).toUInt();
        if (match.hasMatch() && line <= 0xff && !store_->nodeExists(static_cast<quint8>(line)))
            store_->addNode(static_cast<quint8>(line), {});
    }
}

void DatabaseTextConverter::readSettings(const QString &group, Table kind, const SettingsText::Reader &reader)
{
    // A key of another line than 0 has its line's suffix already.
    if (kind == Table::DescriptionSettings)
        store_->setCurrentLine(0);
    reader.forEachKey(group, [&](const QString &key, const QVariant &value) {
        const QString text = value.toString();
        bool done = false;
        switch (kind) {
        case Table::DescriptionSettings:
            done = store_->setDescriptionSetting(key, text);
            break;
        case Table::GeneralSettings:
            // Unlike the others, these stand in their statement as they are given.
            done = store_->setGeneralSetting(key, ObjectDataBase::withQuotesDoubled(text));
            break;
        case Table::MiscSettings:
            done = store_->setMiscSetting(key, text);
            break;
        default:
            done = store_->setJ1939Setting(key, text);
            break;
        }
        if (!done)
            qDebug().noquote() << group << key << "failed:" << text;
    });
}

void DatabaseTextConverter::readObjects(const QString &group, const TableForm &form, const SettingsText::Reader &reader)
{
    const bool isSubObject = form.kind == Table::SubObjects;
    ObjectRowWriter writer(*store_, database_, group, columnNamesOf(database_, group), isSubObject);
    forEachRow(reader, group, isSubObject ? 2 : 1, [&](const TextRow &row) { writer.write(row); });
}

void DatabaseTextConverter::readRows(const QString &group, const TableForm &form, const SettingsText::Reader &reader)
{
    const QStringList known = columnNamesOf(database_, group);
    if (known.isEmpty()) {
        qDebug().noquote() << "no table" << group;
        return;
    }
    const QStringList keyColumns = QString(form.key).split(u',');
    forEachRow(reader, group, keyColumns.size(), [&](const TextRow &row) {
        QStringList columns;
        QStringList values;
        for (qsizetype i = 0; i < row.columns.size(); ++i) {
            const QString &column = row.columns.at(i);
            const QString value = row.values.at(i).toString();
            if (!known.contains(column, Qt::CaseInsensitive)) {
                qDebug().noquote() << "no column of" << group << column;
                continue;
            }
            columns.append(column);
            const bool isText = column == "name"_L1 && form.kind != Table::UDSSettings;
            values.append(u"'%1'"_s.arg(isText ? QString::number(store_->getStringId(value))
                                               : ObjectDataBase::withQuotesDoubled(value)));
        }
        for (qsizetype i = 0; i < keyColumns.size(); ++i) {
            if (!columns.contains(keyColumns.at(i), Qt::CaseInsensitive)) {
                columns.append(keyColumns.at(i));
                values.append(u"'%1'"_s.arg(row.groups.at(i).section(u'_', 0, 0)));
            }
        }
        QSqlQuery query(database_);
        const QString statement =
            u"INSERT OR REPLACE INTO %1 (%2) VALUES (%3)"_s.arg(group, columns.join(", "_L1), values.join(", "_L1));
        if (!query.exec(statement))
            qDebug().noquote() << statement << "failed:" << query.lastError().text()
                               << "Line:" << row.groups.join(u'/');
    });
}
