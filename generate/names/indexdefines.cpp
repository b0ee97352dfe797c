#include "generate/names/indexdefines.h"

#include "generate/base/codewriter.h"
#include "generate/model/linedictionary.h"
#include "generate/model/linemessages.h"
#include "nodedict/codes.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"

#include <QHash>
#include <QRegularExpression>
#include <QStringBuilder>
#include <QThread>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

/// An identifier made of a text: upper case, "_" for all that C does not allow and never two of them in a row, none at
/// either end.
QString identifier(QLatin1StringView prefix, const QString &text)
{
    // The upper case of letters beyond ASCII may be one of its letters.
    const bool isAscii = std::ranges::all_of(text, [](QChar letter) { return letter < u'\x80'; });
    QString name = prefix % (isAscii ? text : text.toUpper());
    QChar *end = name.data(); // what is left of the text goes to the place of what was there
    for (const QChar letter : std::as_const(name)) {
        const QChar upper = letter >= u'a' && letter <= u'z' ? QChar(letter.unicode() - u'a' + u'A') : letter;
        const bool allowed = (upper >= u'A' && upper <= u'Z') || (upper >= u'0' && upper <= u'9');
        if (allowed || end == name.constData() || end[-1] != u'_')
            *end++ = allowed ? upper : QChar(u'_');
    }
    name.truncate(end - name.constData());
    if (name.startsWith(u'_'))
        name.remove(0, 1);
    if (name.endsWith(u'_'))
        name.chop(1);
    return name;
}

// Unsigned constants. Both are as short as they can be: a subindex 0 named like the entry that closes the list repeats
// that definition, and C allows this for equal texts only.
QString decimal(quint64 value)
{
    return dec(value).view() % u'u';
}
QString hexadecimal(quint64 value)
{
    return Code::hex0x(value).view() % u'u';
}

/// The same of a subindex. Whoever keeps many of them keeps each once.
const QString &subindexText(quint8 subindex)
{
    static const std::array<QString, 256> texts = [] {
        std::array<QString, 256> all;
        for (quint64 i = 0; i < all.size(); ++i)
            all[i] = hexadecimal(i);
        return all;
    }();
    return texts[subindex];
}

/// The name that a user gave an item by an attribute; empty if there is none.
QString customName(const StoreRecords::Metadata &metadata, const QString &attribute)
{
    return metadata.value(attribute).toUpper().replace(u' ', u'_');
}

/// The names that are taken: by the line under way, without its prefix, and what each name of the file stands for.
class Names
{
public:
    void startLine(const QString &prefix)
    {
        prefix_ = prefix;
        ++line_;
    }

    /// Makes room for so many more names.
    void reserve(qsizetype count) { names_.reserve(names_.size() + count); }

    /// The name, with the next count behind it where it is taken.
    QString counted(const QString &name, const QString &value)
    {
        QString candidate = name;
        while (!takeFree(candidate, value))
            candidate = name + QString::number(nextCount(name));
        return candidate;
    }

    /// The name, with the first of the ends behind it that makes it free. They are asked for where it is taken.
    QString tagged(const QString &name, const QString &value, const std::function<QStringList()> &ends)
    {
        if (takeFree(name, value))
            return name;
        QString candidate = name;
        for (const QString &end : ends()) {
            if (takeFree(candidate, value))
                return candidate;
            candidate = name + end;
        }
        return counted(candidate, value);
    }

    /// For a name that has no other form: true if it may stand for the value, which it does from then on.
    bool takeFixed(const QString &name, const QString &value)
    {
        Name &known = names_[keyOf(name)];
        if (!known.value.isNull() && known.value != value)
            return false;
        take(known, value);
        return true;
    }

private:
    struct Name
    {
        QString value; ///< null until it stands for one
        int line = 0;  ///< the last that has taken it, by the order of the lines; 0 for none
        int count = 0; ///< how often that line has taken it again
    };

    QByteArray keyOf(const QString &name) const { return (prefix_ + name).toUtf8(); }

    /// Takes the name unless the line has taken it or it stands for another value.
    bool takeFree(const QString &name, const QString &value)
    {
        Name &known = names_[keyOf(name)];
        if (known.line == line_ || (!known.value.isNull() && known.value != value))
            return false;
        take(known, value);
        return true;
    }

    void take(Name &known, const QString &value)
    {
        if (known.line != line_)
            known.count = 0;
        known.line = line_;
        known.value = value;
    }

    /// Of a name that could not be taken.
    int nextCount(const QString &name)
    {
        Name &known = names_[keyOf(name)];
        take(known, known.value);
        return ++known.count;
    }

