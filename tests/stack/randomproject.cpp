#include "stack/randomproject.h"

#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "support/testhome.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

enum Implementation : quint8
{
    ManagedVariable,
    ManagedConst,
    ApplicationVariable,
    VirtualObject
};

/// The types of an object; those that devices have most stand more than once.
constexpr std::array<quint16, 40> objectTypes{5,  5,  5,  5,  6,  6,   6,   7,   7,   7,  2,  3,  4,  8,
                                              1,  9,  9,  10, 11, 12,  13,  15,  16,  17, 18, 19, 20, 21,
                                              22, 24, 25, 26, 27, 100, 102, 105, 124, 5,  6,  3};
constexpr std::array<quint16, 18> signalTypes{1, 2, 3, 4, 5, 6, 7, 8, 22, 27, 100, 105, 109, 118, 120, 121, 10, 106};
/// What safety data and safety objects can be.
constexpr std::array<quint16, 9> safeSignalTypes{1, 5, 6, 7, 22, 100, 102, 105, 109};
constexpr std::array<quint16, 7> safeObjectTypes{5, 6, 7, 2, 3, 4, 8};

bool isText(quint16 dataType)
{
    return dataType == CAN::VisibleString || dataType == CAN::OctetString || dataType == CAN::UnicodeString ||
           dataType == CAN::Utf8String || dataType == CAN::StringNull || dataType == CAN::StringAsterisk;
}

QString hex(quint32 number, int digits = 4)
{
    return u"0x%1"_s.arg(number, digits, 16, '0'_L1);
}

} // namespace

RandomProject::RandomProject(quint32 seed)
    : random_(seed)
{
    QString block;
    const QString path = QStringLiteral(NCX_SOURCE_DIR "/tests/data/random/project.txt");
    for (const QString &line : QString::fromUtf8(readFile(path)).split(u'\n', Qt::SkipEmptyParts)) {
        if (line.startsWith("= "_L1))
            block = line.sliced(2);
        else if (!line.startsWith(u'#'))
            blocks_[block].append(line);
    }
    constexpr std::array types{1, 1, 2, 4, 5, 6, 7};
    lineCount_ = oneOf(std::array{1, 1, 1, 2, 2, 3});
    classic_ = chance(40);
    fd_ = chance(30);
    safety_ = chance(40);
    const bool alike = chance(40);
    for (qsizetype i = 0; i < lineCount_; ++i)
        lineTypes_.append(alike && i > 0 ? lineTypes_.first() : oneOf(types));
    add(u"line 0 = %1"_s.arg(lineTypes_.first()));
    addBlock(u"settings"_s);
    add(u"general canfd_supported = %1"_s.arg(fd_ ? 1 : 0));
    const auto nodeId = [](int) { return u"32"_s; };
    QStringList ids;
    std::ranges::transform(lineTypes_, std::back_inserter(ids), nodeId);
    add(u"general co_node_id = "_s + ids.join(u','));
    if (chance(20))
        add(u"general co_node_id_fct = readNodeId"_s);
    const auto hasJ1939 = [](int type) { return type == 2 || type == 5 || type == 7; };
    if (std::ranges::any_of(lineTypes_, hasJ1939)) {
        addBlock(u"j1939"_s);
        server_ = std::ranges::count(lineTypes_, 2) == lineCount_ && chance(50);
        if (server_ || std::ranges::count(lineTypes_, 2) < lineCount_)
            add(u"j1939 cia510serversupport = %1"_s.arg(server_ || chance(40) ? 1 : 0));
        if (safety_)
            addBlock(u"safety data"_s);
    }
    for (const int type : std::as_const(lineTypes_)) {
        addLine(type);
        ++line_;
    }
}

quint32 RandomProject::number(quint32 first, quint32 last)
{
    return first + static_cast<quint32>(random_()) % (last - first + 1);
}

