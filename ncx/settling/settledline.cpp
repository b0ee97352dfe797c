#include "ncx/settling/settledline.h"

#include "check/line/storevalue.h"
#include "import/profiledatabases.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;

namespace {

quint32 keyOf(quint16 index, quint8 subindex)
{
    return quint32{index} << 8 | subindex;
}

QString quoted(const QString &text)
{
    return text.isEmpty() ? u"nothing"_s : u"'%1'"_s.arg(text);
}

QString plain(const QString &text)
{
    return text.isEmpty() ? u"nothing"_s : text;
}

/// The type that descriptions tell, if that is not the one of the project.
QString describedType(const SettledLine::Sub &sub)
{
    const QString own = sub.metadata.value(u"eds_datatype"_s);
    const QString type = COHelper::index2DataTypeString(sub.datatype);
    return own.isEmpty()
               ? type
               : u"%1 (in descriptions %2)"_s.arg(type, COHelper::index2DataTypeString(own.toUInt(nullptr, 0)));
}

QString keeperOf(const SettledLine::Sub &sub)
{
    switch (static_cast<CANopen::Implementation>(sub.implementation)) {
    case CANopen::Implementation::ManagedVariable:
        return u"the stack"_s;
    case CANopen::Implementation::ManagedConst:
        return u"a constant"_s;
    case CANopen::Implementation::Variable:
        return "the application's "_L1 + sub.varname;
    case CANopen::Implementation::VirtualObject:
        return u"a callback"_s;
    }
    return {};
}

QString limitOf(const SettledLine::Sub &sub, const QString &limit)
{
    return sub.limitineds ? plain(limit) : u"nothing"_s;
}

/// What the report calls the parts of a subindex: by the key that a description has for them, if it has one.
struct Field
{
    QLatin1StringView key;
    QString (*text)(const SettledLine::Sub &);
};
constexpr Field fields[] = {
    {"ParameterName"_L1, [](const SettledLine::Sub &sub) { return quoted(sub.name); }},
    {"DataType"_L1, describedType},
    {"AccessType"_L1, [](const SettledLine::Sub &sub) { return sub.accesstype; }},
    {"PDOMapping"_L1, [](const SettledLine::Sub &sub) { return QString::number(sub.pdomapping.toBinary()); }},
    {"DefaultValue"_L1, [](const SettledLine::Sub &sub) { return plain(sub.defaultvalue); }},
    {"LowLimit"_L1, [](const SettledLine::Sub &sub) { return limitOf(sub, sub.lowlimit); }},
    {"HighLimit"_L1, [](const SettledLine::Sub &sub) { return limitOf(sub, sub.uplimit); }},
    {"kept by"_L1, keeperOf},
    {"size"_L1, [](const SettledLine::Sub &sub) { return QString::number(sub.size); }},
    {"denotation"_L1, [](const SettledLine::Sub &sub) { return quoted(sub.denotation); }},
    {"DefaultValue in descriptions"_L1,
     [](const SettledLine::Sub &sub) { return sub.writedefaulttoeds == 0 ? u"no"_s : u"yes"_s; }},
};

struct Difference
{
    QString text;
    QLatin1StringView key; ///< the first one
};

Difference differenceOf(const SettledLine::Sub &before, const SettledLine::Sub &after)
{
    Difference difference;
    QStringList parts;
    for (const Field &field : fields) {
        const QString was = field.text(before);
        const QString is = field.text(after);
        if (was == is)
            continue;
        if (parts.isEmpty())
            difference.key = field.key;
        parts.append(u"%1: %2 -> %3"_s.arg(field.key, was, is));
    }
    difference.text = parts.join("; "_L1);
    return difference;
}

QString addedText(const SettledLine::Sub &sub)
{
    return u"added: ParameterName %1, DataType %2, AccessType %3, DefaultValue %4"_s.arg(
        quoted(sub.name), describedType(sub), sub.accesstype, plain(sub.defaultvalue));
}

} // namespace

SettledLine::SettledLine(ObjectDataBase &store, quint8 line, const DescriptionText &file, SettlingReport &report)
    : store_(store)
    , line_(line)
    , file_(file)
    , report_(report)
{
    for (const StoreRecords::IndexEntry &entry : store.getAllIndices(line))
        objects_.insert(entry.index, entry.data);
    for (const StoreRecords::SubEntry &entry : store.getAllSubIndices(line))
        subs_.insert(keyOf(entry.index, entry.subindex), entry.data);
}

const SettledLine::Object *SettledLine::object(quint16 index) const
{
    const auto found = objects_.constFind(index);
    return found == objects_.constEnd() ? nullptr : &*found;
}

const SettledLine::Sub *SettledLine::sub(quint16 index, quint8 subindex) const
{
    const auto found = subs_.constFind(keyOf(index, subindex));
    return found == subs_.constEnd() ? nullptr : &*found;
}

