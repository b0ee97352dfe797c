#include "import/projectmerge.h"

#include "import/importreport.h"
#include "nodedict/codes.h"
#include "store/objectdatabase.h"
#include "store/tables/temporaryindex.h"

#include <QSet>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool isDirection(quint8 direction)
{
    return direction == ObjectDataBase::receive || direction == ObjectDataBase::transmit;
}

bool isBetween(quint32 number, quint32 first, quint32 last)
{
    return number >= first && number <= last;
}

void copyPGN(ObjectDataBase &target, quint8 line, ObjectDataBase &source, quint8 sourceLine,
             const StoreRecords::PGN &pgn, ImportReport &report)
{
    const auto [number, direction] = std::pair(pgn.number, pgn.direction);
    if (!report.wrote(target.addPGN(line, number, pgn), u"PGN %1"_s.arg(number)))
        return;
    ++report.messages;
    const QList<quint32> spns = source.getSPNList(sourceLine, number, direction);
    const QSet<quint32> kept(spns.begin(), spns.end());
    for (const quint32 spn : target.getSPNList(line, number, direction)) {
        if (!kept.contains(spn))
            report.wrote(target.removeSPN(line, number, spn, direction), u"removal of SPN %1"_s.arg(spn));
    }
    for (const quint32 spn : spns) {
        const std::optional<StoreRecords::SPN> data = source.getSPN(sourceLine, number, direction, spn);
        if (!data)
            continue;
        if (report.wrote(target.addSPN(line, number, direction, spn, *data, Quotes::Kept), u"SPN %1"_s.arg(spn)))
            ++report.signalCount;
    }
}

void copyCANID(ObjectDataBase &target, quint8 line, ObjectDataBase &source, quint8 sourceLine,
               const StoreRecords::CANID &canid, ImportReport &report)
{
    const auto [id, direction] = std::pair(canid.id, canid.direction);
    if (!report.wrote(target.addCANID(line, id, canid), u"CAN-ID %1"_s.arg(id)))
        return;
    ++report.messages;
    // An update would leave an element's place and size as they were.
    for (const quint32 number : target.getDataElementList(line, id, direction))
        report.wrote(target.removeDataElement(line, id, number, direction),
                     u"removal of data element %1"_s.arg(number));
    for (const quint32 number : source.getDataElementList(sourceLine, id, direction)) {
        const auto data = source.getDataElement(sourceLine, id, direction, number);
        if (!data)
            continue;
        if (report.wrote(target.addDataElement(line, id, direction, number, *data, Quotes::Kept),
                         u"data element %1"_s.arg(number)))
            ++report.signalCount;
    }
}

} // namespace

void ProjectMerge::copyObjects(ObjectDataBase &target, quint8 line, ObjectDataBase &source, quint8 sourceLine,
                               quint16 first, quint16 last, ImportReport &report)
{
    if (!source.nodeExists(sourceLine))
        return;
    const ObjectDataBase::Transaction transaction(target);
    source.cacheAllSubs(sourceLine, 0);
    for (const quint16 index : source.getIndexList(sourceLine, first, last)) {
        if (!target.copyIndexFrom(&source, sourceLine, index, line, index))
            continue;
        ++report.objects;
        report.subObjects += source.getSubIndexList(sourceLine, index).size();
    }
    source.clearSubCache();
}

void ProjectMerge::copyPGNs(ObjectDataBase &target, quint8 line, ObjectDataBase &source, quint8 sourceLine,
                            quint32 first, quint32 last, ImportReport &report)
{
    if (!source.nodeExists(sourceLine))
        return;
    const ObjectDataBase::Transaction transaction(target);
    const TemporaryIndex pgnIndex(target.statements(), line, TemporaryIndex::pgnKeys);
    const TemporaryIndex spnIndex(target.statements(), line, TemporaryIndex::spnKeys);
    std::ignore = source.cacheSPNs(sourceLine); // without them, each is asked for by itself
    for (const StoreRecords::PGN &pgn : source.getAllPGNs(sourceLine)) {
        if (isDirection(pgn.direction) && isBetween(pgn.number, first, last))
            copyPGN(target, line, source, sourceLine, pgn, report);
    }
    source.clearSPNCache();
}

void ProjectMerge::copyCANIDs(ObjectDataBase &target, quint8 line, ObjectDataBase &source, quint8 sourceLine,
                              quint32 first, quint32 last, ImportReport &report)
{
    if (!source.nodeExists(sourceLine))
        return;
    const ObjectDataBase::Transaction transaction(target);
    const ObjectDataBase::Transaction reading(source);
    const TemporaryIndex canidIndex(target.statements(), line, TemporaryIndex::canidKeys);
    const TemporaryIndex elementIndex(target.statements(), line, TemporaryIndex::elementKeys);
    const TemporaryIndex sourceIndex(source.statements(), sourceLine, TemporaryIndex::elementKeys);
    for (const StoreRecords::CANID &canid : source.getAllCANIDs(sourceLine)) {
        if (isDirection(canid.direction) && isBetween(canid.id & CAN::identifierBits, first, last))
            copyCANID(target, line, source, sourceLine, canid, report);
    }
}
