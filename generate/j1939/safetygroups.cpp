#include "generate/j1939/safetygroups.h"

#include "generate/dialect.h"
#include "generate/j1939/linemessages.h"
#include "generate/runcontext.h"
#include "generate/stack/linesettings.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

/// What the stack calls the stored safety types. A group without an assigned type, or with one that is not known, is
/// of type 0, which has no safety code. Only type 2 follows the profile for functional safety.
struct SafetyType
{
    quint8 stored;
    QLatin1StringView type;
    QLatin1StringView profile;
};

constexpr SafetyType plainType{0, "SDG_TYPE_0"_L1, "0u"_L1};
constexpr std::array safetyTypes{
    SafetyType{1, "SDG_TYPE_1"_L1, "0u"_L1},
    SafetyType{2, "SDG_TYPE_2"_L1, "SDG_FUSA_PROFILE_1"_L1},
};

SafetyType safetyType(quint8 stored)
{
    const auto row = std::ranges::find(safetyTypes, stored, &SafetyType::stored);
    return row == safetyTypes.end() ? plainType : *row;
}

/// The width of the types that safety data may have, numbers without sign; 0 for all others.
quint32 safetyBits(quint32 dataType)
{
    const COHelper::Limits limits = COHelper::getDefaultLimits(dataType);
    return limits.low == "0"_L1 ? COHelper::getDataLengthBits(dataType) : 0;
}

SafetyGroups::Group groupOf(const LineMessage &message, bool isClassical)
{
    constexpr int dataPageBit = 16;
    constexpr quint32 dataPageMask = 3;
    const StoreRecords::PGN &head = message.head;
    const SafetyType type = safetyType(head.safetytype);
    SafetyGroups::Group group{.pgn = head.number | (head.edp_dp_key & dataPageMask) << dataPageBit,
                              .cycleMs = head.cycletime_ms,
                              .validationMs = head.srvt_ms,
                              .type = type.type,
                              .profile = type.profile,
                              .frame = {.isClassical = isClassical}};
    for (const StoreRecords::SPN &signal : message.items) {
        const QString variable = LineMessages::variable(signal);
        group.frame.items.append(
            {.variable = variable, .bits = safetyBits(signal.datatype), .position = signal.bitposition});
        if (!variable.isEmpty())
            group.variables.append({.name = variable, .cType = SignalType::cType(signal.datatype)});
    }
    return group;
}

QList<SafetyGroups::Group> groupsOf(ObjectDataBase &store, quint8 line, quint8 direction, bool isClassical)
{
    QList<SafetyGroups::Group> groups;
    for (const LineMessage &message :
         LineMessages::parameterGroups(store, line, direction, LineMessages::Groups::Safety))
        groups.append(groupOf(message, isClassical));
    return groups;
}

} // namespace

bool SafetyGroups::keepsSendersApart(ObjectDataBase &store, const Dialect &dialect)
{
    return dialect.has(Point::SafetySenders) && LineSettings::number(store.getJ1939Setting(u"sdm_rec_addr_cnt"_s)) > 1;
}

SafetyGroups SafetyGroups::collect(ObjectDataBase &store, const Dialect &dialect, bool multiLine)
{
    using LineSettings::number;
    const bool isClassical = number(store, u"canfd_supported"_s) == 0;
    SafetyGroups result{.multiLine = multiLine,
                        .sendersApart = keepsSendersApart(store, dialect),
                        .loopCounter = number(store.getJ1939Setting(u"sdm_loop_counter"_s))};
    for (const quint8 line : LineSettings::stackLines(store)) {
        Line groups{.number = line};
        if (RunContext::protocolsOf(store, line).j1939) {
            store.cacheSPNs(line);
            groups.received = groupsOf(store, line, ObjectDataBase::receive, isClassical);
            groups.transmitted = groupsOf(store, line, ObjectDataBase::transmit, isClassical);
            store.clearSPNCache();
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
