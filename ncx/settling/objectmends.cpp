#include "ncx/settling/mends.h"

#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "nodedict/edsvalue.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace CANopen;

namespace {

constexpr quint8 structureSubindex = 255; // describes the structure of an object (CiA 301)

quint8 highestSubindex(const SettledLine &line, quint16 index)
{
    quint8 highest = 0;
    for (const quint8 subindex : line.subindicesOf(index)) {
        if (subindex < structureSubindex)
            highest = subindex;
    }
    return highest;
}

struct Identity
{
    quint8 subindex;
    QLatin1StringView name;
    QLatin1StringView key; ///< in [DeviceInfo]
};
constexpr Identity identities[] = {{1, "Vendor-ID"_L1, "vendornumber"_L1},
                                   {2, "Product code"_L1, "productnumber"_L1},
                                   {3, "Revision number"_L1, "revisionnumber"_L1}};

SettledLine::Sub element(const SettledLine::Sub &like, const QString &name)
{
    SettledLine::Sub sub = like;
    sub.name = name;
    return sub;
}

} // namespace

bool ObjectMends::takeConfiguredValues(SettledLine &line, const FindingPlace & /*place*/)
{
    bool changed = false;
    for (const auto &[index, subindex, number] : line.allSubindices()) {
        if (const SettledLine::Sub *sub = line.sub(index, subindex); !sub->currentvalue.isEmpty())
            changed |= line.setDefault(index, subindex, sub->currentvalue);
    }
    return changed;
}

bool ObjectMends::addMandatoryObjects(SettledLine &line, const FindingPlace & /*place*/)
{
    bool changed = false;
    for (const quint16 index : {Index::deviceType, Index::errorRegister, Index::heartbeatProducer, Index::identity}) {
        // Either of the two watches the device.
        if (index != Index::heartbeatProducer || !line.object(Index::guardTime))
            changed |= line.addStandardObject(index);
    }
    return changed;
}

bool ObjectMends::tellDomains(SettledLine &line, const FindingPlace & /*place*/)
{
    for (const auto &[index, subindex, number] : line.allSubindices()) {
        if (const SettledLine::Sub *sub = line.sub(index, subindex); sub->datatype == CAN::Domain)
            line.tell(index, subindex, u"kept by: the application's %1"_s.arg(sub->varname));
    }
    return false;
}

bool ObjectMends::fillIdentity(SettledLine &line, const FindingPlace & /*place*/)
{
    const DescriptionText::Section *info = line.file().section(u"deviceinfo"_s);
    bool changed = false;
    for (const auto &[subindex, name, key] : identities) {
        const QString stated = info ? info->word(key) : QString();
        const SettledLine::Sub *present = line.sub(Index::identity, subindex);
        if (present && !present->defaultvalue.isEmpty())
            continue;
        SettledLine::Sub sub = present ? *present : SettledLine::Sub{.name = name, .datatype = CAN::Unsigned32};
        sub.defaultvalue = EdsValue::number(stated) ? EdsValue::normalised(stated, sub.datatype) : u"0"_s;
        changed |= line.set(Index::identity, subindex, sub);
    }
    return changed;
}

bool ObjectMends::addCount(SettledLine &line, const FindingPlace &place)
{
    const quint16 index = *place.index;
    SettledLine::Sub count{.name = u"Highest subindex supported"_s};
    if (const SettledLine::Sub *present = line.sub(index, 0))
        count = *present;
    else
        count.defaultvalue = QString::number(highestSubindex(line, index));
    count.defaultineds = true;
    return line.set(index, 0, count);
}

bool ObjectMends::correctCount(SettledLine &line, const FindingPlace &place)
{
    return line.setDefault(*place.index, 0, QString::number(highestSubindex(line, *place.index)));
}

bool ObjectMends::makeCountConst(SettledLine &line, const FindingPlace &place)
{
    const SettledLine::Sub *present = line.sub(*place.index, 0);
    if (!present)
        return false;
    SettledLine::Sub count = *present;
    count.implementation = codeOf(Implementation::ManagedConst);
    return line.set(*place.index, 0, count);
}

