#include "stack/expecteddump.h"

#include "store/objectdatabase.h"
#include "texttools/helper.h"

#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;
using Sub = ObjectDataBase::SUBINDEX_DATA_T;

namespace {

enum Implementation : quint8
{
    Managed,
    Constant,
    Variable,
    Virtual
};

enum class Subs
{
    All,
    Entries, ///< all but 0
    First    ///< 1
};

enum class Value
{
    Own,    ///< where the data lies
    Index,  ///< the index of the object
    Number, ///< the number of the service, from 1
    Any     ///< nothing that a stack would use
};

/// What serves a subindex in the stack.
struct ServiceRow
{
    quint16 first;
    quint16 last;
    Subs subs;
    const char *name;
    Value value;
};

constexpr std::array services{
    ServiceRow{0x1003, 0x1003, Subs::All, "EMCY", Value::Index},
    ServiceRow{0x1005, 0x1006, Subs::All, "SYNC", Value::Index},
    ServiceRow{0x100C, 0x100D, Subs::All, "ERRCTRL", Value::Index},
    ServiceRow{0x1010, 0x1011, Subs::Entries, "STORE", Value::Index},
    ServiceRow{0x1012, 0x1012, Subs::All, "TIME", Value::Any},
    ServiceRow{0x1014, 0x1015, Subs::All, "EMCY", Value::Index},
    ServiceRow{0x1016, 0x1016, Subs::Entries, "ERRCTRL", Value::Index},
    ServiceRow{0x1017, 0x1017, Subs::All, "ERRCTRL", Value::Index},
    ServiceRow{0x1019, 0x1019, Subs::All, "SYNC", Value::Index},
    ServiceRow{0x1028, 0x1028, Subs::Entries, "EMCY", Value::Index},
    ServiceRow{0x1029, 0x1029, Subs::First, "ERRCTRL", Value::Index},
    ServiceRow{0x102A, 0x102A, Subs::All, "NMT", Value::Index},
    ServiceRow{0x1032, 0x1032, Subs::All, "EMCY", Value::Index},
    ServiceRow{0x1200, 0x127F, Subs::Entries, "SDO_SERVER", Value::Number},
    ServiceRow{0x1280, 0x12FF, Subs::Entries, "SDO_CLIENT", Value::Number},
    ServiceRow{0x1300, 0x1300, Subs::All, "GFC", Value::Any},
    ServiceRow{0x1301, 0x13F0, Subs::Entries, "SRDO", Value::Index},
    ServiceRow{0x13FE, 0x13FF, Subs::All, "SRDO", Value::Index},
    ServiceRow{0x1400, 0x15FF, Subs::Entries, "RPDO", Value::Number},
    ServiceRow{0x1600, 0x17FF, Subs::All, "RMAP", Value::Number},
    ServiceRow{0x1800, 0x19FF, Subs::Entries, "TPDO", Value::Number},
    ServiceRow{0x1A00, 0x1BFF, Subs::All, "TMAP", Value::Number},
    ServiceRow{0x1F10, 0x1F11, Subs::All, "SRD", Value::Any},
    ServiceRow{0x1F2C, 0x1F2C, Subs::Entries, "NETWORK", Value::Index},
    ServiceRow{0x1F80, 0x1F82, Subs::All, "NMT", Value::Index},
    ServiceRow{0x1F90, 0x1F90, Subs::All, "FLYMA", Value::Any},
};

/// The module of safety-relevant data serves what it carries.
constexpr ServiceRow safetyModule{0, 0, Subs::All, "SRDO", Value::Index};

struct TypeRow
{
    quint16 code;
    const char *name;
    int bits; ///< of a number that is kept in arrays, else 0
    bool isSigned = false;
};

constexpr std::array types{
    TypeRow{1, "BOOL", 8},  TypeRow{2, "I8", 8, true}, TypeRow{3, "I16", 16, true}, TypeRow{4, "I32", 32, true},
    TypeRow{5, "U8", 8},    TypeRow{6, "U16", 16},     TypeRow{7, "U32", 32},       TypeRow{8, "R32", 0},
    TypeRow{9, "VS", 0},    TypeRow{10, "OS", 0},      TypeRow{11, "US", 0},        TypeRow{12, "U48", 48},
    TypeRow{13, "TD", 0},   TypeRow{15, "DOMAIN", 0},  TypeRow{16, "I24", 0},       TypeRow{17, "R64", 0},
    TypeRow{18, "I40", 0},  TypeRow{19, "I48", 0},     TypeRow{20, "I56", 0},       TypeRow{21, "I64", 0},
    TypeRow{22, "U24", 24}, TypeRow{24, "U40", 40},    TypeRow{25, "U48", 48},      TypeRow{26, "U56", 0},
    TypeRow{27, "U64", 64}, TypeRow{100, "U8", 8},     TypeRow{101, "U8", 8},       TypeRow{102, "U8", 8},
    TypeRow{103, "U8", 8},  TypeRow{104, "U8", 8},     TypeRow{105, "U8", 8},       TypeRow{120, "SN", 0},
    TypeRow{121, "SA", 0},  TypeRow{124, "UTF8", 0},
};

const TypeRow &typeOf(quint16 code)
{
    static const TypeRow unknown{0, "?", 0};
    const auto row = std::ranges::find(types, code, &TypeRow::code);
    return row == types.end() ? unknown : *row;
}

bool isText(quint16 code)
{
    return code == 9 || code == 10 || code == 124;
}

bool isWritable(const Sub &sub)
{
    return sub.accesstype != "const"_L1 && sub.accesstype != "ro"_L1;
}

/// A number as the walker prints one of the type.
QString number(quint16 code, const QString &text, int base = 0)
{
    const TypeRow &type = typeOf(code);
    const QString trimmed = text.trimmed();
    if (code == 8)
        return QString::number(static_cast<double>(trimmed.toFloat()), 'g', 6);
    if (type.bits == 0)
        return u"-"_s;
    if (type.isSigned) {
        const int shift = 64 - type.bits;
        return QString::number(static_cast<qint64>(static_cast<quint64>(trimmed.toLongLong(nullptr, base)) << shift) >>
                               shift);
    }
    const quint64 mask = ~quint64{0} >> (64 - type.bits);
    return QString::number(trimmed.toULongLong(nullptr, base) & mask);
}

QString withoutNodeId(QString text)
{
    return text.remove(u"$nodeid+"_s, Qt::CaseInsensitive);
}

QString attributes(const Sub &sub)
{
    QStringList words;
    const bool readable = sub.accesstype != "wo"_L1;
    if (sub.datatype < 9 || sub.datatype == 22)
        words << u"num"_s;
    if (readable)
        words << u"read"_s;
    if (isWritable(sub))
        words << u"write"_s;
    if (sub.pdomapping.toUInt() != 0) {
        if (QStringList{u"const"_s, u"ro"_s, u"rwr"_s, u"rw"_s}.contains(sub.accesstype))
            words << u"tpdo"_s;
        if (QStringList{u"wo"_s, u"rww"_s, u"rw"_s}.contains(sub.accesstype))
            words << u"rpdo"_s;
    }
    if (sub.defaultineds)
        words << u"default"_s;
    if (sub.limitineds)
        words << u"limit"_s;
    if (sub.nvstorage)
        words << u"store"_s;
    return words.join(u',');
}

/// The bytes of a text constant: characters with the escapes of C, or pairs of hexadecimal digits behind "|x". What a
/// device serves behind the end of its text is open.
QString textConstant(const Sub &sub)
{
    QByteArray bytes;
    if (sub.defaultvalue.startsWith("|x"_L1)) {
        bytes = QByteArray::fromHex(sub.defaultvalue.mid(2).toLatin1());
    } else {
        static const QRegularExpression escape(u"\\\\([\"\\\\])"_s);
        bytes = sub.defaultvalue.toUtf8();
        if (sub.datatype != 124) // UTF-8 text is escaped when it is written
            bytes = QString(sub.defaultvalue).replace(escape, u"\\1"_s).toUtf8();
    }
    const qsizetype size = sub.size;
    if (bytes.size() < size)
        return u"text "_s + QString::fromLatin1((bytes + '\0').toHex()) + u'*';
    return u"text "_s + QString::fromLatin1(bytes.first(size).toHex());
}

class Dump
{
public:
    Dump(ObjectDataBase &store, bool classic)
        : store_(store)
        , classic_(classic)
        , limitCheck_(store.getGeneralSetting(u"limit_check"_s).toInt() > 0)
        , initialised_(store.getGeneralSetting(u"init_static_variables"_s).toInt() == 1)
        , safetyData_(TestSupport::staticSafetyData(store))
    {
    }