    QString prefix_;
    int line_ = 0;
    QHash<QByteArray, Name> names_{{numberOfEntriesName, {.value = QString::fromLatin1(numberOfEntriesValue)}}};
};

/// The parts of a NAME (SAE J1939-81) and the SPNs that they have in the address claim.
struct NamePart
{
    QLatin1StringView name;
    quint32 spn;
};

constexpr std::array addressClaimParts{
    NamePart{"SPN_NAME_OF_CONTROLLER_APPLICATION"_L1, 2848},
    NamePart{"SPN_IDENTITY_NUMBER"_L1, 2837},
    NamePart{"SPN_MANUFACTURER_CODE"_L1, 2838},
    NamePart{"SPN_ECU_INSTANCE"_L1, 2840},
    NamePart{"SPN_FUNCTION_INSTANCE"_L1, 2839},
    NamePart{"SPN_FUNCTION"_L1, 2841},
    NamePart{"SPN_VEHICLE_SYSTEM"_L1, 2842},
    NamePart{"SPN_VEHICLE_SYSTEM_INSTANCE"_L1, 2843},
    NamePart{"SPN_INDUSTRY_GROUP"_L1, 2846},
    NamePart{"SPN_ARBITRARY_ADDRESS_CAPABLE"_L1, 2844},
};

/// Communication objects of one kind of PDO (CiA 301); the first belongs to PDO 1.
struct PdoRange
{
    QLatin1StringView kind;
    CANopen::IndexRange indices;
};

constexpr std::array pdoRanges{PdoRange{"RPDO"_L1, CANopen::Index::rpdos}, PdoRange{"TPDO"_L1, CANopen::Index::tpdos}};

class LineCollector
{
public:
    using Block = QList<IndexDefine>;
    using Take = std::function<void(const IndexDefines &)>;

    LineCollector(ObjectDataBase &store, Names &names, quint8 line, const QString &prefix, const Take &take)
        : store_(store)
        , names_(names)
        , line_(line)
        , prefix_(prefix)
        , take_(take)
    {
        names_.startLine(prefix);
    }

    void collectObjects(const std::function<bool()> &cancelled);
    void collectCanIds();
    void collectPgns();
    void collectAddressClaim();

private:
    void add(Block block);
    void reserve(const QList<LineMessage> &messages);
    Block objectBlock(const LineObject &object);
    void addShortPdoName(Block &block, quint16 index);

    ObjectDataBase &store_;
    Names &names_;
    quint8 line_;
    QString prefix_;
    const Take &take_;
};

void LineCollector::add(Block block)
{
    take_({.prefix = prefix_, .defines = std::move(block)});
    QThread::yieldCurrentThread();
}

/// Makes room for the names of messages and their signals.
void LineCollector::reserve(const QList<LineMessage> &messages)
{
    qsizetype count = 0;
    for (const LineMessage &message : messages)
        count += 1 + message.items.size();
    names_.reserve(count);
}

void LineCollector::collectObjects(const std::function<bool()> &cancelled)
{
    const LineDictionary dictionary(store_, line_);
    qsizetype count = 0;
    for (const LineObject &object : dictionary.objects)
        count += 1 + std::ssize(object.subs);
    names_.reserve(count);
    for (const LineObject &object : dictionary.objects) {
        if (cancelled())
            return;
        add(objectBlock(object));
    }
}

LineCollector::Block LineCollector::objectBlock(const LineObject &object)
{
    const auto nameOf = [&](QLatin1StringView prefix, const QString &text, quint8 subindex) {
        return identifier(prefix, Helper::substituteVariables(text, object.index, subindex, line_));
    };

    QString name = customName(object.data.metadata, u"objectdefine"_s);
    if (name.isEmpty())
        name = nameOf("I_"_L1, object.data.name.isEmpty() ? u"unnamed object"_s : object.data.name, 0);
    const QString value = hexadecimal(object.index);
    Block block;
    block.reserve(2 + std::ssize(object.subs));
    block.append({.name = names_.counted(name, value), .value = value});
    addShortPdoName(block, object.index);

    for (const StoreRecords::SubEntry &sub : object.subs) {
        QString subName = customName(sub.data.metadata, u"subdefine"_s);
        if (subName.isEmpty())
            subName = nameOf("S_"_L1, sub.data.name, sub.subindex);
        const QString &subValue = subindexText(sub.subindex);
        block.append({.name = names_.counted(subName, subValue), .value = subValue, .ofSubindex = true});
    }
    return block;
}

