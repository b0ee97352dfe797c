#include "store/text/databasetextconverter.h"

#include "store/tables/projecttables.h"
#include "store/text/objectrowwriter.h"
#include "store/text/tableform.h"
#include "store/text/textscope.h"
#include "texttools/asciitext.h"
#include "texttools/settingstext.h"
#include "texttools/wholefile.h"

#include <QBuffer>
#include <QDebug>
#include <QRegularExpression>

#include <algorithm>
#include <span>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

QStringList DatabaseTextConverter::tableNames() const
{
    return store_->context.statements.list(
        {"tableNames", u"SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"_s}, {},
        [](const ResultRow &row) { return row.text(0); });
}

bool DatabaseTextConverter::convertSqlToText()
{
    if (!file_ || !store_)
        return false;
    if (!std::exchange(nullsAreReplaced_, false))
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
    const TextScope scope(store_->context.statements);
    for (const QString &table : tables) {
        if (scope.leavesOut(table))
            qDebug().noquote() << "Ignored table " << table;
        else if (const TableForm *form = TableForm::of(table))
            writeTable(table, *form, writer);
        else
            qDebug().noquote() << "unhandled table" << table;
    }
    pool_.clear();
    // A table that cannot be read is logged and left out, unless the reason is the file itself.
    return writer.flush() && !store_->context.statements.isDamaged();
}

void DatabaseTextConverter::replaceNulls()
{
    for (const QString &table : tableNames())
        replaceNulls(table);
    nullsAreReplaced_ = true;
}

void DatabaseTextConverter::replaceNulls(const QString &table)
{
    if (table == "Strings"_L1)
        return;
    QStringList assignments;
    QStringList conditions;
    for (const ColumnInfo &column : columnsOf(store_->context.statements, table)) {
        // Newer versions of SQLite tell the common types in capitals, whatever the table was made with.
        const bool isNumber = column.type.compare("integer"_L1, Qt::CaseInsensitive) == 0;
        if (!isNumber && column.type.compare("text"_L1, Qt::CaseInsensitive) != 0)
            continue;
        const QString name = SqlText::identifier(column.name);
        assignments.append(u"%1 = ifnull(%1, %2)"_s.arg(name, isNumber ? u"0"_s : u"''"_s));
        conditions.append(name + " IS NULL"_L1);
    }
    if (assignments.isEmpty())
        return;
    // A row whose empty text would stand twice where it may stand once stays as it is.
    std::ignore =
        execute("replaceNulls", u"UPDATE OR IGNORE %1 SET %2 WHERE %3"_s.arg(
                                    SqlText::identifier(table), assignments.join(", "_L1), conditions.join(" OR "_L1)));
}

/// Executes a statement that nobody is told of.
bool DatabaseTextConverter::execute(const char *operation, const QString &text, const QVariantList &values)
{
    return store_->context.statements.execute({operation, text}, values);
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
    QMap<QString, QString> settings;
    const Statement select = {"writeSettings",
                              u"SELECT item, value FROM %1 ORDER BY item"_s.arg(SqlText::identifier(table))};
    std::ignore = store_->context.statements.visit(select, {}, [&](const ResultRow &row) {
        // In a key the text form holds no empty group.
        const QString key = row.text(0).split(u'/', Qt::SkipEmptyParts).join(u'/');
        if (!key.isEmpty())
            settings.insert(key, row.text(1));
    });
    for (const auto &[key, value] : settings.asKeyValueRange())
        writer.writeText(SettingsText::escapedKey(key), value);
}

/// The expression for the groups of a row. To number rows with one key takes longer than all else about them.
QLatin1StringView DatabaseTextConverter::pathOf(const QString &table, const TableForm &form) const
{
    if (form.same.isEmpty())
        return form.path;
    const QString test =
        u"SELECT 1 FROM %1 GROUP BY %2 HAVING count(*) > 1 LIMIT 1"_s.arg(SqlText::identifier(table), form.key);
    return store_->context.statements.hasRow({"pathOf", test}) ? form.same : form.path;
}

/// What the rows of a table are in order of, as their paths are.
QString DatabaseTextConverter::orderOf(const QString &table, const TableForm &form) const
{
    const bool isObjects = form.kind == TableForm::Table::Objects;
    if (isObjects || form.kind == TableForm::Table::SubObjects) {
        // Where all indices have four digits, their order is that of the numbers, which the table has as an index.
        const QString test =
            u"SELECT min(objectindex) >= 4096 AND max(objectindex) <= 65535 FROM %1"_s.arg(SqlText::identifier(table));
        if (store_->context.statements.value({"orderOf", test}).toBool())
            return isObjects ? u"objectindex"_s : u"objectindex, subindex || '/'"_s;
    }
    return u"rowpath || '/'"_s;
}

