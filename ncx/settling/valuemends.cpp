#include "ncx/settling/mends.h"

#include "check/line/storevalue.h"
#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "texttools/numbertext.h"

#include <QRegularExpression>
#include <QtEndian>

#include <algorithm>
#include <bit>

using namespace Qt::StringLiterals;
using namespace CANopen;

namespace {

using Sub = SettledLine::Sub;

QString hexadecimal(quint64 value)
{
    return u"0x%1"_s.arg(value, 0, 16);
}

/// The bytes of an octet string in the form of a project.
QString octets(const QByteArray &bytes)
{
    return "|x"_L1 + QString::fromLatin1(bytes.toHex());
}

std::optional<quint64> numberOf(const QString &text)
{
    if (const auto number = NumberText::byPrefix<quint64>(text))
        return number;
    const auto number = NumberText::signedByPrefix(text);
    return number ? std::optional(static_cast<quint64>(*number)) : std::nullopt;
}

// How a default value reads in the type that takes its place. What descriptions cannot tell under the type of the file
// they leave out.

void keepNumber(Sub &sub)
{
    if (sub.defaultvalue.startsWith(u'-'))
        sub.defaultvalue = hexadecimal(numberOf(sub.defaultvalue).value_or(0) &
                                       (~quint64{0} >> (64 - COHelper::getDataLengthBits(sub.datatype))));
}

void keepBitsOfReal(Sub &sub)
{
    if (sub.defaultvalue.isEmpty())
        return;
    sub.defaultvalue = hexadecimal(std::bit_cast<quint64>(sub.defaultvalue.toDouble()));
    sub.writedefaulttoeds = 0;
}

void keepSevenBytes(Sub &sub)
{
    sub.size = 7;
    if (sub.defaultvalue.isEmpty())
        return;
    const quint64 number = qToLittleEndian(numberOf(sub.defaultvalue).value_or(0));
    sub.defaultvalue = octets(QByteArray(reinterpret_cast<const char *>(&number), sub.size));
    sub.writedefaulttoeds = 0;
}

void keepUtf16(Sub &sub)
{
    if (sub.defaultvalue.isEmpty())
        return;
    QByteArray bytes;
    for (const QChar character : std::as_const(sub.defaultvalue)) {
        bytes.append(static_cast<char>(character.cell()));
        bytes.append(static_cast<char>(character.row()));
    }
    sub.defaultvalue = octets(bytes);
    sub.writedefaulttoeds = 0;
}

void keepAsItIs(Sub & /*sub*/) {}

QString variableName(quint16 index, quint8 subindex)
{
    return u"v_%1sub%2"_s.arg(index, 4, 16, QLatin1Char('0')).arg(subindex);
}

struct NearestType
{
    quint16 type;
    quint16 nearest;
    void (*keepDefault)(Sub &);
};
constexpr NearestType nearestTypes[] = {
    {CAN::Integer40, CAN::Unsigned40, keepNumber},      {CAN::Integer48, CAN::Unsigned48, keepNumber},
    {CAN::Integer64, CAN::Unsigned64, keepNumber},      {CAN::Real64, CAN::Unsigned64, keepBitsOfReal},
    {CAN::Integer56, CAN::OctetString, keepSevenBytes}, {CAN::Unsigned56, CAN::OctetString, keepSevenBytes},
    {CAN::UnicodeString, CAN::OctetString, keepUtf16},  {CAN::TimeDifference, CAN::TimeOfDay, keepAsItIs},
};

/// A type whose size nobody knows: the application serves its bytes.
void makeDomain(Sub &sub, quint16 index, quint8 subindex)
{
    sub.datatype = CAN::Domain;
    sub.implementation = codeOf(Implementation::Variable);
    sub.varname = variableName(index, subindex);
    sub.defaultvalue.clear();
}

/// CiA 306 writes an octet string as pairs of hexadecimal digits.
void readOctets(Sub &sub)
{
    static const QRegularExpression pairs(u"^([0-9A-Fa-f]{2}\\s*)+$"_s);
    if (sub.datatype == CAN::OctetString && pairs.match(sub.defaultvalue).hasMatch())
        sub.defaultvalue = "|x"_L1 + QString(sub.defaultvalue).remove(u' ');
}

quint32 bytesOf(const QString &text)
{
    return static_cast<quint32>(text.startsWith("|x"_L1) ? (text.size() - 2) / 2 : text.toUtf8().size());
}

bool isWritable(const Sub &sub)
{
    return CANopen::isWritable(sub.accesstype);
}

} // namespace

