#include "generate/srdo/srdotables.h"

#include "generate/base/codewriter.h"
#include "generate/base/runcontext.h"
#include "generate/model/dictionarytables.h"
#include "generate/model/linesettings.h"
#include "nodedict/canopendatatype.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"
#include "texttools/numbertext.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;
using Entry = StoreRecords::SubEntry;

namespace {

constexpr quint16 mappingOffset = 0x80;
/// What stands in a mapping below this is a data type: a gap of its width.
constexpr quint16 firstObject = CANopen::Index::firstCommunicationObject;
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
QSet<QString> namesOfProject(ObjectDataBase &store, const std::vector<LineDictionary> &lines)
{
    QSet<QString> names;
    const auto add = [&names](const QString &variable) {
        for (auto it = identifier().globalMatch(variable); it.hasNext();)
            names.insert(it.next().captured());
    };
    for (const LineDictionary &line : lines) {
        for (const Entry &entry : line.entries())
            add(filledText(entry.data.varname, entry));
        for (const StoreRecords::SPN &signal : store.getAllSPNs(line.number))
            add(signal.varname);
        for (const StoreRecords::DataElement &element : store.getAllDataElements(line.number))
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
    return subKey(mapped.line, mapped.index, mapped.subindex);
}

/// The entries of a mapping, as many as it tells.
QList<quint32> mappingOf(const LineObject *mapping)
{
    QList<quint32> entries;
    if (!mapping)
        return entries;
    const quint32 told = defaultNumber(mapping->sub(0));
    for (const Entry &sub : mapping->subs) {
        if (sub.subindex > 0 && sub.subindex <= told)
            entries.append(defaultNumber(&sub));
    }
    return entries;
}

QString number(const LineObject &object, quint8 subindex, int digits)
{
    return u"0x%1u"_s.arg(hex(defaultNumber(object.sub(subindex)), digits));
}

/// The identifier of a message. Without a number of its own the first SRDO has that of the pre-defined connection set.
QString cobId(const LineObject &object, quint8 subindex, const QString &predefined)
{
    const Entry *sub = object.sub(subindex);
    QString text = sub ? sub->data.defaultvalue.trimmed() : QString();
    const bool ofNode = text.contains(nodeIdMark, Qt::CaseInsensitive);
    if (object.index == CANopen::Index::srdos.first && (text.isEmpty() || ofNode))
        return predefined;
    text.remove(nodeIdMark, Qt::CaseInsensitive).remove(u'+');
    const QString value = u"0x%1ul"_s.arg(hex(NumberText::byPrefix(text).value_or(0)));
    return ofNode ? value + u" + ownNodeId"_s : value;
}

class Collector
{
public:
    Collector(QSet<QString> projectNames, SrdoTables &tables)
        : tables_(tables)
        , projectNames_(std::move(projectNames))
    {
        while (!isFree(tables_.scratch))
            tables_.scratch += u'_';
    }

    /// The objects of a line whose data belong to the module, whether or not an SRDO exchanges them.
    void collectStatic(const LineDictionary &line);
    void collectSrdos(const LineDictionary &line);

private:
    void collectSrdo(const LineObject &object, const LineObject *mapping);
    SrdoTables::Mapped mappedOf(quint32 entry, bool exchanged);
    void nameVariable(SrdoTables::Mapped &mapped, const StoreRecords::SubIndexData &sub);
    void nameShadow(SrdoTables::Mapped &mapped);
    bool isFree(const QString &name) const { return !projectNames_.contains(name); }
    bool canBe(const QString &variable, const SrdoTables::Mapped &mapped) const;
    void declare(const SrdoTables::Mapped &mapped);
    SrdoTables::Variable variable(const QString &name, const SrdoTables::Mapped &mapped, bool isStatic) const;
    QString placeOf(const SrdoTables::Mapped &mapped) const;

    SrdoTables &tables_;
    QSet<QString> projectNames_;
    const LineDictionary *line_ = nullptr;
    QHash<QString, SrdoTables::Variable> declared_;
    QHash<QString, QString> shadows_; ///< by what they are copies of
    QSet<QString> shadowNames_;
    QSet<quint32> static_; ///< line, index and subindex
};

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

void Collector::nameVariable(SrdoTables::Mapped &mapped, const StoreRecords::SubIndexData &sub)
{
    const QString own =
        sub.implementation == CANopen::Implementation::Variable
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

void Collector::collectStatic(const LineDictionary &line)
{
    for (const LineObject &mapping : line.range(CANopen::Index::staticSrdoMappings)) {
        for (const Entry &entrySub : mapping.subs) {
            const quint32 entry = entrySub.subindex == 0 ? 0 : defaultNumber(&entrySub);
            SrdoTables::Mapped mapped{.line = line.number,
                                      .index = static_cast<quint16>(entry >> 16),
                                      .subindex = static_cast<quint8>(entry >> 8)};
            const Entry *sub = line.entry(mapped.index, mapped.subindex);
            if (mapped.index < firstObject || static_.contains(keyOf(mapped)) || !sub)
                continue;
            const auto kind = kindOf(sub->data.datatype);
            if (!kind)
                continue;
            static_.insert(keyOf(mapped));
            mapped.kind = *kind;
            nameVariable(mapped, sub->data);
            tables_.entries.append(mapped);
        }
    }
}

SrdoTables::Mapped Collector::mappedOf(quint32 entry, bool exchanged)
{
    const quint32 bits = entry & 0xFF;
    SrdoTables::Mapped mapped{.line = line_->number,
                              .index = static_cast<quint16>(entry >> 16),
                              .subindex = static_cast<quint8>(entry >> 8),
                              .bytes = bits / SrdoTables::bitsPerByte};
    mapped.isDummy = mapped.index < firstObject;
    mapped.isSupported = bits > 0 && bits % SrdoTables::bitsPerByte == 0;
    if (mapped.isDummy)
        return mapped;
    const Entry *sub = line_->entry(mapped.index, mapped.subindex);
    const auto kind = sub ? kindOf(sub->data.datatype) : std::nullopt;
    if (!kind || kind->bytes * SrdoTables::bitsPerByte != bits || bits > maxMappedBits) {
        mapped.isSupported = false;
        return mapped;
    }
    mapped.kind = *kind;
    nameVariable(mapped, sub->data);
    if (exchanged && mapped.isSupported)
        nameShadow(mapped);
    return mapped;
}

void Collector::collectSrdo(const LineObject &object, const LineObject *mapping)
{
    constexpr quint8 directionSub = 1;
    constexpr quint8 refreshSub = 2;
    constexpr quint8 validationSub = 3;
    constexpr quint8 normalSub = 5;
    constexpr quint8 invertedSub = 6;
    constexpr quint32 transmits = 1;
    constexpr quint32 receives = 2;

    const quint32 direction = defaultNumber(object.sub(directionSub));
    SrdoTables::Srdo srdo{.line = object.line,
                          .number = static_cast<quint16>(object.index - CANopen::Index::srdos.first + 1),
                          .isTransmit = direction == transmits,
                          .isReceive = direction == receives,
                          .mapping = mappingOf(mapping),
                          .direction = number(object, directionSub, 2),
                          .refreshTime = number(object, refreshSub, 4),
                          .validationTime = number(object, validationSub, 2)};
    const QString suffix = tables_.multiLine ? u"_l%1"_s.arg(object.line) : QString();
    srdo.name = u"srdo%1%2"_s.arg(dec(srdo.number), suffix);
    if (!srdo.mapping.isEmpty())
        srdo.mapTable = u"mapTable%1%2"_s.arg(dec(srdo.number), suffix);
    srdo.normalCobId = cobId(object, normalSub, u"0xfful + (ownNodeId * 2ul)"_s);
    srdo.invertedCobId = cobId(object, invertedSub, u"0x100ul + (ownNodeId * 2ul)"_s);
    const bool exchanged = srdo.isTransmit || srdo.isReceive;
    for (qsizetype i = 0; i < srdo.mapping.size(); ++i)
        (i % 2 == 0 ? srdo.normal : srdo.inverted).append(mappedOf(srdo.mapping.at(i), exchanged));
    tables_.srdos.append(srdo);
}

void Collector::collectSrdos(const LineDictionary &line)
{
    line_ = &line;
    for (const LineObject &object : line.range(CANopen::Index::deviceSrdos))
        collectSrdo(object, line.object(object.index + mappingOffset));
}

} // namespace

quint16 SrdoTables::Srdo::index() const
{
    return static_cast<quint16>(CANopen::Index::srdos.first + number - 1);
}

const QList<SrdoTables::TypeKind> &SrdoTables::typeKinds()
{
    return kinds();
}

SrdoTables SrdoTables::collect(ObjectDataBase &store, bool multiLine, bool staticData)
{
    std::vector<LineDictionary> lines;
    for (const quint8 line : LineSettings::partakingLines(store))
        lines.emplace_back(store, line);
    SrdoTables tables{.multiLine = multiLine, .lineCount = static_cast<qsizetype>(lines.size())};
    Collector collector(namesOfProject(store, lines), tables);
    for (const LineDictionary &line : lines) {
        if (!RunContext::protocolsOf(store, line.number).canOpen)
            continue;
        if (staticData)
            collector.collectStatic(line);
        collector.collectSrdos(line);
    }
    return tables;
}
