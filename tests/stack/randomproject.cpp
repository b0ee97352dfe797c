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

constexpr std::array<quint16, 18> signalTypes{1, 2, 3, 4, 5, 6, 7, 8, 22, 27, 100, 105, 109, 118, 120, 121, 10, 106};
/// What safety data can be.
constexpr std::array<quint16, 9> safeSignalTypes{1, 5, 6, 7, 22, 100, 102, 105, 109};

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

bool RandomProject::isText(quint16 dataType)
{
    return dataType == CAN::VisibleString || dataType == CAN::OctetString || dataType == CAN::UnicodeString ||
           dataType == CAN::Utf8String || dataType == CAN::StringNull || dataType == CAN::StringAsterisk;
}

QString RandomProject::hex(quint32 number, int digits)
{
    return u"0x%1"_s.arg(number, digits, 16, '0'_L1);
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
