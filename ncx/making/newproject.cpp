#include "ncx/making/newproject.h"

#include "import/profiledatabases.h"
#include "ncx/project/identity.h"
#include "ncx/project/openedproject.h"
#include "nodedict/access.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/file/workingcopies.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;
namespace Index = CANopen::Index;

namespace {

struct LineType
{
    QLatin1StringView name;
    int code;
};
constexpr LineType knownTypes[] = {
    {"CANopen"_L1, 1},       {"J1939"_L1, 2},          {"RawCAN"_L1, 4},
    {"CANopen+J1939"_L1, 5}, {"CANopen+RawCAN"_L1, 6}, {"J1939+RawCAN"_L1, 7},
};

/// Objects without which no line passes the check (CiA 301); identity and heartbeat are optional there in parts.
constexpr quint16 baseObjects[] = {Index::deviceType, Index::errorRegister, Index::heartbeatProducer, Index::identity};

struct Setting
{
    QLatin1StringView key;
    QLatin1StringView value;
};

constexpr Setting generalSettings[] = {
    {"co_timer_interval"_L1, "1000"_L1}, // µs
    {"new_init_structure"_L1, "1"_L1},
    {"use_core_headers"_L1, "V4"_L1},
};

/// A name (SAE J1939-81) that claims its address, and the transport of long messages.
constexpr Setting j1939Settings[] = {
    {"addresscapable"_L1, "1"_L1},  {"bamsupport"_L1, "1"_L1},       {"ecuinstance"_L1, "0"_L1},
    {"function"_L1, "0"_L1},        {"identitynumber"_L1, "0"_L1},   {"functioninstance"_L1, "0"_L1},
    {"industrygroup"_L1, "0"_L1},   {"manufacturercode"_L1, "0"_L1}, {"startaddress"_L1, "128"_L1},
    {"vehicleinstance"_L1, "0"_L1}, {"vehiclesystem"_L1, "0"_L1},
};

/// What the profile databases leave open: where the values are kept, and some of them.
bool settle(ObjectDataBase &store, quint8 line)
{
    QList<StoreRecords::SubEntry> changed;
    bool hasLimits = false;
    QHash<quint16, quint32> objectTypes;
    for (const StoreRecords::IndexEntry &entry : store.getAllIndices(line))
        objectTypes.insert(entry.index, entry.data.objecttype);
    for (StoreRecords::SubEntry entry : store.getAllSubIndices(line)) {
        StoreRecords::SubIndexData &data = entry.data;
        const bool isCount = entry.subindex == 0 && objectTypes.value(entry.index) != CANopen::Var;
        const bool isReadOnly = data.accesstype == CANopen::Access::Const;
        const bool isIdentity = entry.index == Index::deviceType ||
                                (entry.index == Index::identity && entry.subindex >= 1 && entry.subindex <= 3);
        if (isCount || isReadOnly || isIdentity)
            data.implementation = static_cast<quint8>(CANopen::Implementation::ManagedConst);
        if (isIdentity && data.defaultvalue.isEmpty())
            data.defaultvalue = u"0"_s;
        if (isCount) {
            data.defaultineds = true;
            data.writedefaulttoeds = 1;
        }
        hasLimits |= data.limitineds;
        changed.append(entry);
    }
    return store.addSubIndices(changed, Quotes::Kept) &&
           (!hasLimits || store.setGeneralSetting(u"limit_check"_s, u"1"_s));
}

/// Takes the objects of a profile that every device of it has, those of further modules aside: CiA 301 has room for
/// eight in a device, one behind the other.
bool takeMandatory(ObjectDataBase &store, quint8 line, ObjectDataBase &profile)
{
    constexpr CANopen::IndexRange furtherModules{0x6800, 0x9FFF};
    return std::ranges::all_of(profile.getAllIndices(0), [&](const StoreRecords::IndexEntry &entry) {
        return furtherModules.contains(entry.index) || entry.data.category != CANopen::Mandatory ||
               store.indexExists(line, entry.index) || store.copyIndexFrom(&profile, 0, entry.index, line, entry.index);
    });
}

/// The device type (CiA 301): the number of the first profile, and the mark of a device with several modules.
QString deviceType(ObjectDataBase &profile, bool isOnlyOne)
{
    constexpr quint32 profileNumber = 0xffff;
    constexpr quint32 severalModules = 0xffff0000;
    const quint32 type = profile.getSubIndexDefaultValue(0, Index::deviceType, 0).toUInt(nullptr, 0);
    return u"0x%1"_s.arg(isOnlyOne ? type : (type & profileNumber) | severalModules, 8, 16, QLatin1Char('0'));
}

} // namespace

