#include "generate/j1939/externdecl.h"

#include "generate/base/codewriter.h"
#include "generate/base/runcontext.h"
#include "generate/j1939/safetygroups.h"
#include "generate/model/linemessages.h"
#include "generate/model/linesettings.h"
#include "store/objectdatabase.h"
#include "store/settings.h"
#include "texttools/asciitext.h"
#include "texttools/numbertext.h"

#include <QHash>
#include <QRegularExpression>
#include <QStringList>
#include <QVarLengthArray>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

using Variable = ExternDeclarations::Variable;
using Dimension = ExternDeclarations::Dimension;

/// A step from a variable into it: a member, or an element.
struct Step
{
    bool isElement = false;
    QStringView text = {};
};

/// Of a name, whose parts these are.
struct Path
{
    QStringView root = {};
    QVarLengthArray<Step, 4> steps = {};
};

/// Takes what all matches off the front of a text.
template <typename Matches>
QStringView taken(QStringView &text, Matches matches)
{
    const auto end = std::find_if_not(text.begin(), text.end(), matches);
    const QStringView front = text.first(end - text.begin());
    text = text.sliced(front.size());
    return front;
}

bool isBlank(QChar c)
{
    return c == u' ' || (c >= u'\t' && c <= u'\r');
}

/// Takes a step off the front of a text; nothing for what is none.
std::optional<Step> takenStep(QStringView &text)
{
    const bool isElement = text.startsWith(u'[');
    if (!isElement && !text.startsWith(u'.'))
        return {};
    text = text.sliced(1);
    if (!isElement) {
        taken(text, isBlank);
        const QStringView member = taken(text, AsciiText::isWordCharacter);
        return AsciiText::isIdentifier(member) ? std::optional(Step{.text = member}) : std::nullopt;
    }
    const QStringView index = taken(text, [](QChar c) { return c != u'[' && c != u']' && c != u'(' && c != u')'; });
    if (index.isEmpty() || !text.startsWith(u']'))
        return {};
    text = text.sliced(1);
    return Step{.isElement = true, .text = index.trimmed()};
}

/// The parts of a name such as "a.b[2]"; nothing for any other expression.
std::optional<Path> pathOf(QStringView name)
{
    Path path{.root = taken(name, AsciiText::isWordCharacter)};
    if (!AsciiText::isIdentifier(path.root))
        return {};
    while (!name.isEmpty()) {
        taken(name, isBlank);
        const std::optional<Step> step = takenStep(name);
        if (!step)
            return {};
        path.steps.append(*step);
    }
    return path;
}

/// The dimension of that depth, made where it is missing.
Dimension &dimensionOf(Variable &variable, qsizetype depth)
{
    while (variable.dimensions.size() <= depth)
        variable.dimensions.append(Dimension());
    return variable.dimensions[depth];
}

/// Makes room for an element; the index may be a macro.
void addElement(Dimension &dimension, QStringView index)
{
    if (const std::optional<quint32> number = NumberText::byPrefix(index))
        dimension.count = std::max(dimension.count, quint64{*number} + 1);
    else
        dimension.indices.append(index.toString());
}

class DeclarationCollector
{
public:
    DeclarationCollector(ObjectDataBase &store, const Dialect &dialect)
        : store_(store)
        , sendersApart_(SafetyGroups::keepsSendersApart(store, dialect))
    {
    }

    ExternDeclarations collect();

private:
    void addMessages(const QList<LineMessage> &messages);
    void addMessage(const LineMessage &message);
    void addSignal(const LineMessage &message, const StoreRecords::SPN &signal);
    void addOwnDimension(Variable &variable, qsizetype depth, const LineMessage &message,
                         const StoreRecords::SPN &signal) const;

    ObjectDataBase &store_;
    bool safety_ = false; ///< of the line, as its groups have it
    bool sendersApart_;   ///< a received safety data group is kept once for each sender
    ExternDeclarations result_;
    QHash<QString, qsizetype> positions_; ///< of the variables, by name
};

