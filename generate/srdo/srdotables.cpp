#include "generate/srdo/srdotables.h"

#include "generate/base/codewriter.h"
#include "generate/base/runcontext.h"
#include "generate/model/linedictionary.h"
#include "generate/model/linesettings.h"
#include "nodedict/canopendatatype.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

constexpr quint16 firstSrdo = 0x1301;
constexpr quint16 lastSrdo = 0x1340;
constexpr quint16 mappingOffset = 0x80;
/// What stands in a mapping below this is a data type: a gap of its width.
constexpr quint16 firstObject = 0x1000;
constexpr quint32 bitsPerByte = 8;
/// The statements split values of up to four bytes.
constexpr quint32 maxMappedBits = 32;
constexpr auto nodeIdMark = "$NODEID"_L1;

const QList<SrdoTables::TypeKind> &kinds()
{
    static const QList<SrdoTables::TypeKind> table{
        {.tag = u"U8"_s, .cType = u"UNSIGNED8"_s, .bytes = 1},
        {.tag = u"U16"_s, .cType = u"UNSIGNED16"_s, .bytes = 2},
        {.tag = u"U32"_s, .cType = u"UNSIGNED32"_s, .bytes = 4},
        {.tag = u"U64"_s, .cType = u"UNSIGNED64"_s, .bytes = 8},
        {.tag = u"I8"_s, .cType = u"INTEGER8"_s, .bytes = 1},
        {.tag = u"I16"_s, .cType = u"INTEGER16"_s, .bytes = 2},
        {.tag = u"I32"_s, .cType = u"INTEGER32"_s, .bytes = 4},
        {.tag = u"R32"_s, .cType = u"REAL32"_s, .bytes = 4},
    };
    return table;
}

struct TypeTag
{
    quint16 dataType;
    QLatin1StringView tag;
};

constexpr std::array typeTags{
    TypeTag{CAN::Boolean, "U8"_L1},     TypeTag{CAN::Unsigned8, "U8"_L1},   TypeTag{CAN::Unsigned16, "U16"_L1},
    TypeTag{CAN::Unsigned32, "U32"_L1}, TypeTag{CAN::Unsigned64, "U64"_L1}, TypeTag{CAN::Integer8, "I8"_L1},
    TypeTag{CAN::Integer16, "I16"_L1},  TypeTag{CAN::Integer32, "I32"_L1},  TypeTag{CAN::Real32, "R32"_L1},
};

std::optional<SrdoTables::TypeKind> kindOf(quint16 dataType)
{
    if (dataType >= CAN::Unsigned2 && dataType <= CAN::Unsigned7)
        dataType = CAN::Unsigned8;
    const auto tag = std::ranges::find(typeTags, dataType, &TypeTag::dataType);
    if (tag == typeTags.end())
        return {};
    return *std::ranges::find(kinds(), tag->tag, &SrdoTables::TypeKind::tag);
}

/// Names that mean something else where the statements with the variables stand: the parameters of the functions
/// around them, and the module's state (docs/templates.md).
constexpr std::array namesOfModule{"pData"_L1,        "pNormal"_L1,    "pInvers"_L1,
                                   "srdoNr"_L1,       "canLine"_L1,    "configurationValid"_L1,
                                   "srdoNmtState"_L1, "pSrdoTimer"_L1, "srdoConfigReady"_L1};

const QRegularExpression &identifier()
{
    static const QRegularExpression pattern(u"[A-Za-z_][A-Za-z0-9_]*"_s);
    return pattern;
}

/// The identifiers in the variables that the project names: whatever the module adds has to be called otherwise.
QSet<QString> namesOfProject(ObjectDataBase &store)
{
    QSet<QString> names;
    const auto add = [&names](const QString &variable) {
        for (auto it = identifier().globalMatch(variable); it.hasNext();)
            names.insert(it.next().captured());
    };
    for (const quint8 line : LineSettings::stackLines(store)) {
        for (const auto &entry : store.getAllSubIndices(line))
            add(Helper::substituteVariables(entry.data.varname, entry.index, entry.subindex, line));
        for (const auto &signal : store.getAllSPNs(line))
            add(signal.varname);
        for (const auto &element : store.getAllDataElements(line))
            add(element.varname);
    }
    return names;
}

