#include "store/text/objectrowwriter.h"

#include "store/records/metadatablob.h"
#include "store/tables/projecttables.h"
#include "texttools/asciitext.h"

#include <QDebug>
#include <QRegularExpression>

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

std::optional<uint> numberOf(QByteArrayView escaped)
{
    const auto plain = AsciiText::plainNumber(escaped);
    return plain ? plain : numberOf(SettingsText::unescapedKey(escaped));
}

bool isPooled(const QString &column)
{
    return column == "name"_L1 || column == "description"_L1;
}

/// True for a text that `QString::simplified` leaves alone.
bool isSimplified(QByteArrayView text)
{
    const auto pair =
        std::ranges::adjacent_find(text, [](char left, char right) { return left == ' ' && right == ' '; });
    return pair == text.end() && !text.startsWith(' ') && !text.endsWith(' ');
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

template <class Part>
std::optional<QVariantList> ObjectRowWriter::keyOf(const QList<Part> &groups) const
{
    QVariantList key;
    for (const Part &group : groups) {
        const std::optional<uint> number = numberOf(group);
        if (!number)
            return std::nullopt;
        key.append(*number);
    }
    return family_ && key.size() == keyColumns_.size() ? std::optional(key) : std::nullopt;
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
    if ((exists(*key) || run(insertion({}), *key)) && text)
        run(u"update %1 set %2 = ? where %3"_s.arg(table_, column, condition()), QVariantList{*text} + *key);
}

void ObjectRowWriter::writeRow(const SettingsText::Row &row)
{
    if (tables_.context.blocked)
        return;
    const QList<QByteArrayView> parts = SettingsText::partsOf(row.path);
    const std::optional<QVariantList> key = keyOf(parts);
    // A row that is written otherwise is one of its key, too.
    if (key && isNew(*key) && takeColumns(row.columns) && takeValues(row.values)) {
        insertTaken(*key);
        return;
    }
    QStringList groups;
    for (const QByteArrayView part : parts)
        groups.append(SettingsText::unescapedKey(part));
    for (std::size_t i = 0; i < row.columns.size(); ++i)
        writeValue(groups, SettingsText::unescapedKey(row.columns[i]), SettingsText::valueOf(row.values[i]),
                   Quotes::Kept);
}

/// True for the first row of a key in a table that was empty before; else the table has to tell.
bool ObjectRowWriter::isNew(const QVariantList &key)
{
    if (!startedEmpty_)
        startedEmpty_ = !tables_.context.statements.hasRow({operation, u"select 1 from %1"_s.arg(table_)});
    constexpr uint mostIndices = 0x10000;
    constexpr uint mostSubindices = 0x100;
    const uint index = key.first().toUInt();
    const uint sub = family_ == LineTable::SubObjects ? key.last().toUInt() : 0;
    if (!*startedEmpty_ || index >= mostIndices || sub >= mostSubindices)
        return !exists(key);
    seen_.resize(std::size_t{mostIndices} * mostSubindices);
    auto seen = seen_[std::size_t{index} * mostSubindices + sub];
    const bool isFirst = !seen;
    seen = true;
    return isFirst;
}

/// Prepares for rows of these columns; false if they are not all written at once: a row cannot be given another key,
/// and what is no column is to be told.
bool ObjectRowWriter::takeColumns(const std::vector<QByteArrayView> &columns)
{
    if (std::ranges::equal(columns, columns_))
        return insertion_.has_value();
    columns_.clear();
    cells_.clear();
    QStringList names;
    for (const QByteArrayView column : columns) {
        columns_.push_back(column.toByteArray());
        names.append(SettingsText::unescapedKey(column));
    }
    kinds_.clear();
    insertion_.reset();
    if (!isPlain(names))
        return false;
    const QStringList numbers = ProjectSchema::numberColumns(*family_);
    for (const QString &name : std::as_const(names))
        kinds_.push_back(isPooled(name)           ? Kind::Pooled
                         : name == "metadata"_L1  ? Kind::Attributes
                         : numbers.contains(name) ? Kind::Number
                                                  : Kind::Text);
    insertion_.emplace(tables_.context.statements,
                       Statement{operation, insertion(names), Statement::Effect::Subindices});
    return true;
}

/// Reads the values of a row; false if they have to be written one by one.
bool ObjectRowWriter::takeValues(const std::vector<QByteArrayView> &values)
{
    cells_.resize(values.size());
    attributes_.clear();
    for (std::size_t i = 0; i < values.size(); ++i) {
        // Most values stand in the row before, too.
        Cell &cell = cells_[i];
        if (cell.isTaken && cell.raw == values[i])
            continue;
        cell = {};
        cell.raw = values[i];
        const bool canBeWritten = takeValue(kinds_[i], cell);
        // The attributes of a row are written behind it.
        cell.isTaken = canBeWritten && (kinds_[i] != Kind::Attributes || attributes_.isEmpty());
        // One of which they are the first key does not exist yet then.
        if (!canBeWritten || (i == 0 && !cell.isTaken))
            return false;
    }
    return true;
}

bool ObjectRowWriter::takeValue(Kind kind, Cell &cell)
{
    cell.plain = SettingsText::plainValue(cell.raw);
    constexpr qsizetype longestWithoutAttributes = 3;
    const bool isShort = kind != Kind::Attributes || (cell.plain && cell.plain->size() <= longestWithoutAttributes);
    if (cell.plain && isShort && (kind == Kind::Pooled || isSimplified(*cell.plain))) {
        if (kind == Kind::Number && !cell.plain->startsWith("0x"))
            cell.number = AsciiText::plainNumber(*cell.plain);
        return true;
    }
    const QVariant whole = SettingsText::valueOf(cell.raw);
    cell.plain.reset();
    cell.text = kind == Kind::Pooled ? whole.toString() : whole.toString().simplified();
    if (kind == Kind::Attributes && isAttributes(u"metadata"_s, whole)) {
        attributes_ = whole.toByteArray();
        return true;
    }
    return whole.isValid() && (kind == Kind::Pooled || LiteralText::stored(cell.text, Quotes::Kept));
}

void ObjectRowWriter::insertTaken(const QVariantList &key)
{
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        const Cell &cell = cells_[i];
        if (kinds_[i] == Kind::Pooled)
            insertion_->bind(
                qint64{tables_.context.strings.idOf(cell.plain ? AsciiText::shared(*cell.plain) : cell.text)});
        else if (kinds_[i] == Kind::Attributes && !attributes_.isEmpty())
            family_ == LineTable::SubObjects ? insertion_->bindNull() : insertion_->bind(0);
        else if (!cell.plain)
            insertion_->bind(cell.text);
        else if (cell.number)
            insertion_->bind(*cell.number);
        else
            insertion_->bindUtf8(*cell.plain);
    }
    for (const QVariant &part : key)
        insertion_->bind(part.toLongLong());
    std::ignore = insertion_->execute();
    if (!attributes_.isEmpty())
        writeAttributes(key, u"metadata"_s, attributes_);
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

/// The statement that inserts a row with these columns; their values are bound first, then the key.
QString ObjectRowWriter::insertion(const QStringList &columns) const
{
    QStringList names = columns + keyColumns_;
    QStringList values(names.size(), u"?"_s);
    for (const QString &column : ProjectSchema::columnNames(*family_)) {
        if (const QVariant blank = blankValue(column); !names.contains(column) && !blank.isNull()) {
            names.append(column);
            values.append(blank.toString());
        }
    }
    return u"insert into %1 (%2) values(%3)"_s.arg(table_, names.join(u','), values.join(u','));
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
        std::ignore = tables_.setSubObjectMetadata(line, index, static_cast<quint8>(key.last().toUInt()), attributes);
    else
        std::ignore = tables_.setObjectMetadata(line, index, attributes);
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