    QStringList write()
    {
        QStringList devices;
        QStringList lineZero;
        for (const quint8 line : store_.getNodeList()) {
            const QList<quint16> indices = store_.getIndexList(line, 0x1000, 0xffff);
            const QStringList objects = linesOf(line, indices);
            const QStringList lines = QStringList(u"line %1: %2 objects"_s.arg(line).arg(objectCount_)) + objects;
            if (indices.size() > 1)
                devices += lines;
            if (line == 0)
                lineZero = lines;
        }
        // A line with one object is no device; a project without any has line 0 all the same.
        return devices.isEmpty() ? lineZero : devices;
    }

private:
    bool read(quint8 line, quint16 index, quint8 subindex, Sub &sub) const
    {
        return store_.getSubIndex(line, index, subindex, sub);
    }

    QStringList linesOf(quint8 line, const QList<quint16> &indices)
    {
        QStringList lines;
        objectCount_ = 0;
        for (const quint16 index : indices) {
            const QList<quint8> subs = store_.getSubIndexList(line, index);
            Sub first;
            if (read(line, index, 0, first) && first.implementation == Virtual)
                continue;
            ++objectCount_;
            // All lines share the rows of line 0; what else a later line marks as shared has no row at all.
            const bool shared = line != 0 && first.sharedlines;
            const quint8 owner = shared ? 0 : line;
            for (const quint8 subindex : store_.getSubIndexList(owner, index)) {
                Sub sub;
                if (!read(owner, index, subindex, sub) || sub.implementation == Virtual)
                    continue;
                const bool domain = sub.implementation == Variable && sub.datatype == 15;
                if (domain && owner == line)
                    domains_.insert(quint32{line} << 24 | quint32{index} << 8 | subindex, domainCount_++);
                if (!subs.isEmpty() && subindex <= subs.last() && (owner != line || line == 0 || !sub.sharedlines))
                    lines << lineOf(line, owner, index, subindex, sub);
            }
        }
        return lines;
    }