/// The columns of a table that stand in the text, and what a select makes of their values.
QList<DatabaseTextConverter::TextColumn> DatabaseTextConverter::textColumnsOf(const QString &table,
                                                                              const TableForm &form) const
{
    const QStringList keyColumns = QString(form.key).split(u',');
    const bool hasTexts = form.kind != TableForm::Table::Nodes && form.kind != TableForm::Table::UDSSettings;
    QList<TextColumn> columns;
    for (const ColumnInfo &column : columnsOf(store_->context.statements, table)) {
        const bool isHidden =
            form.kind == TableForm::Table::SubObjects && TextScope::leavesOutOfSubindices(column.name);
        if (isHidden || (!form.keyIsWritten && keyColumns.contains(column.name)))
            continue;
        const bool isText =
            hasTexts && (column.name == "name"_L1 || (form.descriptionIsText && column.name == "description"_L1));
        columns.append({'\\' + SettingsText::escapedKey(column.name), u"t."_s + SqlText::identifier(column.name),
                        column.name == "metadata"_L1 ? TextColumn::Bytes
                        : isText                     ? TextColumn::Pooled
                                                     : TextColumn::Plain});
    }
    return columns;
}

void DatabaseTextConverter::writeRows(const QString &table, const TableForm &form, SettingsText::Writer &writer)
{
    const QList<TextColumn> columns = textColumnsOf(table, form);
    QStringList expressions = {pathOf(table, form) + " AS rowpath"_L1};
    for (const TextColumn &column : columns)
        expressions.append(column.expression);
    const Statement select = {"writeRows", u"SELECT %1 FROM %2 AS t ORDER BY %3"_s.arg(expressions.join(", "_L1),
                                                                                       SqlText::identifier(table),
                                                                                       orderOf(table, form))};
    std::ignore = store_->context.statements.visit(select, {}, [&](const ResultRow &row) {
        writer.setRow(SettingsText::escapedKey(row.text(0)));
        int place = 1;
        for (const TextColumn &column : columns)
            writeCell(column, row, place++, writer);
    });
    writer.setRow({});
}

void DatabaseTextConverter::writeCell(const TextColumn &column, const ResultRow &row, int place,
                                      SettingsText::Writer &writer)
{
    if (column.kind == TextColumn::Pooled) {
        writer.writeAsItStands(column.key, pooledText(row, place));
    } else if (column.kind == TextColumn::Bytes) {
        const bool isNone = row.isInteger(place) ? row.number<qint64>(place) == 0 : row.utf8(place) == "0"_ba;
        const QByteArray bytes = isNone ? QByteArray() : row.value(place).toByteArray();
        if (bytes.isEmpty())
            writer.writeAsItStands(column.key, "@ByteArray(0)");
        else
            writer.writeBytes(column.key, bytes);
    } else if (row.isInteger(place)) {
        writer.writeNumber(column.key, row.number<qint64>(place));
    } else if (const auto text = row.utf8(place); text && AsciiText::isAscii(*text)) {
        writer.writeUtf8(column.key, *text);
    } else {
        writer.writeText(column.key, row.text(place));
    }
}

/// A name or description as it stands in the text, by its id; most stand in several rows, and are escaped once.
QByteArray DatabaseTextConverter::pooledText(const ResultRow &row, int place)
{
    if (pool_.isEmpty())
        std::ignore = store_->context.statements.visit(
            {"writeRows", u"SELECT id, string FROM Strings"_s}, {}, [this](const ResultRow &text) {
                pool_.insert(text.number<qint64>(0), SettingsText::valueText(text.text(1)));
            });
    return row.isInteger(place) ? pool_.value(row.number<qint64>(place)) : QByteArray();
}

bool DatabaseTextConverter::convertTextToSql()
{
    SettingsText::Reader reader;
    if (!file_ || !store_ || !reader.open(*file_))
        return false;
    QStringList groups = reader.groups();
    // A file that names no table of ours is another file, whatever brackets it holds.
    if (std::none_of(groups.begin(), groups.end(),
                     [](const QString &group) { return TableForm::of(group) != nullptr; }))
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
    const TableForm *form = TableForm::of(group);
    if (!form || form->kind == TableForm::Table::Nodes || !tableName.match(group).hasMatch())
        qDebug().noquote() << "unhandled group" << group;
    else if (form->path.isEmpty())
        readSettings(group, form->kind, reader);
    else if (form->kind == TableForm::Table::Objects || form->kind == TableForm::Table::SubObjects)
        readObjects(group, *form, reader);
    else
        readRows(group, *form, reader);
}