bool isPlainName(const QString &name)
{
    static const QRegularExpression plain(u"^[A-Za-z_][A-Za-z0-9_]*$"_s);
    return plain.match(name).hasMatch();
}

quint32 keyOf(const SrdoTables::Mapped &mapped)
{
    return quint32{mapped.line} << 24 | quint32{mapped.index} << 8 | mapped.subindex;
}

class Collector
{
public:
    Collector(ObjectDataBase &store, SrdoTables &tables)
        : store_(store)
        , tables_(tables)
        , projectNames_(namesOfProject(store))
    {
        while (!isFree(tables_.scratch))
            tables_.scratch += u'_';
    }

    /// The objects of a line whose data belong to the module, whether or not an SRDO exchanges them.
    void collectStatic(quint8 line);
    void collectSrdo(quint8 line, quint16 index);

private:
    QString defaultOf(quint16 index, quint8 subindex) const
    {
        return store_.getSubIndexDefaultValue(line_, index, subindex);
    }
    QList<quint32> mappingOf(quint16 index) const;
    QString number(quint16 index, quint8 subindex, int digits, const char *suffix) const;
    QString cobId(const SrdoTables::Srdo &srdo, quint8 subindex, const QString &predefined) const;
    SrdoTables::Mapped mappedOf(quint32 entry, bool exchanged);
    void nameVariable(SrdoTables::Mapped &mapped, const ObjectDataBase::SUBINDEX_DATA_T &sub);
    void nameShadow(SrdoTables::Mapped &mapped);
    bool isFree(const QString &name) const { return !projectNames_.contains(name); }
    bool canBe(const QString &variable, const SrdoTables::Mapped &mapped) const;
    void declare(const SrdoTables::Mapped &mapped);
    SrdoTables::Variable variable(const QString &name, const SrdoTables::Mapped &mapped, bool isStatic) const;
    QString placeOf(const SrdoTables::Mapped &mapped) const;

    ObjectDataBase &store_;
    SrdoTables &tables_;
    QSet<QString> projectNames_;
    quint8 line_ = 0;
    QHash<QString, SrdoTables::Variable> declared_;
    QHash<QString, QString> shadows_; ///< by what they are copies of
    QSet<QString> shadowNames_;
    QSet<quint32> static_; ///< line, index and subindex
};

QList<quint32> Collector::mappingOf(quint16 index) const
{
    const QList<quint8> subs = store_.getSubIndexList(line_, index, 1);
    const quint32 told = LineSettings::number(defaultOf(index, 0));
    QList<quint32> entries;
    for (const quint8 sub : subs) {
        if (sub <= told)
            entries.append(LineSettings::number(defaultOf(index, sub)));
    }
    return entries;
}

QString Collector::number(quint16 index, quint8 subindex, int digits, const char *suffix) const
{
    return u"0x%1%2"_s.arg(hex(LineSettings::number(defaultOf(index, subindex)), digits), QString::fromLatin1(suffix));
}

/// The identifier of a message. Without a number of its own the first SRDO has that of the pre-defined connection set.
QString Collector::cobId(const SrdoTables::Srdo &srdo, quint8 subindex, const QString &predefined) const
{
    QString text = defaultOf(srdo.index(), subindex).trimmed();
    const bool ofNode = text.contains(nodeIdMark, Qt::CaseInsensitive);
    if (srdo.number == 1 && (text.isEmpty() || ofNode))
        return predefined;
    text.remove(nodeIdMark, Qt::CaseInsensitive).remove(u'+');
    const QString value = u"0x%1ul"_s.arg(hex(LineSettings::number(text)));
    return ofNode ? value + u" + ownNodeId"_s : value;
}

