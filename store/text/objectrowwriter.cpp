#include "store/text/objectrowwriter.h"

#include "store/tables/metadatablob.h"
#include "store/tables/projecttables.h"

#include <QDebug>
#include <QRegularExpression>
#include <QVarLengthArray>

#include <algorithm>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;

namespace {

constexpr auto operation = "error writeColumn";

/// An object's index or a subindex: decimal, or hexadecimal behind "0x".
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

std::optional<LineTable> familyOf(const QString &table)
{
    static const QRegularExpression form(u"^(Sub)?Objects\\d{1,3}$"_s);
    const auto match = form.match(table);
    if (!match.hasMatch())
        return std::nullopt;
    return match.capturedLength(1) > 0 ? LineTable::SubObjects : LineTable::Objects;
}

} // namespace

ObjectRowWriter::ObjectRowWriter(ProjectTables &tables, QString table)
    : tables_(tables)
    , table_(std::move(table))
    , family_(familyOf(table_))
    , keyColumns_{u"objectindex"_s}
{
    if (family_ == LineTable::SubObjects)
        keyColumns_.append(u"subindex"_s);
}

void ObjectRowWriter::writeValue(const QStringList &groups, const QString &column, const QVariant &value, Quotes quotes)
{
    if (!value.isValid())
        return;
    const std::optional<QVariantList> key = keyOf(groups);
    if (!key || !ProjectSchema::columnNames(*family_).contains(column, Qt::CaseInsensitive)) {
        qDebug().noquote() << operation << table_ << groups.join(u'/') << column;
        return;
    }
    if (writeAttributes(*key, column, value))
        return;
    const std::optional<QVariant> text = stored(column, value, quotes);
    // The row is made for a value that cannot be stored, too.
    if ((exists(*key) || insertRow({}, {}, *key)) && text)
        run(u"update %1 set %2 = ? where %3"_s.arg(table_, column, condition()), QVariantList{*text} + *key);
}

void ObjectRowWriter::writeRow(const TextRow &row)
{
    if (tables_.context.blocked)
        return;
    const std::optional<QVariantList> key = keyOf(row.groups);
    if (key && isPlain(row.columns) && !exists(*key)) {
        insertWhole(row, *key);
    } else {
        for (qsizetype i = 0; i < row.columns.size(); ++i)
            writeValue(row.groups, row.columns.at(i), row.values.at(i), Quotes::Kept);
    }
}

void ObjectRowWriter::insertWhole(const TextRow &row, const QVariantList &key)
{
    QVariantList values;
    QVarLengthArray<qsizetype, 4> later;
    bool anyValue = false;
    for (qsizetype i = 0; i < row.columns.size(); ++i) {
        const QString &column = row.columns.at(i);
        const QVariant &value = row.values.at(i);
        values.append(blankValue(column));
        if (isAttributes(column, value)) {
            // Attributes only reach a row that exists; one of which they are the first key does not yet.
            if (anyValue)
                later.append(i);
            else
                writeAttributes(key, column, value);
        } else if (value.isValid()) {
            anyValue = true;
            if (const std::optional<QVariant> text = stored(column, value, Quotes::Kept))
                values.last() = *text;
        }
    }
    if (anyValue)
        insertRow(row.columns, values, key);
    for (const qsizetype i : later)
        writeAttributes(key, row.columns.at(i), row.values.at(i));
}

std::optional<QVariantList> ObjectRowWriter::keyOf(const QStringList &groups) const
{
    QVariantList key;
    for (const QString &group : groups) {
        const std::optional<uint> number = numberOf(group);
        if (!number)
            return std::nullopt;
        key.append(*number);
    }
    return family_ && key.size() == keyColumns_.size() ? std::optional(key) : std::nullopt;
}

/// True if all are columns of the table and none is of its key: a row cannot be given another key and written at once.
bool ObjectRowWriter::isPlain(const QStringList &columns) const
{
    const QStringList known = ProjectSchema::columnNames(*family_);
    return std::ranges::all_of(
        columns, [&](const QString &column) { return known.contains(column) && !keyColumns_.contains(column); });
}

QString ObjectRowWriter::condition() const
{
    return keyColumns_.join(" = ? and "_L1) + " = ?"_L1;
}

bool ObjectRowWriter::exists(const QVariantList &key) const
{
    return tables_.context.statements.hasRow({operation, u"select 1 from %1 where %2"_s.arg(table_, condition())}, key);
}

/// What a new row holds in a column that nothing is told about.
QVariant ObjectRowWriter::blankValue(const QString &column) const
{
    static const QStringList neverNull = {u"datatype"_s, u"accesstype"_s, u"implementation"_s};
    return family_ == LineTable::SubObjects && !neverNull.contains(column) ? QVariant() : QVariant(0);
}

/// Makes the statement that inserts a row with these columns; the next row mostly has the same.
QString ObjectRowWriter::insertion(const QStringList &columns)
{
    if (columns == columns_ && !insertion_.isEmpty())
        return insertion_;
    QStringList names = columns + keyColumns_;
    QStringList values(names.size(), u"?"_s);
    for (const QString &column : ProjectSchema::columnNames(*family_)) {
        if (const QVariant blank = blankValue(column); !names.contains(column) && !blank.isNull()) {
            names.append(column);
            values.append(blank.toString());
        }
    }
    columns_ = columns;
    insertion_ = u"insert into %1 (%2) values(%3)"_s.arg(table_, names.join(u','), values.join(u','));
    return insertion_;
}

bool ObjectRowWriter::insertRow(const QStringList &columns, const QVariantList &values, const QVariantList &key)
{
    return run(insertion(columns), values + key);
}

bool ObjectRowWriter::run(const QString &text, const QVariantList &values)
{
    return tables_.context.statements.execute({operation, text, Statement::Effect::Subindices}, values);
}

bool ObjectRowWriter::isAttributes(const QString &column, const QVariant &value)
{
    return column == "metadata"_L1 && !MetadataBlob::parse(value.toByteArray()).isEmpty();
}

/// True if the value was attributes, which go to the line that the table's last character tells: a line above 9 has
/// never been understood here.
bool ObjectRowWriter::writeAttributes(const QVariantList &key, const QString &column, const QVariant &value)
{
    if (!isAttributes(column, value))
        return false;
    const auto line = static_cast<quint8>(table_.back().digitValue());
    const auto index = static_cast<quint16>(key.first().toUInt());
    const StoreRecords::Metadata attributes = MetadataBlob::parse(value.toByteArray());
    // A failure is logged there.
    if (family_ == LineTable::SubObjects)
        std::ignore =
            tables_.objects.setSubObjectMetadata(line, index, static_cast<quint8>(key.last().toUInt()), attributes);
    else
        std::ignore = tables_.objects.setObjectMetadata(line, index, attributes);
    return true;
}

/// What is bound for a value; nothing, and a word in the log, for a text that cannot be stored.
std::optional<QVariant> ObjectRowWriter::stored(const QString &column, const QVariant &value, Quotes quotes) const
{
    if (isPooled(column))
        return tables_.context.strings.idOf(value.toString());
    const QString text = value.toString().simplified();
    const std::optional<QString> literal = LiteralText::stored(text, quotes);
    if (literal)
        return *literal;
    qDebug().noquote() << operation << table_ << column << "cannot be" << text;
    return std::nullopt;
}