/// The element of an ARRAY has the type that the object's section tells, that of a list of nodes UNSIGNED32.
bool ObjectMends::addElement(SettledLine &line, const FindingPlace &place)
{
    const quint16 index = *place.index;
    const SettledLine::Object *object = line.object(index);
    if (!object || highestSubindex(line, index) > 0)
        return false;
    const DescriptionText::Section *section = line.file().section(index, {});
    SettledLine::Sub sub{.name = u"%1 1"_s.arg(object->name)};
    sub.datatype =
        index < Index::firstManufacturerObject ? quint16{CAN::Unsigned32} : static_cast<quint16>(object->datatype);
    const QString access = section ? section->word("accesstype"_L1) : QString();
    sub.accesstype = access.isEmpty() ? textOf(CANopen::Access::ReadWrite) : COHelper::normalizeAccessType(access);
    // A value where its number of elements should be is the only one that the object has.
    if (const SettledLine::Sub *first = line.sub(index, 0); first && first->datatype != CAN::Unsigned8) {
        sub = element(*first, first->name);
        line.set(index, 0, SettledLine::Sub{.name = u"Highest subindex supported"_s, .defaultvalue = u"1"_s});
    } else if (!first) {
        line.set(index, 0, SettledLine::Sub{.name = u"Highest subindex supported"_s, .defaultvalue = u"1"_s});
    }
    return line.set(index, 1, sub);
}

bool ObjectMends::closeGaps(SettledLine &line, const FindingPlace &place)
{
    const quint16 index = *place.index;
    bool changed = false;
    const SettledLine::Sub *like = nullptr;
    for (const quint8 subindex : line.subindicesOf(index)) {
        if (subindex > 0)
            like = line.sub(index, subindex);
    }
    if (!like)
        return false;
    SettledLine::Sub gap = *like;
    gap.defaultvalue = u"0"_s;
    for (quint8 subindex = 1; subindex < highestSubindex(line, index); ++subindex) {
        if (!line.sub(index, subindex))
            changed |= line.set(index, subindex, element(gap, u"Unused %1"_s.arg(subindex)));
    }
    return changed;
}

bool ObjectMends::makeRecord(SettledLine &line, const FindingPlace &place)
{
    SettledLine::Object object = *line.object(*place.index);
    object.objecttype = Record;
    return line.set(*place.index, object);
}

bool ObjectMends::makeVariable(SettledLine &line, const FindingPlace &place)
{
    SettledLine::Object object = *line.object(*place.index);
    const bool isSingle = line.subindicesOf(*place.index).size() <= 1;
    object.objecttype = isSingle ? quint32{Var} : object.objecttype;
    return line.set(*place.index, object);
}

bool ObjectMends::nameIt(SettledLine &line, const FindingPlace &place)
{
    const quint16 index = *place.index;
    SettledLine::Object object = *line.object(index);
    bool changed = false;
    if (object.name.trimmed().isEmpty()) {
        object.name = u"Object 0x%1"_s.arg(index, 4, 16, QLatin1Char('0'));
        changed = line.set(index, object);
    }
    for (const quint8 subindex : line.subindicesOf(index)) {
        SettledLine::Sub sub = *line.sub(index, subindex);
        if (!sub.name.trimmed().isEmpty())
            continue;
        sub.name = object.objecttype == Var ? object.name : u"%1 %2"_s.arg(object.name).arg(subindex);
        changed |= line.set(index, subindex, sub);
    }
    return changed;
}

bool ObjectMends::switchConsumerOff(SettledLine &line, const FindingPlace & /*place*/)
{
    bool changed = false;
    for (const quint8 subindex : line.subindicesOf(Index::emcyConsumers)) {
        if (subindex > 0 && line.value(Index::emcyConsumers, subindex).value_or(0) == 0)
            changed |= line.setDefault(Index::emcyConsumers, subindex, u"0x80000000"_s);
    }
    return changed;
}

bool ObjectMends::clearUnknownStoreBits(SettledLine &line, const FindingPlace &place)
{
    constexpr quint64 known = 3;
    bool changed = false;
    for (const quint8 subindex : line.subindicesOf(*place.index)) {
        const quint64 value = line.value(*place.index, subindex).value_or(0);
        if (subindex > 0 && value > known)
            changed |= line.setDefault(*place.index, subindex, QString::number(value & known));
    }
    return changed;
}