QString Collector::placeOf(const SrdoTables::Mapped &mapped) const
{
    return u"%1_%2%3"_s.arg(hex(mapped.index, 4), hex(mapped.subindex, 2),
                            tables_.multiLine ? u"_l%1"_s.arg(mapped.line) : QString());
}

SrdoTables::Variable Collector::variable(const QString &name, const SrdoTables::Mapped &mapped, bool isStatic) const
{
    const QString place = u"0x%1:%2"_s.arg(hex(mapped.index, 4), hex(mapped.subindex, 2));
    return {.name = name,
            .cType = mapped.kind.cType,
            .comment = tables_.multiLine ? u"%1 line %2"_s.arg(place).arg(mapped.line) : place,
            .isStatic = isStatic};
}

/// False for a variable that would be something else: a name of the module, or one that is known with another type or
/// another owner.
bool Collector::canBe(const QString &variable, const SrdoTables::Mapped &mapped) const
{
    const auto first = identifier().match(variable);
    if (variable.isEmpty() || std::ranges::find(namesOfModule, first.captured()) != namesOfModule.end())
        return false;
    const auto known = declared_.constFind(variable);
    return known == declared_.constEnd() ||
           (known->cType == mapped.kind.cType && known->isStatic == static_.contains(keyOf(mapped)));
}

void Collector::declare(const SrdoTables::Mapped &mapped)
{
    if (declared_.contains(mapped.variable))
        return;
    const SrdoTables::Variable declared = variable(mapped.variable, mapped, static_.contains(keyOf(mapped)));
    declared_.insert(mapped.variable, declared);
    tables_.variables.append(declared);
}

void Collector::nameVariable(SrdoTables::Mapped &mapped, const ObjectDataBase::SUBINDEX_DATA_T &sub)
{
    constexpr quint8 applicationVariable = 2;
    const QString own =
        sub.implementation == applicationVariable
            ? Helper::substituteVariables(sub.varname.trimmed(), mapped.index, mapped.subindex, mapped.line)
            : QString();
    const bool usable = canBe(own, mapped);
    if (static_.contains(keyOf(mapped)) && !(usable && isPlainName(own))) {
        mapped.variable = u"srdoData_"_s + placeOf(mapped);
        while (!isFree(mapped.variable))
            mapped.variable += u'_';
    } else if (usable) {
        mapped.variable = own;
    } else {
        mapped.isSupported = false;
        return;
    }
    if (isPlainName(mapped.variable))
        declare(mapped);
}

/// A copy has a name that nothing else has: what is sent would be the other's value.
void Collector::nameShadow(SrdoTables::Mapped &mapped)
{
    const QString place = u"srdoData_"_s + placeOf(mapped);
    const bool plain = isPlainName(mapped.variable);
    QString &shadow = shadows_[plain ? mapped.variable : mapped.variable + u' ' + place];
    if (shadow.isEmpty()) {
        QString base = plain ? mapped.variable : place;
        shadow = base + u"_temp"_s;
        for (base = place; !isFree(shadow) || shadowNames_.contains(shadow); base += u'_')
            shadow = base + u"_temp"_s;
        shadowNames_.insert(shadow);
        tables_.shadows.append(variable(shadow, mapped, true));
    }
    mapped.shadow = shadow;
}

void Collector::collectStatic(quint8 line)
{
    line_ = line;
    for (const quint16 index :
         store_.getIndexList(line, ObjectRange::srdoMappings.first, ObjectRange::srdoMappings.last)) {
        for (const quint8 entrySub : store_.getSubIndexList(line, index, 1)) {
            const quint32 entry = LineSettings::number(defaultOf(index, entrySub));
            SrdoTables::Mapped mapped{
                .line = line, .index = static_cast<quint16>(entry >> 16), .subindex = static_cast<quint8>(entry >> 8)};
            ObjectDataBase::SUBINDEX_DATA_T sub;
            if (mapped.index < firstObject || static_.contains(keyOf(mapped)) ||
                !store_.getSubIndex(line, mapped.index, mapped.subindex, sub))
                continue;
            const auto kind = kindOf(sub.datatype);
            if (!kind)
                continue;
            static_.insert(keyOf(mapped));
            mapped.kind = *kind;
            nameVariable(mapped, sub);
            tables_.entries.append(mapped);
        }
    }
}

