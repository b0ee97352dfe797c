// The CAN lines of the project.

#include "generate/base/runcontext.h"
#include "mcp/session/projectsession.h"
#include "mcp/tools/arguments.h"
#include "mcp/tools/guards.h"
#include "mcp/tools/toolfamilies.h"
#include "nodedict/codes.h"
#include "store/edition.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace Guards;
using Arguments::lineTypeNames;

namespace {

/// What `lineTypeNames` stand for.
constexpr CAN::LineType lineTypes[]{CAN::LineType::CanOpen,          CAN::LineType::J1939,
                                    CAN::LineType::RawCan,           CAN::LineType::CanOpenAndJ1939,
                                    CAN::LineType::CanOpenAndRawCan, CAN::LineType::J1939AndRawCan};

constexpr Property name = Properties::string("name"_L1, "Line name (optional)"_L1);
constexpr Property isMaster = Properties::boolean("isMaster"_L1, "Line acts as NMT master (default: false)"_L1);
constexpr Property lineType = Properties::choice(
    "lineType"_L1, lineTypeNames,
    "Protocol(s) for this line's line. Required when running as CAN NodeComposer (supports multiple protocols); "
    "defaults to the build's single supported protocol otherwise (CANopen for NCX, J1939 for NJX)."_L1);

std::optional<Reply> lineIsNew(const ToolCall &call)
{
    if (!call.store().nodeExists(call.line()))
        return {};
    return Reply::refusal(u"Line %1 already exists."_s.arg(call.line()));
}

Reply listLines(const ToolCall &call)
{
    QJsonArray lines;
    for (const quint8 line : call.store().getNodeList()) {
        if (line < firstLineWithoutProtocol)
            lines.append(QJsonObject{{u"line"_s, line}, {u"lineTypeCode"_s, call.session().lineTypeCode(line)}});
    }
    return Reply::json(lines);
}

Reply getLine(const ToolCall &call)
{
    const auto data = call.store().getNode(call.line());
    if (!data)
        return Reply::refusal(u"Line %1 does not exist."_s.arg(call.line()));
    return Reply::json({{u"line"_s, call.line()},
                        {u"name"_s, data->name},
                        {u"isMaster"_s, data->ismaster},
                        {u"isSyncProducer"_s, data->issyncproducer},
                        {u"isSyncConsumer"_s, data->issyncconsumer},
                        {u"isHeartbeatConsumer"_s, data->ishbconsumer},
                        {u"tpdoCount"_s, data->tpdocnt},
                        {u"rpdoCount"_s, data->rpdocnt},
                        {u"edsPath"_s, data->edspath},
                        {u"dcfPath"_s, data->dcfpath}});
}

/// The type of that name; nothing for an unknown name.
std::optional<CAN::LineType> lineTypeOf(const QString &text)
{
    const auto *const found = std::ranges::find_if(lineTypeNames, [&](auto known) { return known == text; });
    if (found == std::end(lineTypeNames))
        return {};
    return lineTypes[found - std::begin(lineTypeNames)];
}

Reply addLineOfType(const ToolCall &call, CAN::LineType type)
{
    const quint8 line = call.line();
    if (!ProjectSession::lineTypeSupported(static_cast<int>(type))) {
        return Reply::refusal(u"This build (%1) does not support lineType \"%2\"."_s.arg(
            QCoreApplication::applicationName(), call.text(lineType.name)));
    }
    ObjectDataBase::NODE_DATA_T data;
    data.name = call.text(name.name);
    data.ismaster = call.flag(isMaster.name);
    ObjectDataBase::Step step(call.store());
    if (!call.store().addNode(line, data) ||
        !call.store().setGeneralSetting(u"line%1type"_s.arg(line), QString::number(static_cast<int>(type))) ||
        !step.commit())
        return Reply::refusal(u"Failed to add line %1."_s.arg(line));
    return call.edited(u"Line %1 added."_s.arg(line));
}

Reply addLine(const ToolCall &call)
{
    if (call.has(lineType.name)) {
        if (const auto type = lineTypeOf(call.text(lineType.name)))
            return addLineOfType(call, *type);
        return Reply::invalidParams(u"Invalid lineType: expected CANopen, J1939, RawCAN, CANopen+J1939, CANopen+RawCAN "
                                    "or J1939+RawCAN"_s);
    }
    const std::optional<Edition> edition = currentEdition();
    if (edition == Edition::Can) {
        return Reply::invalidParams(
            u"lineType is required in this build (CAN NodeComposer supports multiple protocols, "
            "none can be inferred)"_s);
    }
    return addLineOfType(call, edition == Edition::J1939 ? CAN::LineType::J1939 : CAN::LineType::CanOpen);
}

Reply deleteLine(const ToolCall &call)
{
    const bool done = call.store().removeNode(call.line());
    const QString sentence = done ? u"Line %1 deleted."_s : u"Failed to delete line %1."_s;
    return call.edited(sentence.arg(call.line()), !done);
}

constexpr Tool readers[] = {
    {"list_lines"_L1,
     "List the CAN lines in the currently open project and their protocol type code (1=CANopen, 2=J1939, 4=RAW-CAN, "
     "other values are combined types)"_L1,
     {},
     {},
     {projectIsOpen, storeIsReachable},
     listLines},
    {"get_line"_L1,
     "Get details of a single line"_L1,
     {Arguments::line},
     {},
     {projectIsOpen, keysAreGiven, storeIsWhole},
     getLine},
};

constexpr Tool editors[] = {
    {"add_line"_L1,
     "Add a new line to the currently open project and set its line type. Fails if the line id already exists, or if "
     "lineType isn't supported by this build."_L1,
     {Arguments::line},
     {isMaster, lineType, name},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineIsNew},
     addLine},
    {"delete_line"_L1,
     "Delete a line and all its object dictionary entries from the currently open project."_L1,
     {Arguments::line},
     {},
     {projectIsOpen, keysAreGiven, storeIsReachable, lineExists},
     deleteLine},
};

} // namespace

std::span<const Tool> ToolFamilies::lines()
{
    return readers;
}

std::span<const Tool> ToolFamilies::lineEdits()
{
    return editors;
}