bool ValueMends::takeNearestType(SettledLine &line, const FindingPlace &place)
{
    const Sub *present = line.sub(*place.index, place.subindex.value_or(0));
    if (!present)
        return false;
    Sub sub = *present;
    const auto nearest = std::ranges::find(nearestTypes, present->datatype, &NearestType::type);
    const bool isKnown = nearest != std::end(nearestTypes);
    // Limits of numbers that may be negative, or have a fraction, mean others among those without a sign.
    sub.limitineds = false;
    if (isKnown) {
        sub.datatype = nearest->nearest;
        nearest->keepDefault(sub);
    } else {
        makeDomain(sub, *place.index, place.subindex.value_or(0));
    }
    if (present->datatype != CAN::NoType)
        sub.metadata.insert(u"eds_datatype"_s, u"0x%1"_s.arg(present->datatype, 4, 16, QLatin1Char('0')));
    return line.set(*place.index, place.subindex.value_or(0), sub);
}

bool ValueMends::makeConstant(SettledLine &line, const FindingPlace &place)
{
    const Sub *present = line.sub(*place.index, *place.subindex);
    if (!present || isWritable(*present))
        return false;
    Sub sub = *present;
    readOctets(sub);
    sub.implementation = codeOf(Implementation::ManagedConst);
    sub.size = std::max(bytesOf(sub.defaultvalue), sub.size);
    // The text of a constant is one of C.
    if (!sub.defaultvalue.startsWith("|x"_L1))
        sub.defaultvalue.replace("\\"_L1, "\\\\"_L1);
    return line.set(*place.index, *place.subindex, sub);
}

bool ValueMends::makeApplicationVariable(SettledLine &line, const FindingPlace &place)
{
    constexpr quint32 sizeOfUnknown = 32;
    const Sub *present = line.sub(*place.index, *place.subindex);
    if (!present || !isWritable(*present))
        return false;
    Sub sub = *present;
    readOctets(sub);
    sub.implementation = codeOf(Implementation::Variable);
    sub.varname = variableName(*place.index, *place.subindex);
    const quint32 bytes = std::max(bytesOf(sub.defaultvalue), sub.size);
    sub.size = bytes > 0 ? bytes : sizeOfUnknown;
    return line.set(*place.index, *place.subindex, sub);
}

bool ValueMends::removeUnreadable(SettledLine &line, const FindingPlace &place)
{
    return line.setDefault(*place.index, place.subindex.value_or(0), QString());
}

namespace {

/// A value or a limit as a number that can be compared; a value that is relative to the node-id is as large as it can
/// be, and as small.
struct Extent
{
    double least = 0;
    double most = 0;
    QString leastText = {};
    QString mostText = {};
};

Extent extentOf(const QString &text, quint16 type)
{
    if (const auto value = StoreValue::parse(text); value && value->nodeRelative) {
        const quint64 least = value->magnitude + 1;
        const quint64 most = value->magnitude + lastNodeId;
        return {double(least), double(most), hexadecimal(least), hexadecimal(most)};
    }
    bool isReal = false;
    double number = text.toDouble(&isReal);
    if (const auto bits = isReal ? std::nullopt : numberOf(text))
        number = COHelper::isSigned(type) ? double(static_cast<qint64>(*bits)) : double(*bits);
    return {number, number, text, text};
}

} // namespace

/// Limits that leave no room mean none; of others the one that is in the way gives way to the default value.
bool ValueMends::widenLimits(SettledLine &line, const FindingPlace &place)
{
    const Sub *present = line.sub(*place.index, *place.subindex);
    if (!present || !present->limitineds)
        return false;
    Sub sub = *present;
    const Extent low = extentOf(sub.lowlimit, sub.datatype);
    const Extent high = extentOf(sub.uplimit, sub.datatype);
    const Extent value = extentOf(sub.defaultvalue, sub.datatype);
    if (!sub.lowlimit.isEmpty() && !sub.uplimit.isEmpty() && low.least >= high.least) {
        sub.limitineds = false;
    } else {
        if (!sub.uplimit.isEmpty() && value.most > high.least)
            sub.uplimit = value.mostText;
        if (!sub.lowlimit.isEmpty() && value.least < low.least)
            sub.lowlimit = value.leastText;
    }
    return line.set(*place.index, *place.subindex, sub);
}