int NewProject::lineType(const QString &name)
{
    for (const LineType &type : knownTypes) {
        if (name.compare(type.name, Qt::CaseInsensitive) == 0)
            return type.code;
    }
    return 0;
}

QString NewProject::makeIn(ObjectDataBase &store) const
{
    ProfileDatabases databases;
    for (const QString &id : profiles) {
        if (databases.filePath(id).isEmpty())
            return u"there is no profile %1 (%2)"_s.arg(id, databases.ids().join(", "_L1));
    }
    if (!store.createNewDataBase())
        return OpenedProject::reasonWithoutCopy();
    ObjectDataBase::Step step(store);
    if (!addLines(store) || !fillLines(store, databases) ||
        !store.setMiscSetting(u"CreateToolName"_s, Identity::leastFor(store, {})) || !step.commit())
        return u"the working copy cannot be written; is the disk of %1 full?"_s.arg(WorkingCopies::folder());
    return {};
}

bool NewProject::addLines(ObjectDataBase &store) const
{
    bool hasCANopen = false;
    for (qsizetype i = 0; i < lineTypes.size(); ++i) {
        if (!store.addNode(static_cast<quint8>(i), {.name = namesLines ? u"can%1"_s.arg(i) : QString()}) ||
            !store.setGeneralSetting(u"line%1type"_s.arg(i), QString::number(lineTypes.at(i))))
            return false;
        hasCANopen |= LineProtocols::ofType(lineTypes.at(i)).canOpen;
    }
    return std::ranges::all_of(
               generalSettings,
               [&store](const Setting &setting) { return store.setGeneralSetting(setting.key, setting.value); }) &&
           (!hasCANopen || store.setGeneralSetting(u"co_node_id"_s, QString::number(nodeId)));
}

bool NewProject::fillLines(ObjectDataBase &store, ProfileDatabases &databases) const
{
    bool hasJ1939 = false;
    for (qsizetype i = 0; i < lineTypes.size(); ++i) {
        const LineProtocols protocols = LineProtocols::ofType(lineTypes.at(i));
        if (protocols.canOpen && i != describedLine && !fillCANopen(store, static_cast<quint8>(i), databases))
            return false;
        hasJ1939 |= protocols.j1939;
    }
    return !hasJ1939 || std::ranges::all_of(j1939Settings, [&store](const Setting &setting) {
        return store.setJ1939Setting(setting.key, setting.value);
    });
}

bool NewProject::fillCANopen(ObjectDataBase &store, quint8 line, ProfileDatabases &databases) const
{
    const auto base = databases.load(u"301"_s);
    if (!base)
        return false;
    const bool hasBase = std::ranges::all_of(
        baseObjects, [&](quint16 index) { return store.copyIndexFrom(base.get(), 0, index, line, index); });
    if (!hasBase || !takeMandatory(store, line, *base))
        return false;
    for (const QString &id : profiles) {
        const auto profile = databases.load(id);
        if (!profile || !takeMandatory(store, line, *profile))
            return false;
        if (id == profiles.first() && profile->subIndexExists(0, Index::deviceType, 0) &&
            !store.setSubIndexDefaultValue(line, Index::deviceType, 0, deviceType(*profile, profiles.size() == 1)))
            return false;
    }
    return settle(store, line);
}
