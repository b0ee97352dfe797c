#include "import/csvimporter.h"

#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"
#include "texttools/numbertext.h"

#include <QDebug>

#include <utility>

using namespace Qt::StringLiterals;
using CANopen::codeOf;

namespace {

using SubRecord = ObjectDataBase::SUBINDEX_DATA_T;

constexpr qsizetype leastFields = 5;

/// Writes the default value into a description even where it is not marked as present.
constexpr quint8 alwaysInEds = 2;

/// A flag as a number or as "yes" and "no"; none for anything else.
std::optional<qint64> flagOf(const QString &text)
{
    const QString word = text.trimmed().toLower();
    if (word == "yes"_L1)
        return 1;
    if (word == "no"_L1)
        return 0;
    return NumberText::signedInBase(word, word.startsWith("0x"_L1) ? 16 : 10);
}

/// The code of a word that a table written by the program has; none for another word.
std::optional<quint8> implementationOf(const QString &text)
{
    static const QStringList words = {u"managedvariable"_s, u"managedconst"_s, u"variable"_s, u"virtualobject"_s};
    const qsizetype place = words.indexOf(text.trimmed().toLower());
    return place < 0 ? std::nullopt : std::optional(static_cast<quint8>(place));
}

void fillEmptyLimits(SubRecord &record)
{
    const COHelper::Limits limits = COHelper::getDefaultLimits(record.datatype);
    if (record.lowlimit.isEmpty())
        record.lowlimit = limits.low;
    if (record.uplimit.isEmpty())
        record.uplimit = limits.high;
}

/// Without the empty fields by which a spreadsheet fills a short row up to the width of its table. A row no longer than
/// its kind can be stays as it is: an empty sub-index that someone wrote must not turn into the whole object.
QStringList withoutFilling(QStringList fields, qsizetype longest)
{
    if (fields.size() > longest) {
        while (fields.last().isEmpty() && fields.size() > 1)
            fields.removeLast();
    }
    return fields;
}

QString textOf(const QList<CsvImporter::ListEntry> &entries)
{
    QStringList texts;
    for (const CsvImporter::ListEntry &entry : entries) {
        const QString index = u"0x%1"_s.arg(entry.index, 4, 16, QLatin1Char('0'));
        texts.append(entry.wholeObject ? index : index + u':' + QString::number(entry.subindex));
    }
    return texts.join(u' ');
}

} // namespace

/// Where a row belongs.
struct CsvImporter::Place
{
    quint8 line = 0;
    quint16 index = 0;
    quint8 subindex = 0;
};

CsvImporter::CsvImporter() = default;

CsvImporter::~CsvImporter()
{
    // Before the members that a run still under way would be using.
    waitForEnd();
}

QList<CsvImporter::ListEntry> CsvImporter::deletionList() const
{
    qDebug().noquote() << "Deletions" << textOf(deletions_);
    return deletions_;
}

QList<CsvImporter::ListEntry> CsvImporter::copyList() const
{
    qDebug().noquote() << "Copies" << textOf(copies_);
    return copies_;
}

void CsvImporter::read()
{
    deletions_.clear();
    copies_.clear();
    if (!rows_.load(filePath_))
        return;
    const QList<quint8> lines = store_->getNodeList();
    lines_ = QSet<quint8>(lines.begin(), lines.end());
    lines_.insert(line_);

    bool hasHeader = false;
    QString line;
    while (rows_.next(line)) {
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (!hasHeader) {
            handleHeader(line);
            hasHeader = true;
        } else {
            handleLine(line);
        }
    }
    flush();
}

void CsvImporter::handleLine(const QString &line)
{
    if (line.startsWith(u'd')) {
        if (!handleDeleteLine(line))
            drop(u"deletion of nothing"_s);
    } else if (line.startsWith(u'c')) {
        if (!handleCopyLine(line))
            drop(u"copy of nothing"_s);
    } else {
        handleDataLine(line);
    }
}

void CsvImporter::drop(const QString &reason)
{
    report_.drop(rows_.number(), reason);
}

void CsvImporter::handleHeader(const QString &line)
{
    rows_.setSeparator(!line.contains(u',') && line.contains(u';') ? u';' : u',');
    columns_ = CsvRow::placesIn(rows_.fieldsOf(line.toLower()));
}

std::optional<CsvImporter::Place> CsvImporter::placeOf(const Row &row)
{
    const auto index = NumberText::decimalOrHexadecimal<quint16>(row.text(Row::Index));
    const auto subindex =
        row.word(Row::Sub).isEmpty() ? quint8(0) : NumberText::decimalOrHexadecimal<quint8>(row.text(Row::Sub));
    const auto line =
        row.word(Row::Line).isEmpty() ? line_ : NumberText::decimalOrHexadecimal<quint8>(row.text(Row::Line));
    if (!index || !isInRange(*index) || !subindex || !line || !lines_.contains(*line))
        return {};
    return Place{*line, *index, *subindex};
}