/// Text with all choices made: <per line>, {one|of|these}, {1..9}.
QString RandomProject::expanded(QString text)
{
    static const QRegularExpression perLine(u"<([^<>]*\\{[^<>]*)>"_s);
    static const QRegularExpression choice(u"\\{([^{}]*)\\}"_s);
    static const QRegularExpression range(u"^(\\d+)\\.\\.(\\d+)$"_s);
    text.replace(u"${EXAMPLES}"_s, QStringLiteral(NCX_SOURCE_DIR "/examples"));
    for (auto match = perLine.match(text); match.hasMatch(); match = perLine.match(text)) {
        const qsizetype count = chance(30) ? 1 : lineCount_;
        text.replace(match.capturedStart(), match.capturedLength(), QStringList(count, match.captured(1)).join(u','));
    }
    for (auto match = choice.match(text); match.hasMatch(); match = choice.match(text)) {
        const auto limits = range.match(match.captured(1));
        const QString chosen = limits.hasMatch()
                                   ? QString::number(number(limits.captured(1).toUInt(), limits.captured(2).toUInt()))
                                   : oneOf(match.captured(1).split(u'|'));
        text.replace(match.capturedStart(), match.capturedLength(), chosen);
    }
    return text.replace(u"$L"_s, QString::number(line_)).replace(u"\\n"_s, u"\n"_s);
}

/// The commands of a block. What is indented belongs to the command above: it is left out with that.
void RandomProject::addBlock(const QString &name)
{
    static const QRegularExpression row(u"^( *)(?:(\\d+)% )?(.*)$"_s);
    qsizetype leftOut = std::numeric_limits<qsizetype>::max(); // the depth of a command that was
    for (const QString &line : blocks_.value(name)) {
        const auto match = row.match(line);
        const qsizetype depth = match.capturedLength(1);
        if (depth > leftOut)
            continue;
        const bool taken = match.captured(2).isEmpty() || chance(match.captured(2).toUInt());
        leftOut = taken ? std::numeric_limits<qsizetype>::max() : depth;
        if (taken)
            add(expanded(match.captured(3)));
    }
}

QString RandomProject::fields(const QString &block)
{
    static const QRegularExpression row(u"^(?:(\\d+)% )?(.*)$"_s);
    QStringList result;
    for (const QString &line : blocks_.value(block)) {
        const auto match = row.match(line);
        if (match.captured(1).isEmpty() || chance(match.captured(1).toUInt()))
            result.append(expanded(match.captured(2)));
    }
    return result.join("; "_L1);
}

QString RandomProject::value(quint16 dataType)
{
    const QString key = QString::number(dataType) + u' ';
    for (const QString &line : blocks_.value(u"values"_s)) {
        if (line.startsWith(key))
            return expanded(line.sliced(key.size()));
    }
    return u"0"_s;
}

quint16 RandomProject::objectType()
{
    return oneOf(objectTypes);
}

void RandomProject::addLine(int type)
{
    add(u"line %1 = %2"_s.arg(line_).arg(type));
    addBlock(u"every line"_s);
    mappables_.clear();
    if (type == 1 || type == 5 || type == 6) {
        addBlock(u"canopen"_s);
        addBlock(fd_ ? u"fd device"_s : u"classic device"_s);
        addApplicationObjects();
        addPdos(true);
        addPdos(false);
        if (safety_)
            addSafetyObjects();
    }
    if (server_) {
        addBlock(u"classic device"_s);
        addApplicationObjects();
    }
    if (type == 2 || type == 5 || type == 7)
        addGroups();
    if (type == 4 || type == 6 || type == 7)
        addFrames();
    addBlock(u"diagnostics"_s);
}