/// The member of that name, made where it is missing.
Variable &memberOf(Variable &variable, QStringView name)
{
    const auto it = std::ranges::find(variable.members, name, &Variable::name);
    if (it != variable.members.end())
        return *it;
    variable.members.append(Variable{.name = name.toString()});
    return variable.members.last();
}

/// What the signal's data are an array of, behind the elements that its name leads to.
void DeclarationCollector::addOwnDimension(Variable &variable, qsizetype depth, const LineMessage &message,
                                           const StoreRecords::SPN &signal) const
{
    if (SignalType::isArray(signal.datatype)) {
        constexpr quint32 bitsPerByte = 8;
        Dimension &bytes = dimensionOf(variable, depth);
        bytes.count = std::max<quint64>(bytes.count, (signal.bitsize + bitsPerByte - 1) / bitsPerByte);
    } else if (safety_ && sendersApart_ && message.head.issafe && !message.isTransmitted()) {
        dimensionOf(variable, depth).senders = u"J1939_SDG_REC_ADDR_CNT"_s;
    }
}

void DeclarationCollector::addSignal(const LineMessage &message, const StoreRecords::SPN &signal)
{
    const QString name = LineMessages::variable(signal);
    const auto path = pathOf(name);
    if (!path)
        return;
    const QString root = path->root.toString();
    auto position = positions_.constFind(root);
    if (position == positions_.constEnd()) {
        position = positions_.insert(root, result_.variables.size());
        result_.lines.last().messages.last().variables.append(result_.variables.size());
        result_.variables.append(Variable{.name = root, .signal = signal.spnnumber});
    }
    Variable *variable = &result_.variables[*position];
    qsizetype depth = 0;
    for (const Step &step : path->steps) {
        if (step.isElement) {
            addElement(dimensionOf(*variable, depth++), step.text);
        } else {
            variable = &memberOf(*variable, step.text);
            depth = 0;
        }
    }
    if (!variable->members.isEmpty())
        return;
    if (variable->type.isEmpty())
        variable->type = SignalType::cType(signal.datatype);
    addOwnDimension(*variable, depth, message, signal);
}

void DeclarationCollector::addMessage(const LineMessage &message)
{
    result_.lines.last().messages.append(
        ExternDeclarations::Message{.number = message.head.number, .isCanId = message.isCanId});
    for (const StoreRecords::SPN &signal : message.items)
        addSignal(message, signal);
}

void DeclarationCollector::addMessages(const QList<LineMessage> &messages)
{
    for (const quint8 direction : {StoreRecords::receive, StoreRecords::transmit}) {
        for (const LineMessage &message : LineMessages::ofStack(messages, direction))
            addMessage(message);
    }
}

ExternDeclarations DeclarationCollector::collect()
{
    const Settings j1939(store_, Settings::Table::J1939);
    for (const quint8 line : LineSettings::stackLines(store_)) {
        result_.lines.append(ExternDeclarations::Line{.number = line});
        const LineProtocols protocols = RunContext::protocolsOf(store_, line);
        safety_ = j1939.isOn(u"safetysupport"_s, line);
        if (protocols.j1939)
            addMessages(LineMessages::parameterGroups(store_, line));
        if (protocols.rawCan)
            addMessages(LineMessages::canIds(store_, line));
    }
    return result_;
}

/// The largest of some expressions, as a constant expression of C.
QString largestOf(const QStringList &expressions)
{
    if (expressions.size() == 1)
        return expressions.first();
    const qsizetype half = expressions.size() / 2;
    return u"(%1 > %2 ? %1 : %2)"_s.arg(largestOf(expressions.first(half)), largestOf(expressions.sliced(half)));
}

