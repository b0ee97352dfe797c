#include "generate/j1939/safetygroups.h"

#include "check/line/safetytypes.h"
#include "generate/base/dialect.h"
#include "generate/base/runcontext.h"
#include "generate/model/linemessages.h"
#include "generate/model/linesettings.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What the stack calls the safety types of the project. The first is a safety data message behind its header; those of
/// CAN FD follow the profile for functional safety. A group without a type that is known counts as the first.
struct GroupTypeWord
{
    quint8 type;
    QLatin1StringView word;
    QLatin1StringView profile;
};

constexpr std::array groupTypeWords{
    GroupTypeWord{1, "SDG_TYPE_0"_L1, "0u"_L1},
    GroupTypeWord{2, "SDG_TYPE_1"_L1, "SDG_FUSA_PROFILE_1"_L1},
    GroupTypeWord{3, "SDG_TYPE_2"_L1, "SDG_FUSA_PROFILE_1"_L1},
};

GroupTypeWord typeWord(quint8 type)
{
    const auto row = std::ranges::find(groupTypeWords, type, &GroupTypeWord::type);
    return row == groupTypeWords.end() ? groupTypeWords.front() : *row;
}

/// Names that mean something else where the statements with the variables stand: the parameters and results of the
/// functions around them (docs/templates.md).
constexpr std::array namesOfModule{"pData"_L1,   "pBuffer"_L1, "sdgNr"_L1, "canLine"_L1,
                                   "addrIdx"_L1, "retVal"_L1,  "pgLen"_L1};

/// The variables of the application that safety data stand in, by name. One that is told again is the same variable
/// only if it has the same form.
class KnownVariables
{
public:
    /// False for a signal whose variable would be something else than the signal takes it for.
    bool take(const QString &variable, const QString &cType, bool perSender)
    {
        static const QRegularExpression name(u"[A-Za-z_][A-Za-z0-9_]*"_s);
        const QString root = name.match(variable).captured();
        if (variable.isEmpty() || std::ranges::find(namesOfModule, root) != namesOfModule.end())
            return false;
        const auto known = forms_.constFind(variable);
        if (known != forms_.constEnd())
            return *known == std::pair(cType, perSender);
        forms_.insert(variable, {cType, perSender});
        return true;
    }

private:
    QHash<QString, std::pair<QString, bool>> forms_; ///< type, and whether it exists once for each sender
};

SafetyGroups::Group groupOf(const LineMessage &message, bool canFd, bool perSender, KnownVariables &known)
{
    constexpr int dataPageBit = 16;
    constexpr quint32 dataPageMask = 3;
    const StoreRecords::PGN &head = message.head;
    const GroupTypeWord word = typeWord(head.safetytype);
    const SafetyType *type = safetyType(head.safetytype);
    SafetyGroups::Group group{.pgn = head.number | (head.edp_dp_key & dataPageMask) << dataPageBit,
                              .cycleMs = head.cycletime_ms,
                              .validationMs = head.srvt_ms,
                              .type = word.word,
                              .profile = word.profile,
                              .frame = {.isClassical = !canFd || (type && type->isSDM)}};
    for (const StoreRecords::SPN &signal : message.items) {
        QString variable = LineMessages::variable(signal);
        const QString cType = SignalType::cType(signal.datatype);
        if (known.take(variable, cType, perSender))
            group.variables.append({.name = variable, .cType = cType});
        else
            variable.clear();
        const quint32 bits = isSafetyDataType(signal.datatype) ? COHelper::getDataLengthBits(signal.datatype) : 0;
        group.frame.items.append({.variable = variable, .bits = bits, .position = signal.bitposition});
    }
    return group;
}

QList<SafetyGroups::Group> groupsOf(const QList<LineMessage> &messages, quint8 direction, bool canFd, bool perSender,
                                    KnownVariables &known)
{
    QList<SafetyGroups::Group> groups;
    for (const LineMessage &message : LineMessages::ofStack(messages, direction, LineMessages::Groups::Safety))
        groups.append(groupOf(message, canFd, perSender, known));
    return groups;
}

} // namespace

bool SafetyGroups::keepsSendersApart(ObjectDataBase &store, const Dialect &dialect)
{
    return dialect.has(Point::SafetySenders) &&
           Settings(store, Settings::Table::J1939).number(u"sdm_rec_addr_cnt"_s) > 1;
}

SafetyGroups SafetyGroups::collect(ObjectDataBase &store, const Dialect &dialect, bool multiLine)
{
    const Settings j1939(store, Settings::Table::J1939);
    const bool canFd = Settings(store).isOn(u"canfd_supported"_s);
    SafetyGroups result{.multiLine = multiLine,
                        .sendersApart = keepsSendersApart(store, dialect),
                        .loopCounter = j1939.number(u"sdm_loop_counter"_s)};
    KnownVariables known;
    for (const quint8 line : LineSettings::partakingLines(store)) {
        Line groups{.number = line};
        if (RunContext::protocolsOf(store, line).j1939 && j1939.isOn(u"safetysupport"_s, line)) {
            const QList<LineMessage> messages = LineMessages::parameterGroups(store, line);
            groups.received = groupsOf(messages, StoreRecords::receive, canFd, result.sendersApart, known);
            groups.transmitted = groupsOf(messages, StoreRecords::transmit, canFd, false, known);
        }
        result.lines.append(groups);
    }
    return result;
}

qsizetype SafetyGroups::receivedCount() const
{
    qsizetype count = 0;
    for (const Line &line : lines)
        count += line.received.size();
    return count;
}

qsizetype SafetyGroups::transmittedCount() const
{
    qsizetype count = 0;
    for (const Line &line : lines)
        count += line.transmitted.size();
    return count;
}
