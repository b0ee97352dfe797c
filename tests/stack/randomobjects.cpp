// The object dictionary of a random project.

#include "stack/randomproject.h"

#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

/// The types of an object; those that devices have most stand more than once.
constexpr std::array<quint16, 40> objectTypes{5,  5,  5,  5,  6,  6,   6,   7,   7,   7,  2,  3,  4,  8,
                                              1,  9,  9,  10, 11, 12,  13,  15,  16,  17, 18, 19, 20, 21,
                                              22, 24, 25, 26, 27, 100, 102, 105, 124, 5,  6,  3};
/// What safety objects can be.
constexpr std::array<quint16, 7> safeObjectTypes{5, 6, 7, 2, 3, 4, 8};

} // namespace

quint16 RandomProject::objectType()
{
    return oneOf(objectTypes);
}

/// How it is served and mapped; `text` is its default.
QString RandomProject::implementation(const Place &place, const QString &text, bool isVirtual)
{
    Implementation kind =
        oneOf(std::array{ManagedVariable, ManagedVariable, ManagedConst, ApplicationVariable, ApplicationVariable});
    if (kind == ManagedVariable && isText(place.dataType))
        kind = oneOf(std::array{ManagedConst, ApplicationVariable});
    if (isVirtual)
        kind = VirtualObject;
    QString access = oneOf(QStringList{u"ro"_s, u"rw"_s, u"wo"_s, u"rww"_s, u"rwr"_s, u"const"_s});
    if (kind == ManagedConst)
        access = chance(50) ? u"const"_s : u"ro"_s;
    QString result = u"; implementation=%1; accesstype=%2"_s.arg(kind).arg(access);
    if (kind == ApplicationVariable) {
        const QString at = u"%1_%2_"_s.arg(line_).arg(place.index, 4, 16, '0'_L1);
        const QString element = u"a%1t%2[%3]"_s.arg(at).arg(place.dataType).arg(place.subindex);
        const QString plain = chance(80) ? u"v%1%2"_s.arg(at).arg(place.subindex) : u"w${line}_${index}_${subindex}"_s;
        result += u"; varname="_s + (isText(place.dataType) || chance(70) ? plain : element);
    }
    if (isText(place.dataType)) // a constant is as long as its text at most, or a device reads behind it
        result += u"; size=%1"_s.arg(kind == ManagedConst ? text.toUtf8().size() : qsizetype{number(0, 60)});
    const quint32 bits = COHelper::getDataLengthBits(place.dataType);
    const quint32 mapping = number(0, 4);
    if (mapping == 0 || isText(place.dataType) || bits == 0 || bits > 64)
        return result;
    mappables_.append({place.index, place.subindex, bits, access != "wo"_L1 && mapping != 3,
                       access != "ro"_L1 && access != "const"_L1 && mapping != 4});
    return result + u"; pdomapping=%1"_s.arg(mapping);
}

void RandomProject::addApplicationSub(const Place &place, bool isVirtual)
{
    const QString text = value(place.dataType);
    QString row = u"sub %1:%2 "_s.arg(hex(place.index)).arg(place.subindex) +
                  fields(u"subindex"_s).replace(u"$S"_s, QString::number(place.subindex));
    if (!isText(place.dataType) && place.dataType != CAN::Domain && chance(30))
        row += u"; "_s + fields(u"limits"_s);
    row += u"; datatype=%1; defaultvalue="_s.arg(place.dataType) + text;
    add(row + implementation(place, text, isVirtual));
}