void CsvImporter::handleDataLine(const QString &line)
{
    const Row row(rows_.fieldsOf(line), columns_);
    if (row.fieldCount() < leastFields || !row.reaches(Row::Index) ||
        !NumberText::decimalOrHexadecimal<quint32>(row.text(Row::Index)))
        return drop(u"fewer than five fields, or no index"_s);
    if (!row.isComplete())
        return drop(u"too short for the columns of the header"_s);
    const std::optional<Place> place = placeOf(row);
    if (!place)
        return drop(u"no such place in the project"_s);

    ObjectState &state = stateOf(*place);
    importObject(*place, row, state);
    provideSubZero(*place, row, state);
    if (row.isHead()) {
        state.hasHeadRow = true;
        return;
    }
    if (place->subindex == 0) {
        state.hasSubZero = true;
        state.madeSubZero.reset();
    }
    entries_.append({place->line, place->index, place->subindex, recordOf(*place, row, *state.object)});
}

CsvImporter::ObjectState &CsvImporter::stateOf(const Place &place)
{
    const quint32 key = quint32{place.line} << 16 | place.index;
    const auto known = objects_.find(key);
    if (known != objects_.end())
        return *known;
    if (!lineObjects_.contains(place.line)) {
        const QList<quint16> indices = store_->getIndexList(place.line, 0, 0xffff);
        lineObjects_.insert(place.line, QSet<quint16>(indices.begin(), indices.end()));
    }
    ObjectState &state = objects_[key];
    if (lineObjects_[place.line].contains(place.index))
        state.object = store_->getIndex(place.line, place.index);
    state.hasSubZero = state.object && store_->subIndexExists(place.line, place.index, 0);
    return state;
}

void CsvImporter::importObject(const Place &place, const Row &row, ObjectState &state)
{
    const QString code = row.word(Row::ObjectCode);
    if (place.subindex != 0) {
        if (!state.object)
            report_.wrote(store_->addIndex(place.line, place.index, state.object.emplace()), u"an object"_s);
        return;
    }
    if (state.hasHeadRow && code.isEmpty())
        return;
    StoreRecords::IndexData object = state.object.value_or(StoreRecords::IndexData());
    object.name = row.name(place.index);
    if (!row.word(Row::DataType).isEmpty())
        object.datatype = COHelper::mapDataTypeString(row.word(Row::DataType));
    if (!code.isEmpty())
        object.objecttype = COHelper::string2objectCode(code);
    if (row.has(Row::Description))
        object.description = row.description();
    report_.wrote(store_->addIndex(place.line, place.index, object), u"an object"_s);
    state.object = object;
}

/// Gives an ARRAY or RECORD the sub-index 0 that it lacks, and keeps that at the highest sub-index so far.
void CsvImporter::provideSubZero(const Place &place, const Row &row, ObjectState &state)
{
    if (state.object->objecttype == CANopen::Var)
        return;
    const bool rowIsSubZero = place.subindex == 0 && !row.isHead();
    if (!state.hasSubZero && !rowIsSubZero) {
        SubRecord record;
        record.name = u"Highest Subindex supported"_s;
        record.datatype = CAN::Unsigned8;
        record.accesstype = textOf(CANopen::Access::ReadOnly);
        record.implementation =
            codeOf(row.word(Row::Implementation) == "virtualobject"_L1 ? CANopen::Implementation::VirtualObject
                                                                       : CANopen::Implementation::ManagedConst);
        record.defaultvalue = u"0"_s;
        record.lowlimit.clear();
        record.uplimit.clear();
        fillEmptyLimits(record);
        state.madeSubZero = record;
        state.hasSubZero = true;
    }
    if (state.madeSubZero && place.subindex > NumberText::decimal(state.madeSubZero->defaultvalue).value_or(0))
        state.madeSubZero->defaultvalue = QString::number(place.subindex);
}