void LineCollector::addShortPdoName(Block &block, quint16 index)
{
    static const QRegularExpression linePrefix(u"^L[0-9]+_"_s);
    static const QRegularExpression pdoOfNode(u"^I_([RT]PDO)_COMM_PAR_([0-9]+)_FOR_NODE_([0-9]+)_([A-Za-z0-9_]+)$"_s);
    const auto range =
        std::ranges::find_if(pdoRanges, [index](const PdoRange &each) { return each.indices.contains(index); });
    if (range == pdoRanges.end())
        return;
    const auto match = pdoOfNode.match(QString(block.first().name).remove(linePrefix));
    if (!match.hasMatch() || match.captured(1) != range->kind)
        return;
    const QString name =
        u"%1_%2_%3_%4"_s.arg(match.captured(1), match.captured(3), match.captured(4), match.captured(2));
    const QString value = decimal(quint64{index} - range->indices.first + 1);
    if (names_.takeFixed(name, value))
        block.append({.name = name, .value = value});
}

void LineCollector::collectCanIds()
{
    QHash<quint8, quint32> positions;
    const QList<LineMessage> messages = LineMessages::canIds(store_, line_);
    reserve(messages);
    for (const LineMessage &canId : messages) {
        const QString value = decimal(++positions[canId.head.direction]);
        const QString fixedName = "ID_"_L1 % hex(canId.head.number, 4).view();
        const auto ends = [&fixedName] { return QStringList{fixedName.sliced(2)}; };
        Block block;
        block.reserve(2 + canId.items.size());
        block.append({.name = names_.tagged(identifier("ID_"_L1, canId.head.name), value, ends), .value = value});
        if (names_.takeFixed(fixedName, value))
            block.append({.name = fixedName, .value = value});
        for (const StoreRecords::DataElement &element : canId.items) {
            const QString elementValue = decimal(quint64{element.spnnumber} + 1);
            block.append(
                {.name = names_.tagged(identifier("S_"_L1, element.name), elementValue, ends), .value = elementValue});
        }
        add(std::move(block));
    }
}

void LineCollector::collectPgns()
{
    const QList<LineMessage> messages = LineMessages::parameterGroups(store_, line_);
    reserve(messages);
    for (const LineMessage &pgn : messages) {
        const QString value = decimal(pgn.head.number);
        const Digits number = hex(pgn.head.number, 4);
        Block block;
        block.reserve(1 + pgn.items.size());
        block.append({.name = names_.counted(identifier("PGN_"_L1, pgn.head.name), value),
                      .value = value,
                      .comment = " /* 0x"_L1 % number.view() % " */"_L1});
        for (const StoreRecords::SPN &spn : pgn.items) {
            const QString spnValue = decimal(spn.spnnumber);
            const auto ends = [&] {
                const QString end = u'_' % number.view();
                return QStringList{end, end % u'_' % dec(spn.spnnumber).view()};
            };
            block.append({.name = names_.tagged(identifier("SPN_"_L1, spn.name), spnValue, ends), .value = spnValue});
        }
        add(std::move(block));
    }
}

void LineCollector::collectAddressClaim()
{
    const QString end = u"_%1"_s.arg(hex(J1939::addressClaim));
    const auto define = [&](const QString &name, quint32 number, const QString &comment) {
        const QString value = decimal(number);
        return IndexDefine{.name = names_.takeFixed(name, value)
                                       ? name
                                       : names_.tagged(name, value, [&end] { return QStringList{end}; }),
                           .value = value,
                           .comment = comment};
    };
    Block block{define(u"PGN_ADDRESS_CLAIM"_s, J1939::addressClaim, u" /* 0x%1 */"_s.arg(hex(J1939::addressClaim, 4)))};
    for (const NamePart &part : addressClaimParts)
        block.append(define(part.name, part.spn, {}));
    add(std::move(block));
}

/// A line whose protocol is J1939, or CANopen and J1939, claims an address by itself; a raw CAN line beside J1939 is
/// left to the application.
bool claimsAddress(ObjectDataBase &store, quint8 line)
{
    const LineProtocols protocols = LineProtocols::ofLine(store, line);
    return protocols.j1939 && !protocols.rawCan &&
           !store.pgnExists(line, J1939::addressClaim, ObjectDataBase::transmit);
}

} // namespace

void collectIndexDefines(ObjectDataBase &store, const QList<quint8> &lines, bool withPrefix,
                         const std::function<bool()> &cancelled, const std::function<void(const IndexDefines &)> &take)
{
    Names names;
    for (const quint8 line : lines) {
        LineCollector collector(store, names, line, withPrefix ? u"L%1_"_s.arg(line) : QString(), take);
        collector.collectObjects(cancelled);
        collector.collectCanIds();
        collector.collectPgns();
        if (claimsAddress(store, line))
            collector.collectAddressClaim();
    }
}
