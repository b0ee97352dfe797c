// Lists in pages, for projects of any size.

#include "mcp/session/projectsession.h"
#include "mcp/tools/arguments.h"
#include "mcp/tools/dictionaryjson.h"
#include "mcp/tools/globpattern.h"
#include "mcp/tools/guards.h"
#include "mcp/tools/messagetools.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/paging.h"
#include "ncx/device/devicemodel.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;
using namespace Guards;
using MessageTools::direction;
using MessageTools::directionIsKnown;

namespace {

constexpr Property profile =
    Properties::string("profile"_L1, R"(Profile id as returned by list_profiles, e.g. "401")"_L1);
constexpr Property pattern = Properties::string(
    "globPattern"_L1, R"(Only names that match, letter case ignored: "*temperature*" finds the word anywhere)"_L1);
constexpr Property fromIndex = Properties::integer("fromIndex"_L1, 0, 65535, "Only indices from here, decimal"_L1);
constexpr Property toIndex = Properties::integer("toIndex"_L1, 0, 65535, "Only indices up to here, decimal"_L1);

std::optional<Reply> patternIsValid(const ToolCall &call)
{
    if (!call.has(pattern.name) || globExpression(call.text(pattern.name)).isValid())
        return {};
    return Reply::invalidParams(u"Argument \"globPattern\" is no glob pattern: a [ has no ]."_s);
}

/// The objects of a line that the call asks for.
Reply indicesOf(const ToolCall &call, ObjectDataBase &store, quint8 line)
{
    const QMap<quint16, QString> all = DictionaryJson::names(store, line);
    const QRegularExpression expression = globExpression(call.text(pattern.name, u"*"_s));
    const auto last = call.has(toIndex.name) ? call.number<quint16>(toIndex.name) : quint16{0xffff};
    QList<std::pair<quint16, QString>> wanted;
    for (const auto &[index, name] : all.asKeyValueRange()) {
        if (index >= call.number<quint16>(fromIndex.name) && index <= last && expression.match(name).hasMatch())
            wanted.append({index, name});
    }
    return Reply::json(Paging::page(call, wanted.size(), [&wanted](qsizetype place) {
        const auto &[index, name] = wanted.at(place);
        return QJsonObject{{u"index"_s, DictionaryJson::indexText(index)}, {u"indexDec"_s, index}, {u"name"_s, name}};
    }));
}

Reply listIndices(const ToolCall &call)
{
    return indicesOf(call, call.store(), call.line());
}

/// The listing of the other server waits a minute between calls, which is for guessing clients.
Reply listProfiles(const ToolCall &call)
{
    ProfileDatabases &profiles = call.session().profiles();
    QJsonArray list;
    for (const QString &id : profiles.ids())
        list.append(QJsonObject{{u"profile"_s, id}, {u"description"_s, profiles.description(id)}});
    return Reply::json(list);
}

Reply listProfileIndices(const ToolCall &call)
{
    ProfileDatabases &profiles = call.session().profiles();
    const QString id = call.text(profile.name);
    const auto store = profiles.load(id);
    if (!store && profiles.filePath(id).isEmpty())
        return Reply::refusal(u"Unknown profile \"%1\" - call list_profiles for the available ids."_s.arg(id));
    return store ? indicesOf(call, *store, 0) : Reply::refusal(profiles.lastError());
}

/// A message on a line, for a list.
struct Message
{
    quint32 number;
    quint8 direction;
    QString name;
};

QList<Message> messagesOf(const ToolCall &call, const QHash<quint32, QString> &transmitted,
                          const QHash<quint32, QString> &received)
{
    const QRegularExpression expression = globExpression(call.text(pattern.name, u"*"_s));
    const quint8 wanted = direction(call);
    QList<Message> messages;
    for (const auto &[names, way] :
         {std::pair(&transmitted, ObjectDataBase::transmit), {&received, ObjectDataBase::receive}}) {
        if (wanted != 0 && wanted != way)
            continue;
        for (const auto &[number, name] : names->asKeyValueRange()) {
            if (expression.match(name).hasMatch())
                messages.append({number, way, name});
        }
    }
    std::ranges::sort(messages, {},
                      [](const Message &message) { return std::pair(message.number, message.direction); });
    return messages;
}

QString wordOf(quint8 direction)
{
    return direction == ObjectDataBase::transmit ? u"Transmit"_s : u"Receive"_s;
}

Reply listPgns(const ToolCall &call)
{
    ObjectDataBase &store = call.store();
    const QList<Message> messages = messagesOf(call, store.getPGNNames(call.line(), ObjectDataBase::transmit),
                                               store.getPGNNames(call.line(), ObjectDataBase::receive));
    return Reply::json(Paging::page(call, messages.size(), [&messages](qsizetype place) {
        const Message &message = messages.at(place);
        return QJsonObject{
            {u"pgn"_s, qint64{message.number}}, {u"direction"_s, wordOf(message.direction)}, {u"name"_s, message.name}};
    }));
}

Reply listCanIds(const ToolCall &call)
{
    constexpr quint32 extendedBit = 0x80000000U;
    ObjectDataBase &store = call.store();
    const QList<Message> messages = messagesOf(call, store.getCANIDNames(call.line(), ObjectDataBase::transmit),
                                               store.getCANIDNames(call.line(), ObjectDataBase::receive));
    return Reply::json(Paging::page(call, messages.size(), [&messages](qsizetype place) {
        const Message &message = messages.at(place);
        const quint32 id = message.number & ~extendedBit;
        return QJsonObject{{u"canId"_s, qint64{id}},
                           {u"canIdHex"_s, u"0x%1"_s.arg(id, 0, 16)},
                           {u"extended"_s, (message.number & extendedBit) != 0},
                           {u"direction"_s, wordOf(message.direction)},
                           {u"name"_s, message.name}};
    }));
}

constexpr Tool listTools[] = {
    {"list_indices"_L1,
     "List the object dictionary indices of a line, in pages. Use filters rather than reading a large dictionary page "
     "by "
     "page. Example: {\"line\": 0, \"fromIndex\": 8192, \"toIndex\": 24575}"_L1,
     {Arguments::line},
     {fromIndex, toIndex, pattern, Paging::offset, Paging::limit},
     {projectIsOpen, storeIsReachable, lineIsCANopen, patternIsValid},
     listIndices},
    {"find_indices"_L1,
     "Find object dictionary indices of a line by name, in pages. Example: {\"line\": 0, \"globPattern\": "
     "\"*controlword*\"}"_L1,
     {Arguments::line, pattern},
     {fromIndex, toIndex, Paging::offset, Paging::limit},
     {projectIsOpen, storeIsReachable, lineIsCANopen, patternIsValid},
     listIndices},
    {"list_profiles"_L1,
     "List the reference profiles of CiA, by whose ids other tools take objects. Use it before you write standard "
     "objects "
     "by hand. Example: {}"_L1,
     {},
     {},
     {},
     listProfiles},
    {"list_profile_indices"_L1,
     "List the objects of a reference profile, in pages; import_profile_indices copies them into a line. Example: "
     "{\"profile\": \"401\", \"globPattern\": \"*input*\"}"_L1,
     {profile},
     {fromIndex, toIndex, pattern, Paging::offset, Paging::limit},
     {patternIsValid},
     listProfileIndices},
    {"list_pgns"_L1,
     "List the PGNs of a J1939 line, in pages. Example: {\"line\": 0, \"direction\": \"Transmit\"}"_L1,
     {Arguments::line},
     {Arguments::directionFilter, pattern, Paging::offset, Paging::limit},
     {projectIsOpen, directionIsKnown, storeIsReachable, lineIsJ1939, patternIsValid},
     listPgns},
    {"list_can_ids"_L1,
     "List the CAN-IDs of a raw CAN line, in pages. Example: {\"line\": 0, \"globPattern\": \"*pressure*\"}"_L1,
     {Arguments::line},
     {Arguments::directionFilter, pattern, Paging::offset, Paging::limit},
     {projectIsOpen, directionIsKnown, storeIsReachable, lineIsRawCAN, patternIsValid},
     listCanIds},
};

} // namespace

std::span<const Tool> AssistantFamilies::lists()
{
    return listTools;
}
