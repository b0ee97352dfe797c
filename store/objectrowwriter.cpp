#include "store/objectrowwriter.h"

#include "store/metadatablob.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QRegularExpression>
#include <QSqlError>
#include <QVarLengthArray>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// An object's index or a subindex as SQL reads it: decimal, or hexadecimal behind "0x".
std::optional<uint> numberOf(const QString &text)
{
    bool ok = false;
    const uint number = text.toUInt(&ok, text.startsWith("0x"_L1, Qt::CaseInsensitive) ? 16 : 10);
    return ok && text.front().isDigit() ? std::optional(number) : std::nullopt;
}

bool isPooled(const QString &column)
{
    return column == "name"_L1 || column == "description"_L1;
}

bool hasPlainPath(const TextRow &row)
{
    return std::all_of(row.groups.begin(), row.groups.end(),
                       [](const QString &group) { return numberOf(group).has_value(); });
}

int bindPath(QSqlQuery &query, const TextRow &row)
{
    int place = 0;
    for (const QString &group : row.groups)
        query.bindValue(place++, *numberOf(group));
    return place;
}

bool logged(const QSqlQuery &query, const QString &statement)
{
    qDebug().noquote() << "ObjectRowWriter" << statement << "failed:" << query.lastError().text();
    return false;
}

bool prepare(QSqlQuery &query, const QString &statement)
{
    query.setForwardOnly(true);
    return query.prepare(statement) || logged(query, statement);
}

bool execute(QSqlQuery &query)
{
    return query.exec() || logged(query, query.lastQuery());
}

} // namespace

ObjectRowWriter::ObjectRowWriter(ObjectDataBase &store, const QSqlDatabase &database, QString table,
                                 QStringList columns, bool isSubObject)
    : store_(store)
    , table_(std::move(table))
    , tableColumns_(std::move(columns))
    , isSubObject_(isSubObject)
    , select_(database)
    , insert_(database)
{
    keyColumns_.append(u"objectindex"_s);
    if (isSubObject)
        keyColumns_.append(u"subindex"_s);
    isUsable_ = prepare(select_, u"SELECT 1 FROM %1 WHERE %2 = ?"_s.arg(table_, keyColumns_.join(" = ? AND "_L1)));
}

void ObjectRowWriter::write(const TextRow &row)
{
    if (!isUsable_ || store_.isBlocked())
        return;
    if (row.columns != columns_)
        takeColumns(row.columns);
    if (columnsArePlain_ && hasPlainPath(row) && !exists(row)) {
        insertWhole(row);
    } else {
        for (qsizetype i = 0; i < row.columns.size(); ++i)
            writeSingle(row, i);
    }
}

/// What a new row holds in a column that nothing is told about.
QVariant ObjectRowWriter::blankValue(const QString &column) const
{
    static const QStringList neverNull = {u"datatype"_s, u"accesstype"_s, u"implementation"_s};
    return isSubObject_ && !neverNull.contains(column) ? QVariant() : QVariant(0);
}

/// Prepares the insertion of a row with these columns; the next row mostly has the same.
void ObjectRowWriter::takeColumns(const QStringList &columns)
{
    columns_ = columns;
    blanks_.clear();
    // A row cannot be given another key and written at once.
    columnsArePlain_ = std::all_of(columns.begin(), columns.end(), [this](const QString &column) {
        return tableColumns_.contains(column) && !keyColumns_.contains(column);
    });
    if (!columnsArePlain_)
        return;
    for (const QString &column : columns)
        blanks_.append(blankValue(column));
    QStringList names = keyColumns_ + columns;
    QStringList values(names.size(), u"?"_s);
    for (const QString &column : std::as_const(tableColumns_)) {
        if (const QVariant blank = blankValue(column); !names.contains(column) && !blank.isNull()) {
            names.append(column);
            values.append(blank.toString());
        }
    }
    columnsArePlain_ =
        prepare(insert_, u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(table_, names.join(u','), values.join(u',')));
}

bool ObjectRowWriter::exists(const TextRow &row)
{
    bindPath(select_, row);
    const bool found = execute(select_) && select_.next();
    select_.finish();
    return found;
}

void ObjectRowWriter::insertWhole(const TextRow &row)
{
    int place = bindPath(insert_, row);
    QVarLengthArray<qsizetype, 4> later;
    bool anyValue = false;
    for (qsizetype i = 0; i < row.columns.size(); ++i) {
        QVariant value = blanks_.at(i);
        if (isAttributes(row, i)) {
            // Attributes only reach a row that exists; one of which they are the first key does not yet.
            if (anyValue)
                later.append(i);
            else
                writeSingle(row, i);
        } else if (row.values.at(i).isValid()) {
            anyValue = true;
            if (!takeValue(row, i, value))
                later.append(i);
        }
        insert_.bindValue(place++, value);
    }
    if (anyValue)
        execute(insert_);
    for (const qsizetype i : later)
        writeSingle(row, i);
}

/// The value to bind; false for one that does not mean the same bound as it does in the text of a statement.
bool ObjectRowWriter::takeValue(const TextRow &row, qsizetype i, QVariant &value)
{
    const QString text = row.values.at(i).toString();
    const QString &column = row.columns.at(i);
    if (isPooled(column)) {
        value = store_.getStringId(text);
        return true;
    }
    if (text.contains(QChar::Null))
        return false;
    const bool isSimple = std::none_of(text.begin(), text.end(), [](QChar ch) { return ch.isSpace(); });
    // A null text would be bound as NULL.
    const QString simple = isSimple ? text : text.simplified();
    value = simple.isEmpty() ? u""_s : simple;
    return true;
}

bool ObjectRowWriter::isAttributes(const TextRow &row, qsizetype i) const
{
    return row.columns.at(i) == "metadata"_L1 && table_.back().isDigit() &&
           !MetadataBlob::parse(row.values.at(i).toByteArray()).isEmpty();
}

void ObjectRowWriter::writeSingle(const TextRow &row, qsizetype i)
{
    static const QRegularExpression word(u"^\\w+$"_s);
    const QString &column = row.columns.at(i);
    QVariant value = row.values.at(i);
    // The writers place a value in their statement as it stands.
    if (value.typeId() == QMetaType::QString && !isPooled(column))
        value = ObjectDataBase::withQuotesDoubled(value.toString());
    if (!hasPlainPath(row) || !word.match(column).hasMatch())
        qDebug().noquote() << "error" << table_ << row.groups.join(u'/') << column;
    else if (isSubObject_)
        store_.setSubindexSqlValue(table_, row.groups.first(), row.groups.last(), column, value);
    else
        store_.setObjectIndexSqlValue(table_, row.groups.first(), column, value);
}