void DatabaseTextConverter::readLines(const SettingsText::Reader &reader)
{
    QStringList known = columnNamesOf(store_->context.statements, u"Nodes"_s);
    known.removeAll(u"nodeId"_s);
    reader.forEachRow(u"Nodes"_s, 1, [&](const SettingsText::Row &row) {
        const QString number = SettingsText::unescapedKey(row.path);
        bool ok = false;
        const uint line = number.toUInt(&ok);
        if (!ok || line > 0xff) {
            qDebug().noquote() << "no line" << number;
            return;
        }
        StoreRecords::NodeData node;
        node.outputpath = u"C:/"_s;
        // A line or value that cannot be written is logged there and passed over.
        std::ignore = store_->addNode(static_cast<quint8>(line), node, Quotes::Literal);
        for (std::size_t i = 0; i < row.columns.size(); ++i) {
            const QString column = SettingsText::unescapedKey(row.columns[i]);
            const QString text = SettingsText::valueOf(row.values[i]).toString();
            if (known.contains(column))
                std::ignore = store_->setNodeSqlValue(QString::number(line), column, text, Quotes::Kept);
            else
                qDebug().noquote() << "no column of a line" << column << text;
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
            std::ignore = store_->addNode(static_cast<quint8>(line), {}, Quotes::Literal);
    }
}

void DatabaseTextConverter::readSettings(const QString &group, TableForm::Table kind,
                                         const SettingsText::Reader &reader)
{
    // A key of another line than 0 has its line's suffix already.
    if (kind == TableForm::Table::DescriptionSettings)
        store_->setCurrentLine(0);
    const auto set = [&](const QString &key, const QString &text) {
        switch (kind) {
        case TableForm::Table::DescriptionSettings:
            return store_->setDescriptionSetting(key, text);
        case TableForm::Table::GeneralSettings:
            return store_->setGeneralSetting(key, text, Quotes::Kept);
        case TableForm::Table::MiscSettings:
            return store_->setMiscSetting(key, text);
        default:
            return store_->setJ1939Setting(key, text);
        }
    };
    reader.forEachKey(group, [&](const QString &key, const QVariant &value) {
        const QString text = value.toString();
        if (!set(key, text))
            qDebug().noquote() << group << key << "failed:" << text;
    });
}

void DatabaseTextConverter::readObjects(const QString &group, const TableForm &form, const SettingsText::Reader &reader)
{
    const bool isSubObject = form.kind == TableForm::Table::SubObjects;
    ObjectRowWriter writer(*store_, group);
    reader.forEachRow(group, isSubObject ? 2 : 1, [&writer](const SettingsText::Row &row) { writer.writeRow(row); });
}

void DatabaseTextConverter::readRows(const QString &group, const TableForm &form, const SettingsText::Reader &reader)
{
    const QStringList known = columnNamesOf(store_->context.statements, group);
    if (known.isEmpty()) {
        qDebug().noquote() << "no table" << group;
        return;
    }
    const QStringList keyColumns = QString(form.key).split(u',');
    reader.forEachRow(group, keyColumns.size(), [&](const SettingsText::Row &row) {
        QStringList columns;
        QVariantList values;
        bool allStorable = true;
        for (std::size_t i = 0; i < row.columns.size(); ++i) {
            const QString column = SettingsText::unescapedKey(row.columns[i]);
            const QString value = SettingsText::valueOf(row.values[i]).toString();
            if (!known.contains(column, Qt::CaseInsensitive)) {
                qDebug().noquote() << "no column of" << group << column;
                continue;
            }
            columns.append(column);
            const bool isText = column == "name"_L1 && form.kind != TableForm::Table::UDSSettings;
            values.append(isText ? QVariant(store_->context.strings.idOf(value)) : QVariant(value));
            allStorable = allStorable && (isText || LiteralText::stored(value, Quotes::Kept));
        }
        const QStringList groups = SettingsText::unescapedKey(row.path).split(u'/');
        for (qsizetype i = 0; i < keyColumns.size(); ++i) {
            if (!columns.contains(keyColumns.at(i), Qt::CaseInsensitive)) {
                columns.append(keyColumns.at(i));
                values.append(groups.at(i).section(u'_', 0, 0));
            }
        }
        const QString statement = u"INSERT OR REPLACE INTO %1 (%2) VALUES (%3)"_s.arg(group, columns.join(", "_L1),
                                                                                      SqlText::places(values.size()));
        if (!allStorable || !execute("failed:", statement, values))
            qDebug().noquote() << "Line:" << groups.join(u'/');
    });
}