    QString lineOf(quint8 line, quint8 owner, quint16 index, quint8 subindex, const Sub &sub) const
    {
        const ServiceRow *service = serviceOf(index, subindex);
        if (service == nullptr && safetyData_.contains(quint32{owner} << 24 | quint32{index} << 8 | subindex))
            service = &safetyModule;
        const bool constant = sub.implementation == Constant;
        QString specifier = constant                         ? u"CONST"_s
                            : service != nullptr             ? QString::fromLatin1(service->name)
                            : sub.implementation == Variable ? u"PTR"_s
                                                             : u"VAR"_s;
        QString type = QString::fromLatin1(typeOf(sub.datatype).name);
        // In the classic form a domain has no specifier, and a type that has no array counts as a domain.
        if (classic_ && (sub.datatype == 15 || type == "?"_L1)) {
            type = u"DOMAIN"_s;
            specifier = u"-"_s;
        }
        if (classic_ && constant && sub.datatype == 10)
            type = u"VS"_s;
        QString text = u"%1 0x%2:%3 %4 %5 %6 %7 default %8"_s.arg(line)
                           .arg(index, 4, 16, QLatin1Char('0'))
                           .arg(subindex)
                           .arg(objectType(line, index), type, specifier, attributes(sub),
                                number(sub.datatype, withoutNodeId(sub.defaultvalue)));
        const bool limited = typeOf(sub.datatype).bits > 0 && typeOf(sub.datatype).bits <= 32 && sub.datatype != 22;
        if (limitCheck_ && sub.limitineds && isWritable(sub) && (limited || sub.datatype == 8)) {
            const int base = typeOf(sub.datatype).isSigned ? 10 : 0;
            text += u" limits %1 to %2"_s.arg(number(sub.datatype, sub.lowlimit, base),
                                              number(sub.datatype, sub.uplimit, base));
        }
        return text + u" value "_s + value(owner, index, subindex, sub, constant ? nullptr : service);
    }

    static const ServiceRow *serviceOf(quint16 index, quint8 subindex)
    {
        for (const ServiceRow &row : services) {
            const bool fits = row.subs == Subs::All || (row.subs == Subs::Entries ? subindex != 0 : subindex == 1);
            if (index >= row.first && index <= row.last && fits)
                return &row;
        }
        return nullptr;
    }

    QString objectType(quint8 line, quint16 index) const
    {
        ObjectDataBase::INDEX_DATA_T object;
        store_.getIndex(line, index, object);
        switch (object.objecttype) {
        case 2:
            return u"DOMAIN"_s;
        case 7:
            return u"VAR"_s;
        case 8:
            return u"ARRAY"_s;
        case 9:
            return u"RECORD"_s;
        default:
            return u"?"_s;
        }
    }