SrdoTables::Mapped Collector::mappedOf(quint32 entry, bool exchanged)
{
    const quint32 bits = entry & 0xFF;
    SrdoTables::Mapped mapped{.line = line_,
                              .index = static_cast<quint16>(entry >> 16),
                              .subindex = static_cast<quint8>(entry >> 8),
                              .bytes = bits / bitsPerByte};
    mapped.isDummy = mapped.index < firstObject;
    mapped.isSupported = bits > 0 && bits % bitsPerByte == 0;
    if (mapped.isDummy)
        return mapped;
    ObjectDataBase::SUBINDEX_DATA_T sub;
    const bool exists = store_.getSubIndex(line_, mapped.index, mapped.subindex, sub);
    const auto kind = exists ? kindOf(sub.datatype) : std::nullopt;
    if (!kind || kind->bytes * bitsPerByte != bits || bits > maxMappedBits) {
        mapped.isSupported = false;
        return mapped;
    }
    mapped.kind = *kind;
    nameVariable(mapped, sub);
    if (exchanged && mapped.isSupported)
        nameShadow(mapped);
    return mapped;
}

void Collector::collectSrdo(quint8 line, quint16 index)
{
    constexpr quint8 directionSub = 1;
    constexpr quint8 refreshSub = 2;
    constexpr quint8 validationSub = 3;
    constexpr quint8 normalSub = 5;
    constexpr quint8 invertedSub = 6;
    constexpr quint32 transmits = 1;
    constexpr quint32 receives = 2;

    line_ = line;
    const quint32 direction = LineSettings::number(defaultOf(index, directionSub));
    SrdoTables::Srdo srdo{.line = line,
                          .number = static_cast<quint16>(index - firstSrdo + 1),
                          .isTransmit = direction == transmits,
                          .isReceive = direction == receives,
                          .mapping = mappingOf(index + mappingOffset),
                          .direction = number(index, directionSub, 2, "u"),
                          .refreshTime = number(index, refreshSub, 4, "u"),
                          .validationTime = number(index, validationSub, 2, "u")};
    const QString suffix = tables_.multiLine ? u"_l%1"_s.arg(line) : QString();
    srdo.name = u"srdo%1%2"_s.arg(dec(srdo.number), suffix);
    if (!srdo.mapping.isEmpty())
        srdo.mapTable = u"mapTable%1%2"_s.arg(dec(srdo.number), suffix);
    srdo.normalCobId = cobId(srdo, normalSub, u"0xfful + (ownNodeId * 2ul)"_s);
    srdo.invertedCobId = cobId(srdo, invertedSub, u"0x100ul + (ownNodeId * 2ul)"_s);
    const bool exchanged = srdo.isTransmit || srdo.isReceive;
    for (qsizetype i = 0; i < srdo.mapping.size(); ++i)
        (i % 2 == 0 ? srdo.normal : srdo.inverted).append(mappedOf(srdo.mapping.at(i), exchanged));
    tables_.srdos.append(srdo);
}

} // namespace

quint16 SrdoTables::Srdo::index() const
{
    return static_cast<quint16>(firstSrdo + number - 1);
}

const QList<SrdoTables::TypeKind> &SrdoTables::typeKinds()
{
    return kinds();
}

SrdoTables SrdoTables::collect(ObjectDataBase &store, bool multiLine, bool staticData)
{
    const QList<quint8> lines = LineSettings::stackLines(store);
    SrdoTables tables{.multiLine = multiLine, .lineCount = lines.size()};
    Collector collector(store, tables);
    for (const quint8 line : lines) {
        if (!RunContext::protocolsOf(store, line).canOpen)
            continue;
        if (staticData)
            collector.collectStatic(line);
        for (const quint16 index : store.getIndexList(line, firstSrdo, lastSrdo))
            collector.collectSrdo(line, index);
    }
    return tables;
}