void RandomProject::addSub(quint16 index, quint8 subindex, quint16 dataType, const QString &more)
{
    add(u"sub %1:%2 name=Entry; datatype=%3; %4"_s.arg(hex(index)).arg(subindex).arg(dataType).arg(more));
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

/// The fields of a signal that begins at the position, or the gap behind it, and the position behind it.
QString RandomProject::signal(quint32 &position, quint16 dataType, const QString &variable, bool isSafe)
{
    quint32 bits = COHelper::getDataLengthBits(dataType);
    if (isText(dataType))
        bits = 8 * number(1, 5);
    if (!isSafe && chance(20))
        position += number(1, 8);
    const quint32 kind = isSafe ? quint32{ApplicationVariable} : isText(dataType) ? number(2, 3) : number(0, 3);
    QString result = u"name=%1; datatype=%2; bitsize=%3; bitposition=%4; implementation=%5; defaultvalue=%6"_s
                         .arg(oneOf(QStringList{u"Speed"_s, u"Speed */"_s, u"it's"_s, u"größe"_s, u"SG_"_s}))
                         .arg(dataType)
                         .arg(bits)
                         .arg(position)
                         .arg(kind)
                         .arg(oneOf(QStringList{u"0"_s, u"1"_s, u"0x1"_s, QString()}));
    if (kind == ApplicationVariable || chance(80))
        result += u"; varname="_s + variable;
    position += bits;
    return result;
}

void RandomProject::addGroups()
{
    quint32 group = number(0, 200);
    for (quint32 count = number(0, 8); count > 0; --count) {
        group += number(1, 900);
        const bool isSafe = safety_ && chance(40);
        const bool sdm = !fd_ || chance(50);
        const QString direction = chance(50) ? u"tx"_s : u"rx"_s;
        QString head = fields(u"group"_s);
        if (isSafe)
            head += u"; issafe=1; safetytype=%1; srvt_ms=100"_s.arg(sdm ? 1 : number(2, 3));
        if (fd_ && chance(40))
            head += u"; FD_TrailerFormat=%1; FD_AssuranceType=%2; FD_AssuranceDataSize=%3"_s.arg(number(0, 5))
                        .arg(number(0, 3))
                        .arg(number(0, 8));
        quint32 position = 0;
        const quint32 signalCount = number(1, 6);
        QStringList signalCommands;
        for (quint32 i = 1; i <= signalCount && position < (isSafe && sdm ? 32U : 400U); ++i) {
            const quint16 type = isSafe ? oneOf(safeSignalTypes) : oneOf(signalTypes);
            const QString at = u"%1_%2"_s.arg(line_).arg(group);
            const bool isPlain = isText(type) || isSafe || chance(70);
            const QString name = isPlain ? u"s%1_%2"_s.arg(at).arg(i)
                                         : oneOf(QStringList{u"a%1t%2[%3]"_s, u"b%1t%2[1][%3]"_s, u"c%1t%2.m%3"_s,
                                                             u"d%1t%2_%3[LAST_INDEX]"_s})
                                               .arg(at)
                                               .arg(type)
                                               .arg(i);
            const QString row = signal(position, type, name, isSafe);
            signalCommands.append(u"spn %1 %2 %3 pos=%4; "_s.arg(group).arg(direction).arg(100 * group + i).arg(i) +
                                  row);
        }
        add(u"pgn %1 %2 mappingcount=%3; "_s.arg(group).arg(direction).arg(signalCommands.size()) +
            head.replace(u"$S"_s, QString::number(group)));
        commands_ += signalCommands;
    }
}

void RandomProject::addFrames()
{
    for (quint32 count = number(0, 8); count > 0; --count) {
        const quint32 id =
            chance(60) ? 0x80U * count + number(0, 0x7f) : 0x80000000U | (count << 24) | number(0, 0xffffff);
        const QString direction = chance(50) ? u"tx"_s : u"rx"_s;
        QStringList signalCommands;
        quint32 position = 0;
        const quint32 limit = fd_ ? 512 : 64;
        for (quint32 i = 1; i <= number(0, 5); ++i) {
            const quint16 type = oneOf(signalTypes);
            const QString row = signal(position, type, u"f%1_%2_%3"_s.arg(line_).arg(id, 0, 16).arg(i), false);
            if (position > limit)
                break;
            signalCommands.append(
                u"signal %1 %2 %3 pos=%3; "_s.arg(hex(id)).arg(direction).arg(i) + row +
                (row.contains("varname"_L1) ? QString() : u"; varname=x%1_%2_%3"_s.arg(line_).arg(id, 0, 16).arg(i)));
        }
        add(u"canid %1 %2 name=%3; cycletime_ms=%4; inhibittime_ms=%5; mappingcount=%6"_s
                .arg(hex(id), direction, oneOf(QStringList{u"Frame"_s, u"BO_"_s, u"*/"_s, u"it's"_s}))
                .arg(number(0, 3))
                .arg(number(0, 200))
                .arg(signalCommands.size()));
        commands_ += signalCommands;
    }
}
