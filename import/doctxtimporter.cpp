#include "import/doctxtimporter.h"

#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/file/repairs.h"
#include "store/objectdatabase.h"
#include "store/tables/temporaryindex.h"
#include "texttools/numbertext.h"
#include "texttools/textfile.h"

#include <QDebug>

#include <limits>
#include <optional>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;
using CANopen::Implementation;

namespace {

/// Fields of a PGN's line, counted from 0. Those between are the words before them.
enum PGNField : quint8
{
    Number = 1,
    PGNName = 3,
    Direction = 5,
    CycleTime = 7,
    Priority = 9,
    InhibitTime = 11
};
constexpr qsizetype leastPGNFields = 10;

enum SPNField : quint8
{
    SPNNumber = 2,
    SPNName = 4,
    SPNDataType = 6,
    FirstOption = 7 ///< a word and its value, up to twice
};
constexpr qsizetype leastSPNFields = 7;
constexpr qsizetype lastOption = 9;

/// Of a line, which must stay while they are used.
QList<QStringView> fieldsOf(const QString &line)
{
    return QStringView(line).split(u'\t');
}

quint8 directionOf(QStringView text)
{
    if (text == "TX"_L1)
        return ObjectDataBase::transmit;
    return text == "RX"_L1 ? ObjectDataBase::receive : 0;
}

} // namespace

DOCTXTImporter::DOCTXTImporter() = default;

DOCTXTImporter::~DOCTXTImporter()
{
    // Before the members that a run still under way would be using.
    waitForEnd();
}

void DOCTXTImporter::read()
{
    qDebug().noquote() << "Importing " << filePath_;
    importFile();
    report_.wrote(Repairs::mappingCounts(*store_), u"numbers of SPNs"_s);
    qDebug() << "Import completeted";
}

void DOCTXTImporter::importFile()
{
    pgn_ = 0;
    direction_ = 0;
    read_.reset();
    TextFile text;
    if (!text.load(filePath_))
        return;
    const TemporaryIndex pgnIndex(store_->statements(), line_, TemporaryIndex::pgnKeys);
    const TemporaryIndex spnIndex(store_->statements(), line_, TemporaryIndex::spnKeys);
    TextLines lines(text.bytes());
    QByteArrayView line;
    while (lines.next(line)) {
        lineNumber_ = lines.number();
        importLine(text.decode(line));
    }
    writePGN();
}

void DOCTXTImporter::importLine(const QString &line)
{
    if (line.startsWith("PGN:"_L1)) {
        writePGN();
        if (importPGN(fieldsOf(line))) {
            position_ = 0;
        } else {
            direction_ = 0;
            pgn_ = std::numeric_limits<quint32>::max();
            qDebug().noquote() << "invalid pgn: " << line;
            report_.drop(lineNumber_, u"invalid PGN"_s);
        }
    } else if (direction_ != 0 && line.startsWith("\tDescription:"_L1)) {
        importDescription(fieldsOf(line));
    } else if (line.startsWith("\tSPN:"_L1)) {
        writePGN();
        if (direction_ == 0 || !importSPN(fieldsOf(line)))
            report_.drop(lineNumber_, direction_ == 0 ? u"SPN without a PGN"_s : u"invalid SPN"_s);
    }
}

bool DOCTXTImporter::importPGN(const QList<QStringView> &fields)
{
    if (fields.size() < leastPGNFields)
        return false;
    const auto number = NumberText::decimal<quint32>(fields.value(Number).split(u'/').value(1));
    const auto cycleTime = NumberText::decimal<quint16>(fields.value(CycleTime));
    const auto priority = NumberText::decimal<quint8>(fields.value(Priority));
    const auto inhibitTime = fields.size() > InhibitTime ? NumberText::decimal<quint32>(fields.value(InhibitTime))
                                                         : std::optional<quint32>(0);
    StoreRecords::PGN record;
    record.direction = directionOf(fields.value(Direction));
    if (!number || !isInRange(*number) || record.direction == 0 || !cycleTime || !priority || !inhibitTime)
        return false;
    record.number = *number;
    record.name = fields.value(PGNName).toString();
    record.cycletime_ms = *cycleTime;
    record.priority = *priority;
    record.inhibittime_ms = static_cast<quint16>(*inhibitTime);
    pgn_ = *number;
    direction_ = record.direction;
    read_ = std::move(record);
    readAt_ = lineNumber_;
    return true;
}

void DOCTXTImporter::writePGN()
{
    const auto record = std::exchange(read_, {});
    if (record && report_.wrote(store_->addPGN(line_, pgn_, *record), u"PGN"_s, readAt_))
        ++report_.messages;
}

void DOCTXTImporter::importDescription(const QList<QStringView> &fields)
{
    if (fields.size() < 3)
        return;
    // Mostly both are written at once. A text with a quote would have another row if it were written again.
    if (read_ && !read_->name.contains(u'\'')) {
        std::ignore = store_->getStringId(read_->name);
        std::ignore = store_->getStringId({}); // the description so far, whose place is in front of this one's
        read_->desc = fields.at(2).toString();
        writePGN();
        return;
    }
    writePGN();
    if (std::optional<StoreRecords::PGN> record = store_->getPGN(line_, pgn_, direction_)) {
        record->desc = fields.at(2).toString();
        report_.wrote(store_->addPGN(line_, pgn_, *record), u"description"_s, lineNumber_);
    }
}

bool DOCTXTImporter::importSPN(const QList<QStringView> &fields)
{
    const auto number = NumberText::decimal<quint32>(fields.value(SPNNumber));
    if (fields.size() < leastSPNFields || !number)
        return false;
    StoreRecords::SPN record;
    for (qsizetype option = FirstOption; option <= lastOption && option < fields.size(); option += 2) {
        const QStringView value = fields.value(option + 1);
        if (fields.at(option) == "Variable:"_L1) {
            record.varname = value.toString();
        } else if (fields.at(option) == "Size:"_L1) {
            const auto size = NumberText::decimal<quint16>(value);
            if (!size)
                return false;
            record.bitsize = *size;
        }
    }
    record.spnnumber = *number;
    record.name = fields.value(SPNName).toString();
    record.datatype = COHelper::mapDataTypeString(fields.value(SPNDataType).toString());
    record.implementation =
        codeOf(record.varname.isEmpty() ? Implementation::ManagedVariable : Implementation::Variable);
    record.pgnnumber = pgn_;
    record.direction = direction_;
    record.pos = position_++;
    if (report_.wrote(store_->addSPN(line_, pgn_, direction_, *number, record, Quotes::Kept), u"SPN"_s, lineNumber_))
        ++report_.signalCount;
    return true;
}