    QString value(quint8 owner, quint16 index, quint8 subindex, const Sub &sub, const ServiceRow *service) const
    {
        if (classic_ && typeOf(sub.datatype).code == 0)
            return u"*"_s;
        if (index >= 0x1301 && index <= 0x13ff && sub.implementation != Constant)
            return QString::number(index);
        if (service != nullptr) {
            switch (service->value) {
            case Value::Index:
                return QString::number(index);
            case Value::Number:
                return QString::number(index - service->first + 1);
            default:
                return u"*"_s;
            }
        }
        switch (sub.implementation) {
        case Constant:
            return isText(sub.datatype) ? textConstant(sub) : number(sub.datatype, withoutNodeId(sub.defaultvalue));
        case Variable:
            return variable(owner, index, subindex, sub);
        default:
            // The stack counts its heartbeat consumers itself: the row is there, the variable is not.
            if (index == 0x1016)
                return u"*"_s;
            return number(sub.datatype, initialised_ ? sub.defaultvalue : QString());
        }
    }

    QString variable(quint8 owner, quint16 index, quint8 subindex, const Sub &sub) const
    {
        if (sub.datatype == 15)
            return u"domain %1"_s.arg(domains_.value(quint32{owner} << 24 | quint32{index} << 8 | subindex));
        const QString name = Helper::substituteVariables(sub.varname, index, subindex, owner);
        if (isText(sub.datatype))
            return u"%1/%2"_s.arg(name).arg(sub.size);
        return sub.datatype == 8 || typeOf(sub.datatype).bits > 0 ? name : u"-"_s;
    }

    ObjectDataBase &store_;
    bool classic_;
    bool limitCheck_;
    bool initialised_;
    QSet<quint32> safetyData_;
    int objectCount_ = 0;
    QMap<quint32, int> domains_;
    int domainCount_ = 0;
};

/// What a macro of gen_define.h counts: objects of a range, or the subindices of one object.
struct CountRow
{
    const char *macro;
    quint16 first;
    quint16 last;
    bool ofSubs = false;
    bool isSum = false;
};

constexpr std::array counts{
    CountRow{"CO_OBJECT_COUNTS", 0x1000, 0xffff},
    CountRow{"CO_TXPDO_COUNTS", 0x1800, 0x19ff},
    CountRow{"CO_RXPDO_COUNTS", 0x1400, 0x15ff},
    CountRow{"CO_CSDO_COUNTS", 0x1280, 0x12ff},
    CountRow{"CO_SRDO_COUNTS", 0x1301, 0x137f},
    CountRow{"CO_ASSIGN_COUNTS", 0x1f81, 0x1f81, true},
    CountRow{"CO_ERR_CTRL_COUNTS", 0x1016, 0x1016, true},
    CountRow{"CO_ERR_HIST_COUNTS", 0x1003, 0x1003, true},
    CountRow{"CO_ACT_ERR_HIST_COUNTS", 0x1032, 0x1032, true},
    CountRow{"CO_EMCY_CONS_COUNTS", 0x1028, 0x1028, true},
    CountRow{"CO_NETWORK_ROUTING_COUNTS", 0x1f2c, 0x1f2c, true},
    CountRow{"CO_PDO_TRANSMIT_CNT", 0x1a00, 0x1bff, false, true},
    CountRow{"CO_PDO_RECEIVE_CNT", 0x1600, 0x17ff, false, true},
    CountRow{"CO_SRDO_CNT", 0x1301, 0x137f, false, true},
    CountRow{"CO_SDO_CLIENT_CNT", 0x1280, 0x12ff, false, true},
};

int countOf(ObjectDataBase &store, quint8 line, const CountRow &row)
{
    return static_cast<int>(row.ofSubs ? store.getSubIndexList(line, row.first).size()
                                       : store.getIndexList(line, row.first, row.last).size());
}

/// Messages of a direction; both "_CNT" and "_COUNTS" go behind the name.
struct MessageRow
{
    const char *name;
    quint8 direction;
    bool isCanId = false;
    bool isSafe = false;
};

constexpr std::array messages{
    MessageRow{"J1939_RECEIVE_PGN_CFG", ObjectDataBase::receive},
    MessageRow{"J1939_RECEIVE_PGN", ObjectDataBase::receive},
    MessageRow{"J1939_TRANSMIT_PGN", ObjectDataBase::transmit},
    MessageRow{"J1939_SDG_REC", ObjectDataBase::receive, false, true},
    MessageRow{"J1939_SDG_TRANS", ObjectDataBase::transmit, false, true},
    MessageRow{"RAWCAN_RECEIVE", ObjectDataBase::receive, true},
    MessageRow{"RAWCAN_TRANSMIT", ObjectDataBase::transmit, true},
};

/// A line's type is one of those.
bool isOneOf(ObjectDataBase &store, quint8 line, const QList<int> &wanted)
{
    return wanted.contains(store.getGeneralSetting(u"line%1type"_s.arg(line)).toInt());
}

int countOf(ObjectDataBase &store, quint8 line, const MessageRow &row)
{
    if (row.isCanId)
        return isOneOf(store, line, {4, 6, 7}) ? static_cast<int>(store.getCANIDList(line, row.direction).size()) : 0;
    if (!isOneOf(store, line, {2, 5, 7}))
        return 0;
    const qsizetype all = store.getPGNList(line, row.direction).size();
    const bool apart = store.getJ1939Setting(u"safetysupport"_s, line).toInt() > 0;
    const qsizetype ordinary = apart ? store.getPGNList(line, row.direction, true).size() : all;
    return static_cast<int>(row.isSafe ? all - ordinary : ordinary);
}

/// One number for each line, and their sum.
template <typename Row>
std::pair<QString, QString> listAndSum(ObjectDataBase &store, const QList<quint8> &lines, const Row &row)
{
    QStringList entries;
    int sum = 0;
    for (const quint8 line : lines) {
        entries << QString::number(countOf(store, line, row));
        sum += entries.last().toInt();
    }
    return {entries.join(", "_L1), QString::number(sum)};
}

} // namespace