/// A variable, an array or a record, whose subindices are virtual all or none.
void RandomProject::addApplicationObject(quint16 index)
{
    const quint32 kind = number(7, 9);
    const bool isVirtual = chance(15);
    const QString name = oneOf(QStringList{u"Object"_s, u"Motor %1"_s.arg(index), u"größe */"_s, u"it's"_s});
    add(u"object %1 objecttype=%2; name="_s.arg(hex(index)).arg(kind) + name);
    quint16 type = objectType();
    if (kind == 7) {
        if (type == CAN::Domain && chance(50))
            add(u"object %1 objecttype=2"_s.arg(hex(index)));
        addApplicationSub({index, 0, type}, isVirtual);
        return;
    }
    const auto last = static_cast<quint8>(chance(10) ? number(30, 70) : number(1, 6));
    addSub(index, 0, CAN::Unsigned8,
           u"accesstype=const; implementation=%1; defaultvalue=%2"_s.arg(isVirtual ? VirtualObject : ManagedConst)
               .arg(last));
    const bool alike = kind == 8 && chance(30);
    for (quint8 sub = 1; sub <= last; ++sub) {
        if (kind == 9)
            type = objectType();
        if (alike)
            addSub(index, sub, type, u"accesstype=rw; implementation=%1"_s.arg(isVirtual ? 3 : isText(type) ? 1 : 0));
        else
            addApplicationSub({index, sub, type}, isVirtual);
    }
}

void RandomProject::addApplicationObjects()
{
    quint32 index = 0x2000;
    for (quint32 count = number(2, 12); count > 0; --count) {
        index += number(1, 0x180);
        addApplicationObject(static_cast<quint16>(index));
    }
    addSharedObjects();
}

/// Objects of which the lines have one between them.
void RandomProject::addSharedObjects()
{
    if (line_ == 0 && chance(50)) {
        const qsizetype first = commands_.size();
        for (quint32 count = number(1, 3); count > 0; --count)
            addApplicationObject(static_cast<quint16>(0x4000 + count));
        for (QString &command : commands_.mid(first)) {
            if (command.startsWith("sub "_L1))
                command += u"; sharedlines=1"_s;
            shared_.append(command);
        }
        commands_.resize(first);
    }
    commands_ += shared_;
}

void RandomProject::addPdos(bool transmit)
{
    QList<Mappable> objects;
    std::ranges::copy_if(mappables_, std::back_inserter(objects),
                         [=](const Mappable &object) { return transmit ? object.readable : object.writable; });
    quint32 number = 0;
    for (quint32 count = this->number(0, 5); count > 0 && !objects.isEmpty(); --count) {
        addPdo(static_cast<quint16>(number), transmit, objects);
        number += chance(80) ? 1 : this->number(2, 100);
    }
}

void RandomProject::addPdo(quint16 number, bool transmit, QList<Mappable> objects)
{
    const auto index = static_cast<quint16>((transmit ? 0x1800 : 0x1400) + number);
    const quint32 base = transmit ? 0x180 : 0x200;
    const QString cobId = chance(60) && number < 4 ? u"$NODEID+"_s + hex(base + 0x100U * number)
                          : chance(50)             ? hex(0x80000000U | (base + number), 8)
                                                   : hex(0x280U + index % 0x400U);
    // The second name has a short form in gen_indices.h.
    const QString name = oneOf(QStringList{u"%2PDO %1"_s, u"%2PDO comm par %1 for node 2 motor"_s})
                             .arg(number)
                             .arg(transmit ? u'T' : u'R');
    add(u"object %1 name=%2; objecttype=9"_s.arg(hex(index), name));
    addSub(index, 0, CAN::Unsigned8, u"accesstype=const; implementation=1; defaultvalue=%1"_s.arg(transmit ? 6 : 5));
    addSub(index, 1, CAN::Unsigned32, u"accesstype=rw; defaultvalue="_s + cobId);
    addSub(index, 2, CAN::Unsigned8,
           u"accesstype=rw; defaultvalue="_s + oneOf(QStringList{u"255"_s, u"1"_s, u"254"_s}));
    if (chance(60))
        addSub(index, 3, CAN::Unsigned16, u"accesstype=rw; defaultvalue=100"_s);
    if (chance(60))
        addSub(index, 5, CAN::Unsigned16, u"accesstype=rw; defaultvalue=1000"_s);
    if (transmit && chance(40))
        addSub(index, 6, CAN::Unsigned8, u"accesstype=rw; defaultvalue=%1"_s.arg(this->number(0, 3)));

    const auto mapping = static_cast<quint16>(index + 0x200);
    const bool fixed = chance(60);
    const QString access =
        fixed ? u"accesstype=const; implementation=1; defaultvalue="_s : u"accesstype=rw; defaultvalue="_s;
    add(u"object %1 name=Mapping %2; objecttype=9"_s.arg(hex(mapping)).arg(number));
    quint32 free = fd_ ? 512 : 64;
    quint8 entries = 0;
    for (qsizetype i = objects.size() - 1; i > 0; --i)
        objects.swapItemsAt(i, this->number(0, static_cast<quint32>(i)));
    for (const Mappable &object : std::as_const(objects)) {
        if (object.bits > free || entries == 8 || chance(10))
            continue;
        free -= object.bits;
        addSub(mapping, ++entries, CAN::Unsigned32,
               access + hex(quint32{object.index} << 16 | quint32{object.subindex} << 8 | object.bits, 8));
    }
    if (!transmit && free >= 8 && chance(20))
        addSub(mapping, ++entries, CAN::Unsigned32, access + u"0x00050008"_s);
    addSub(mapping, 0, CAN::Unsigned8, access + QString::number(entries));
}