/// The size of a dimension that is not open.
QString sizeOf(const Dimension &dimension)
{
    static const QRegularExpression word(u"^\\w+$"_s);
    QStringList indices = dimension.indices;
    indices.removeDuplicates();
    if (indices.isEmpty() && (dimension.senders.isEmpty() || dimension.count == 0))
        return dimension.senders.isEmpty() ? dec(dimension.count) : dimension.senders;
    if (!dimension.senders.isEmpty())
        indices.append(dimension.senders + u" - 1"_s);
    if (indices.size() == 1 && dimension.count == 0 && word.match(indices.first()).hasMatch())
        return indices.first() + u" + 1"_s;
    QStringList expressions;
    for (const QString &index : indices)
        expressions.append(u"(%1)"_s.arg(index));
    if (dimension.count > 0)
        expressions.append(dec(dimension.count - 1));
    return largestOf(expressions) + u" + 1"_s;
}

bool isOpen(const Dimension &dimension)
{
    return dimension.count == 0 && dimension.indices.isEmpty() && dimension.senders.isEmpty();
}

/// The brackets behind a variable's name. An open dimension is defined with room for the data of one frame, and so it
/// is declared where C needs a size.
QString arrayPart(const Variable &variable, DeclarationForm form)
{
    QString brackets;
    for (const Dimension &dimension : variable.dimensions) {
        const bool needsSize = form == DeclarationForm::Definition || !brackets.isEmpty();
        const QString open = needsSize ? u"8"_s : QString();
        brackets += u"[%1]"_s.arg(isOpen(dimension) ? open : sizeOf(dimension));
    }
    return brackets;
}

void writeMembers(CodeWriter &out, const Variable &variable, const QString &indent)
{
    for (const Variable &member : variable.members) {
        // Within a structure an array has a size in either form.
        const QString array = arrayPart(member, DeclarationForm::Definition);
        if (member.members.isEmpty()) {
            out(u"${INDENT}${TYPE}\t${NAME}${ARRAY};",
                {{"INDENT", indent}, {"TYPE", member.type}, {"NAME", member.name}, {"ARRAY", array}});
            continue;
        }
        out(u"${INDENT}struct {", {{"INDENT", indent}});
        writeMembers(out, member, indent + u'\t');
        out(u"${INDENT}}\t${NAME}${ARRAY};", {{"INDENT", indent}, {"NAME", member.name}, {"ARRAY", array}});
    }
}

void writeVariable(CodeWriter &out, const Variable &variable, DeclarationForm form)
{
    const QString storage = form == DeclarationForm::Declaration ? u"extern "_s : QString();
    QString type = variable.type;
    if (!variable.members.isEmpty()) {
        type = u"struct %1_s"_s.arg(variable.name);
        out(u"${TYPE} {", {{"TYPE", type}});
        writeMembers(out, variable, u"\t"_s);
        out(u"};");
    }
    out(u"${STORAGE}${TYPE}\t${NAME}${ARRAY};\t/* SPN${SIGNAL} */", {{"STORAGE", storage},
                                                                     {"TYPE", type},
                                                                     {"NAME", variable.name},
                                                                     {"ARRAY", arrayPart(variable, form)},
                                                                     {"SIGNAL", dec(variable.signal)}});
}

} // namespace

ExternDeclarations ExternDeclarations::collect(ObjectDataBase &store, const Dialect &dialect)
{
    return DeclarationCollector(store, dialect).collect();
}

void writeVariables(CodeWriter &out, const ExternDeclarations &declarations, DeclarationForm form)
{
    for (const ExternDeclarations::Line &line : declarations.lines) {
        out(uR"(

            /* line ${NUMBER}${NOTE}*/
            )",
            {{"NUMBER", dec(line.number)},
             {"NOTE",
              line.number == 0 ? QString() : u": (variables that exist in multiple lines are only declared once)"_s}});
        for (const ExternDeclarations::Message &message : line.messages) {
            out(u"/* ${KIND} 0x${NUMBER}*/",
                {{"KIND", message.isCanId ? u"CAN-ID"_s : u"PGN"_s}, {"NUMBER", hex(message.number)}});
            for (const qsizetype position : message.variables)
                writeVariable(out, declarations.variables.at(position), form);
        }
    }
}