StoreRecords::SubIndexData CsvImporter::recordOf(const Place &place, const Row &row,
                                                 const StoreRecords::IndexData &object)
{
    const bool isArray = object.objecttype == CANopen::Array;
    SubRecord record;
    record.name = row.name(place.index);
    if (!row.word(Row::DataType).isEmpty())
        record.datatype = static_cast<quint16>(COHelper::mapDataTypeString(row.word(Row::DataType)));
    else if ((isArray && place.subindex != 0) || object.objecttype == CANopen::Var)
        record.datatype = static_cast<quint16>(object.datatype);
    if (row.has(Row::Access))
        record.accesstype = COHelper::normalizeAccessType(row.word(Row::Access));
    record.varname = row.text(Row::VarName);
    record.nvstorage = flagOf(row.text(Row::NvStorage)).value_or(0) != 0;
    record.defaultvalue = row.text(Row::Value);
    record.description = row.description();
    if (const auto size = NumberText::decimalOrHexadecimal<quint64>(row.text(Row::Size)))
        record.size = static_cast<quint16>(*size);
    record.pdomapping = PDOMapping::fromCSVString(row.word(Row::Mapable));
    record.defaultineds = flagOf(row.text(Row::HasDefault)).value_or(1) != 0;
    const qint64 inEds = flagOf(row.text(Row::DefaultInEds)).value_or(0);
    record.writedefaulttoeds = inEds == alwaysInEds ? alwaysInEds : static_cast<quint8>(inEds != 0);

    record.limitineds = row.has(Row::LowLimit) || row.has(Row::UpLimit);
    if (row.has(Row::HasLimit))
        record.limitineds = row.word(Row::HasLimit) == "yes"_L1;
    record.lowlimit = row.text(Row::LowLimit);
    record.uplimit = row.text(Row::UpLimit);
    fillEmptyLimits(record);

    static const quint32 numberOfEntriesType = COHelper::mapDataTypeString(u"U8S"_s);
    const bool isArrayCount = isArray && place.subindex == 0 && record.datatype == numberOfEntriesType;
    if (const auto code = implementationOf(row.text(Row::Implementation)))
        record.implementation = *code;
    else if (record.accesstype == CANopen::Access::Const || isArrayCount)
        record.implementation = codeOf(CANopen::Implementation::ManagedConst);
    else
        record.implementation = codeOf(record.varname.isEmpty() ? CANopen::Implementation::ManagedVariable
                                                                : CANopen::Implementation::Variable);
    if (record.implementation == CANopen::Implementation::Variable && record.varname.isEmpty())
        record.varname = u"v_%1%2"_s.arg(QString::number(place.index), QString::number(place.subindex));
    return record;
}

/// "d,0x2000" or "d,0x2000,1"
bool CsvImporter::handleDeleteLine(const QString &line)
{
    constexpr qsizetype longest = 3;
    const QStringList fields = withoutFilling(rows_.fieldsOf(line), longest);
    qDebug().noquote() << Q_FUNC_INFO << fields.value(0);
    const quint16 index = NumberText::decimalOrHexadecimal<quint16>(fields.value(1)).value_or(0);
    const auto subindex = NumberText::decimalOrHexadecimal<quint8>(fields.value(2));
    const bool wholeObject = fields.size() == longest - 1;
    if (index == 0 || (!wholeObject && (fields.size() != longest || !subindex)))
        return false;
    deletions_.append({index, wholeObject ? quint8(0) : *subindex, wholeObject});
    return true;
}

/// "c,0x2000,0x2001" or "c,0x2000,1,2"
bool CsvImporter::handleCopyLine(const QString &line)
{
    constexpr qsizetype longest = 4;
    const QStringList fields = withoutFilling(rows_.fieldsOf(line), longest);
    qDebug().noquote() << Q_FUNC_INFO << fields.value(0);
    const quint16 index = NumberText::decimalOrHexadecimal<quint16>(fields.value(1)).value_or(0);
    if (fields.size() == longest - 1) {
        const quint16 target = NumberText::decimalOrHexadecimal<quint16>(fields.value(2)).value_or(0);
        if (index == 0 || target == 0)
            return false;
        copies_ += {{index, 0, true}, {target, 0, true}};
        return true;
    }
    const auto source = NumberText::decimalOrHexadecimal<quint8>(fields.value(2));
    const auto target = NumberText::decimalOrHexadecimal<quint8>(fields.value(3));
    if (fields.size() != longest || index == 0 || !source || !target || *source == *target)
        return false;
    copies_ += {{index, *source, false}, {index, *target, false}};
    return true;
}

void CsvImporter::flush()
{
    for (auto state = objects_.cbegin(); state != objects_.cend(); ++state) {
        if (state->madeSubZero)
            entries_.append({static_cast<quint8>(state.key() >> 16), static_cast<quint16>(state.key() & 0xffff), 0,
                             *state->madeSubZero});
    }
    report_.wrote(store_->addSubIndices(entries_, Quotes::Kept), u"sub-objects"_s);
    report_.objects = objects_.size();
    report_.subObjects = entries_.size();
    entries_.clear();
    objects_.clear();
    lineObjects_.clear();
}