void RandomProject::addSafetyObjects()
{
    addBlock(u"safety"_s);
    quint16 number = 0;
    for (quint32 count = this->number(0, 4); count > 0; --count) {
        addSrdo(number);
        number = static_cast<quint16>(number + this->number(1, 3));
    }
}

/// An SRDO with objects of its own: each value and, beside it, the inverted one.
void RandomProject::addSrdo(quint16 number)
{
    const auto index = static_cast<quint16>(0x1301 + number);
    const auto mapping = static_cast<quint16>(0x1381 + number);
    const auto data = static_cast<quint16>(0x6000 + 0x20 * number);
    const quint32 direction = this->number(0, 2);
    const quint32 cobId = 0x101U + 2U * number;
    add(u"object %1 name=SRDO; objecttype=9"_s.arg(hex(index)));
    addSub(index, 0, CAN::Unsigned8, u"accesstype=const; implementation=1; defaultvalue=6"_s);
    addSub(index, 1, CAN::Unsigned8, u"accesstype=rw; defaultvalue=%1"_s.arg(direction));
    addSub(index, 2, CAN::Unsigned16, u"accesstype=rw; defaultvalue=25"_s);
    addSub(index, 3, CAN::Unsigned8, u"accesstype=rw; defaultvalue=20"_s);
    addSub(index, 4, CAN::Unsigned8, u"accesstype=ro; implementation=1; defaultvalue=254"_s);
    addSub(index, 5, CAN::Unsigned32, u"accesstype=rw; defaultvalue="_s + hex(cobId));
    addSub(index, 6, CAN::Unsigned32, u"accesstype=rw; defaultvalue="_s + hex(cobId + 1));
    add(u"object %1 name=SRDO mapping; objecttype=9"_s.arg(hex(mapping)));
    quint8 entries = 0;
    quint32 bits = 0;
    for (quint32 count = this->number(1, 3); count > 0; --count) {
        const quint16 type = oneOf(safeObjectTypes);
        const quint32 length = COHelper::getDataLengthBits(type);
        if (bits + length > 64)
            break;
        bits += length;
        for (const auto inverse : {quint16{0}, quint16{0x10}}) {
            const auto at = static_cast<quint16>(data + count + inverse);
            add(u"object %1 name=Safety value; objecttype=7"_s.arg(hex(at)));
            addSub(at, 0, type,
                   u"accesstype=rw; implementation=2; pdomapping=1; defaultvalue=0; varname=safe%1_%2"_s.arg(line_).arg(
                       at, 4, 16, '0'_L1));
            addSub(mapping, ++entries, CAN::Unsigned32,
                   u"accesstype=rw; defaultvalue="_s + hex(quint32{at} << 16 | length, 8));
        }
    }
    addSub(mapping, 0, CAN::Unsigned8, u"accesstype=rw; defaultvalue=%1"_s.arg(entries));
}
