#include "mcp/tools/guards.h"

#include "generate/base/runcontext.h"
#include "mcp/session/projectsession.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int canOpen = 1;
constexpr int j1939 = 2;

std::optional<Reply> buildRefusal(int typeCode, const QString &sentence)
{
    if (ProjectSession::lineTypeSupported(typeCode))
        return {};
    return Reply::refusal(sentence.arg(QCoreApplication::applicationName()));
}

} // namespace

std::optional<Reply> Guards::projectIsOpen(const ToolCall &call)
{
    if (call.session().isProjectOpen())
        return {};
    return Reply::refusal(u"No project open. Call open_project first."_s);
}

std::optional<Reply> Guards::keysAreGiven(const ToolCall &call)
{
    const auto isGiven = [&](const Property &property) { return call.has(property.name); };
    if (std::ranges::all_of(call.tool().required, isGiven))
        return {};
    QStringList names;
    for (const Property &property : call.tool().required)
        names.append(property.name);
    const QString last = names.takeLast();
    return Reply::invalidParams(u"Missing required argument: %1"_s.arg(
        names.isEmpty() ? last : u"%1 and/or %2"_s.arg(names.join(", "_L1), last)));
}

std::optional<Reply> Guards::storeIsWhole(const ToolCall &call)
{
    const QString damage = call.session().damage();
    return damage.isEmpty() ? std::nullopt : std::optional(Reply::refusal(damage));
}

std::optional<Reply> Guards::storeIsReachable(const ToolCall &call)
{
    if (call.store().isOpen())
        return storeIsWhole(call);
    return Reply::refusal(u"Internal error: no database available."_s);
}

std::optional<Reply> Guards::lineExists(const ToolCall &call)
{
    if (call.store().nodeExists(call.line()))
        return {};
    return Reply::refusal(u"Line %1 does not exist."_s.arg(call.line()));
}

std::optional<Reply> Guards::canOpenRefusal(const ToolCall &call, quint8 line)
{
    if (auto refusal = buildRefusal(canOpen, u"This build (%1) does not support CANopen object dictionary tools."_s))
        return refusal;
    const int typeCode = call.session().lineTypeCode(line);
    if (LineProtocols::ofType(typeCode).canOpen)
        return {};
    return Reply::refusal(
        u"Line %1 is not a CANopen line (lineTypeCode=%2) - this tool only applies to CANopen lines."_s.arg(line).arg(
            typeCode));
}

std::optional<Reply> Guards::lineIsCANopen(const ToolCall &call)
{
    return canOpenRefusal(call, call.line());
}

std::optional<Reply> Guards::lineIsJ1939(const ToolCall &call)
{
    if (auto refusal = buildRefusal(j1939, u"This build (%1) does not support J1939 tools."_s))
        return refusal;
    const int typeCode = call.session().lineTypeCode(call.line());
    if (LineProtocols::ofType(typeCode).j1939)
        return {};
    return Reply::refusal(
        u"Line %1 is not a J1939 line (lineTypeCode=%2) - this tool only applies to J1939 lines."_s.arg(call.line())
            .arg(typeCode));
}

std::optional<Reply> Guards::lineIsRawCAN(const ToolCall &call)
{
    const int typeCode = call.session().lineTypeCode(call.line());
    if (LineProtocols::ofType(typeCode).rawCan && ProjectSession::lineTypeSupported(typeCode))
        return {};
    return Reply::refusal(u"Line %1 is not a RAW-CAN-compatible line for this build (%2, lineTypeCode=%3)."_s.arg(
        QString::number(call.line()), QCoreApplication::applicationName(), QString::number(typeCode)));
}

std::optional<Reply> Guards::profilesAreServed(const ToolCall &call)
{
    if (auto refusal = buildRefusal(canOpen, u"This build (%1) does not support the CANopen reference profiles."_s))
        return refusal;
    if (!call.session().profilePath().isEmpty())
        return {};
    return Reply::refusal(u"No profile path configured - drop -codbpath to use the built-in reference profiles."_s);
}
