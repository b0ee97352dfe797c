// The reference profiles: looking objects up, and copying them into a line of the project.

#include "mcp/session/projectsession.h"
#include "mcp/tools/arguments.h"
#include "mcp/tools/dictionaryjson.h"
#include "mcp/tools/guards.h"
#include "mcp/tools/toolfamilies.h"
#include "store/objectdatabase.h"

#include <chrono>

using namespace Qt::StringLiterals;
using namespace Guards;

namespace {

constexpr Property profile =
    Properties::string("profile"_L1, R"(Profile id as returned by list_profiles, e.g. "402", "402_v3" or "454-2")"_L1);
constexpr Property indexNumber = Properties::integer({}, 0, 65535, {});
constexpr Property indices =
    Properties::array("indices"_L1, indexNumber,
                      "Indices to copy from the profile, decimal. Indices that already exist on the line are "
                      "skipped."_L1);

qint64 nowInMs()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

std::optional<Reply> throttled(AccessThrottle &throttle)
{
    if (throttle.admits(nowInMs()))
        return {};
    return Reply::ofError(Reply::AccessThrottled, u"Generic Access Error"_s);
}

Reply listProfiles(const ToolCall &call)
{
    if (auto refusal = throttled(call.session().profileListing()))
        return *refusal;
    return Reply::json(QJsonArray::fromStringList(call.session().profiles().ids()));
}

std::optional<Reply> profileIsKnown(const ToolCall &call)
{
    const QString id = call.text(profile.name);
    if (!call.session().profiles().filePath(id).isEmpty())
        return {};
    return Reply::refusal(u"Unknown profile \"%1\" - call list_profiles for the available ids."_s.arg(id));
}

/// The profile of the call, or the reply that says why there is none.
std::shared_ptr<ObjectDataBase> load(const ToolCall &call, std::optional<Reply> &refusal)
{
    auto store = call.session().profiles().load(call.text(profile.name));
    if (!store)
        refusal = Reply::refusal(call.session().profiles().lastError());
    return store;
}

Reply listProfileIndices(const ToolCall &call)
{
    // What cannot be listed does not use up the one call a minute: a wrong id, which a guard has told, or a full disk.
    AccessThrottle &throttle = call.session().profileIndexListing();
    const AccessThrottle before = throttle;
    if (auto refusal = throttled(throttle))
        return *refusal;
    std::optional<Reply> refusal;
    const auto store = load(call, refusal);
    if (!refusal)
        return Reply::text(DictionaryJson::listing(DictionaryJson::names(*store, 0)));
    throttle = before;
    return *refusal;
}

Reply getProfileIndex(const ToolCall &call)
{
    std::optional<Reply> refusal;
    const auto store = load(call, refusal);
    if (refusal)
        return *refusal;
    const QString id = call.text(profile.name);
    auto object = DictionaryJson::object(*store, 0, call.index());
    if (!object) {
        return Reply::refusal(
            u"Index %1 is not defined in profile %2."_s.arg(DictionaryJson::indexText(call.index()), id));
    }
    object->insert(u"profile"_s, id);
    return Reply::json(*object);
}

std::optional<Reply> indicesAreGiven(const ToolCall &call)
{
    if (!call.value(indices.name).toArray().isEmpty())
        return {};
    return Reply::invalidParams(u"Argument indices must be a non-empty array of index numbers"_s);
}

/// What became of the objects of an import.
struct Import
{
    QStringList imported;
    QStringList skipped;
};

Import copyObjects(const ToolCall &call, ObjectDataBase &source)
{
    ObjectDataBase &store = call.store();
    const quint8 line = call.line();
    Import import;
    for (const QJsonValue value : call.value(indices.name).toArray()) {
        const auto index = static_cast<quint16>(value.toInteger());
        const QString text = DictionaryJson::indexText(index);
        if (!source.indexExists(0, index)) {
            import.skipped.append(u"%1 (not defined in profile %2)"_s.arg(text, call.text(profile.name)));
        } else if (store.indexExists(line, index)) {
            import.skipped.append(u"%1 (already exists on line %2)"_s.arg(text).arg(line));
        } else {
            if (store.copyIndexFrom(&source, 0, index, line, index) && store.indexExists(line, index))
                import.imported.append(text);
            else
                import.skipped.append(u"%1 (copy failed)"_s.arg(text));
        }
    }
    return import;
}

Reply importProfileIndices(const ToolCall &call)
{
    std::optional<Reply> refusal;
    const auto source = load(call, refusal);
    if (refusal)
        return *refusal;
    const Import import = copyObjects(call, *source);
    QString sentence = u"Imported %1 object(s) from profile %2 into line %3"_s.arg(
        QString::number(import.imported.size()), call.text(profile.name), QString::number(call.line()));
    if (!import.imported.isEmpty())
        sentence += u": "_s + import.imported.join(u", ");
    sentence += u'.';
    if (!import.skipped.isEmpty())
        sentence += u"\nSkipped %1: %2."_s.arg(QString::number(import.skipped.size()), import.skipped.join(u", "));
    return call.edited(sentence, import.imported.isEmpty());
}

constexpr Tool profileTools[] = {
    {"list_profiles"_L1,
     "List the indices of the built-in reference profile databases. These are read-only internal profile databases "
     "shipped with this tool - they are not projects, cannot be opened, edited or saved, and are addressed by their id "
     "only."_L1,
     {},
     {},
     {profilesAreServed},
     listProfiles},
    {"list_profile_indices"_L1,
     "List the object dictionary indices a reference profile database defines. Read-only lookup in an internal profile "
     "database - it does not touch the currently open project."_L1,
     {profile},
     {},
     {profilesAreServed, keysAreGiven, profileIsKnown},
     listProfileIndices},
    {"get_profile_index"_L1,
     "Get one object dictionary index of a reference profile database, including its subindices. Read-only lookup in "
     "an internal profile database - it does not touch the currently open project."_L1,
     {profile, Arguments::index},
     {},
     {profilesAreServed, keysAreGiven},
     getProfileIndex},
    {"import_profile_indices"_L1,
     "Copy objects from a reference profile database into a CANopen line of the currently open project. The objects "
     "keep the definitions the profile provides; indices that already exist on the target line are skipped, never "
     "overwritten."_L1,
     {profile, Arguments::line, indices},
     {},
     {projectIsOpen, profilesAreServed, keysAreGiven, indicesAreGiven, storeIsReachable, lineIsCANopen},
     importProfileIndices},
};

} // namespace

std::span<const Tool> ToolFamilies::profiles()
{
    return profileTools;
}