QMap<QString, QString> TestSupport::expectedCounts(ObjectDataBase &store)
{
    const bool fd = store.getGeneralSetting(u"canfd_supported"_s).toInt() > 0;
    const auto exchangesMessages = [&store](quint8 line) { return isOneOf(store, line, {2, 4, 5, 6, 7}); };
    QList<quint8> lines = store.getNodeList();
    const bool canOpenOnly = std::ranges::none_of(lines, exchangesMessages);
    lines.removeIf(
        [&](quint8 line) { return !exchangesMessages(line) && store.getIndexList(line, 0x1000, 0xffff).isEmpty(); });
    if (lines.isEmpty())
        lines.append(0);
    QMap<QString, QString> expected{{u"CAN_MULTI_LINE_CNT"_s, QString::number(lines.size())},
                                    {u"CO_MULTI_LINE_CNT"_s, QString::number(lines.size())}};
    for (const MessageRow &row : messages) {
        const auto [list, sum] = listAndSum(store, lines, row);
        expected[QString::fromLatin1(row.name) + u"_COUNTS"_s] = list;
        expected[QString::fromLatin1(row.name) + u"_CNT"_s] = sum;
    }
    if (!canOpenOnly)
        return expected;
    for (const CountRow &row : counts) {
        const auto [list, sum] = listAndSum(store, lines, row);
        expected[QString::fromLatin1(row.macro)] = row.isSum ? sum : list;
    }
    QStringList servers;
    for (const quint8 line : lines) {
        const qsizetype objects = store.getIndexList(line, 0x1000, 0xffff).size();
        const qsizetype count = store.getIndexList(line, 0x1200, 0x127f).size();
        servers << QString::number(count == 0 && !fd ? 1 : count);
        expected[u"CO_OBJECTS_LINE_%1_CNT"_s.arg(line)] = QString::number(objects);
    }
    expected[u"CO_SSDO_COUNTS"_s] = servers.join(", "_L1);
    return expected;
}

QSet<quint32> TestSupport::staticSafetyData(ObjectDataBase &store)
{
    QSet<quint32> keys;
    if (store.getGeneralSetting(u"static_srdo_data"_s).toInt() != 1)
        return keys;
    for (const quint8 line : store.getNodeList()) {
        for (const quint16 index : store.getIndexList(line, 0x1380, 0x13B0)) {
            for (const quint8 subindex : store.getSubIndexList(line, index, 1))
                keys.insert(quint32{line} << 24 |
                            store.getSubIndexDefaultValue(line, index, subindex).toUInt(nullptr, 0) >> 8);
        }
    }
    return keys;
}

QStringList TestSupport::expectedDump(ObjectDataBase &store, bool classic)
{
    return Dump(store, classic).write();
}