QList<quint8> SettledLine::subindicesOf(quint16 index) const
{
    QList<quint8> subindices;
    for (auto sub = subs_.lowerBound(keyOf(index, 0)); sub != subs_.end() && sub.key() >> 8 == index; ++sub)
        subindices.append(static_cast<quint8>(sub.key()));
    return subindices;
}

QList<StoreRecords::SubKey> SettledLine::allSubindices() const
{
    QList<StoreRecords::SubKey> all;
    for (auto sub = subs_.begin(); sub != subs_.end(); ++sub)
        all.append({static_cast<quint16>(sub.key() >> 8), static_cast<quint8>(sub.key()), line_});
    return all;
}

std::optional<quint64> SettledLine::value(quint16 index, quint8 subindex) const
{
    const Sub *found = sub(index, subindex);
    return found ? plainValue(found->defaultvalue) : std::nullopt;
}

void SettledLine::tell(quint16 index, std::optional<quint8> subindex, const QString &text, QLatin1StringView key)
{
    QString place = u"0x%1"_s.arg(index, 4, 16, QLatin1Char('0'));
    const Object *of = object(index);
    if (subindex && (subindicesOf(index).size() > 1 || (of && of->objecttype != CANopen::Var)))
        place += u":%1"_s.arg(*subindex);
    const Sub *named = subindex ? sub(index, *subindex) : nullptr;
    const QString name = named ? named->name : of ? of->name : QString();
    if (!name.isEmpty())
        place += u" '%1'"_s.arg(name);
    report_.add(topic_, file_.lineOf(index, subindex, key), place, text);
}

bool SettledLine::set(quint16 index, const Object &object)
{
    const Object *before = this->object(index);
    if (before && *before == object)
        return false;
    QString text;
    if (!before)
        text = u"added: ParameterName %1, ObjectType %2"_s.arg(quoted(object.name),
                                                               COHelper::objectCode2String(object.objecttype));
    else if (before->name != object.name)
        text = u"ParameterName: %1 -> %2"_s.arg(quoted(before->name), quoted(object.name));
    else
        text = u"ObjectType: %1 -> %2"_s.arg(COHelper::objectCode2String(before->objecttype),
                                             COHelper::objectCode2String(object.objecttype));
    objects_.insert(index, object);
    tell(index, {}, text);
    hasFailed_ |= !store_.addIndex(line_, index, object);
    return true;
}

bool SettledLine::set(quint16 index, quint8 subindex, const Sub &sub)
{
    const Sub *before = this->sub(index, subindex);
    if (before && *before == sub)
        return false;
    const Difference difference = before ? differenceOf(*before, sub) : Difference{addedText(sub), {}};
    subs_.insert(keyOf(index, subindex), sub);
    if (!difference.text.isEmpty())
        tell(index, subindex, difference.text, difference.key);
    hasFailed_ |= !store_.addSubIndex(line_, index, subindex, sub, Quotes::Kept);
    return true;
}

bool SettledLine::setDefault(quint16 index, quint8 subindex, const QString &value)
{
    const Sub *before = sub(index, subindex);
    if (!before || before->defaultvalue == value)
        return false;
    Sub changed = *before;
    changed.defaultvalue = value;
    return set(index, subindex, changed);
}

bool SettledLine::setGeneral(const QString &key, const QString &value)
{
    const QString before = store_.getGeneralSetting(key, line_);
    if (before == value)
        return false;
    // A setting without an entry for each line holds for all of them.
    const bool isList = ObjectDataBase::getGeneralSettingKeys().contains(key);
    hasFailed_ |= isList ? !store_.setGeneralSetting(key, value, line_) : !store_.setGeneralSetting(key, value);
    report_.add(topic_, 0, u"setting %1"_s.arg(key), u"%1 -> %2"_s.arg(plain(before), value));
    return true;
}

bool SettledLine::setDescription(const QString &key, const QString &value, int line)
{
    store_.setCurrentLine(line_);
    const QString before = store_.getDescriptionSetting(key);
    if (before == value)
        return false;
    hasFailed_ |= !store_.setDescriptionSetting(key, value);
    report_.add(topic_, line, u"description setting %1"_s.arg(key), u"%1 -> %2"_s.arg(plain(before), value));
    return true;
}

bool SettledLine::addStandardObject(quint16 index)
{
    if (object(index))
        return false;
    if (!profiles_)
        profiles_ = std::make_shared<ProfileDatabases>();
    const auto standard = profiles_->load(u"301"_s);
    const auto found = standard ? standard->getIndex(0, index) : std::nullopt;
    if (!found) {
        hasFailed_ = true;
        return false;
    }
    set(index, *found);
    for (const quint8 subindex : standard->getSubIndexList(0, index)) {
        if (const auto data = standard->getSubIndex(0, index, subindex))
            set(index, subindex, *data);
    }
    return true;
}
