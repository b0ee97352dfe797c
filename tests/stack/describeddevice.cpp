#include "stack/describeddevice.h"

#include "support/testhome.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace TestSupport {
namespace {

using Keys = QMap<QString, QString>;

const QStringList valueKeys{u"datatype"_s, u"accesstype"_s, u"pdomapping"_s, u"defaultvalue"_s,
                            u"lowlimit"_s, u"highlimit"_s,  u"objflags"_s};

const QMap<uint, int> signedBits{{2, 8}, {3, 16}, {4, 32}, {16, 24}, {18, 40}, {19, 48}, {20, 56}, {21, 64}};

QString textOf(const QByteArray &content)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(content);
    return utf8.hasError() ? QString::fromLatin1(content) : text;
}

/// A number, a sum with the node-id, or the text itself without a remark.
QString canonical(const QString &written, uint type)
{
    static const QRegularExpression remark(u"\\s*;.*$"_s);
    if (type == 9 || type == 10 || type == 11)
        return written;
    QString value = QString(written).remove(remark).toLower();
    const bool isRelative = value.contains("$nodeid"_L1);
    value.remove(u"$nodeid"_s).remove(u'+').remove(u' ');
    bool ok = false;
    qint64 number = value.toLongLong(&ok, 0);
    if (!ok)
        number = static_cast<qint64>(value.toULongLong(&ok, 0));
    if (!ok)
        number = value.toLongLong(&ok, 10);
    if (!ok)
        return isRelative ? u"$NODEID+0"_s : value;
    if (const int bits = signedBits.value(type); bits > 0 && bits < 64 && number >> (bits - 1) == 1)
        number -= qint64{1} << bits;
    return (isRelative ? u"$NODEID+"_s : QString()) + QString::number(number);
}

uint typeOf(const Keys &keys)
{
    return canonical(keys.value(u"datatype"_s), 0).toUInt();
}

Keys valuesOf(const Keys &keys)
{
    Keys values;
    const uint type = typeOf(keys);
    for (const QString &key : valueKeys) {
        const bool isNumber = key == "datatype"_L1 || key == "pdomapping"_L1 || key == "objflags"_L1;
        const QString value =
            canonical(keys.value(key), isNumber || key.endsWith("limit"_L1) ? (isNumber ? 0 : type) : type);
        values.insert(key, value.isEmpty() && key == "pdomapping"_L1 ? u"0"_s
                           : value.isEmpty() && key == "objflags"_L1 ? u"0"_s
                                                                     : value.toLower());
    }
    return values;
}

QString placeOf(const QString &part)
{
    const QStringList words = part.split(u"sub"_s);
    QString place = "0x"_L1 + words.first();
    return words.size() > 1 ? u"%1:%2"_s.arg(place).arg(words.last().toUInt(nullptr, 16)) : place;
}

const QSet<QString> ignoredKeys{u"parametername"_s, u"objecttype"_s, u"subnumber"_s, u"compactsubobj"_s};

} // namespace

DescribedDevice DescribedDevice::read(const QString &path)
{
    DescribedDevice device;
    QString section;
    for (QString line : textOf(readFile(path)).split(QRegularExpression(u"\\r\\n|\\n|\\r"_s))) {
        line = line.trimmed();
        if (line.startsWith(u'[')) {
            section = line.mid(1, line.indexOf(u']') - 1).remove(u' ').toLower();
            device.sections[section];
        } else if (const qsizetype equals = line.indexOf(u'=');
                   equals > 0 && line.front() != u';' && line.front() != u'#') {
            Keys &keys = device.sections[section];
            if (const QString key = line.first(equals).trimmed().toLower(); !keys.contains(key))
                keys.insert(key, line.mid(equals + 1).trimmed());
        }
    }
    static const QRegularExpression object(u"^[1-9a-b][0-9a-f]{3}(sub[0-9a-f]+)?$"_s);
    for (auto it = device.sections.cbegin(); it != device.sections.cend(); ++it) {
        if (object.match(it.key()).hasMatch())
            device.addObject(it.key(), it.value());
    }
    return device;
}

void DescribedDevice::addObject(const QString &name, const Keys &keys)
{
    Keys &part = parts[name];
    const bool isSub = name.contains("sub"_L1);
    const uint objectType = canonical(keys.value(u"objecttype"_s, u"7"_s), 0).toUInt();
    part.insert(u"parametername"_s, keys.value(u"parametername"_s));
    part.insert(u"objecttype"_s, QString::number(objectType));
    if (isSub || objectType == 7 || objectType == 2)
        part.insert(valuesOf(keys));
    if (keys.contains(u"subnumber"_s))
        part.insert(u"subnumber"_s, canonical(keys.value(u"subnumber"_s), 0));
    for (auto it = keys.cbegin(); it != keys.cend(); ++it) {
        if (!valueKeys.contains(it.key()) && !ignoredKeys.contains(it.key()))
            part.insert(it.key(), it.value());
    }
    addCompact(name, keys);
}

/// Spreads out what `CompactSubObj` says, unless a subindex has a section of its own.
void DescribedDevice::addCompact(const QString &object, const Keys &keys)
{
    const uint count = canonical(keys.value(u"compactsubobj"_s), 0).toUInt();
    const Keys names = sections.value(object + u"name"_s);
    for (uint i = 0; count > 0 && i <= count; ++i) {
        const QString name = u"%1sub%2"_s.arg(object).arg(i, 0, 16);
        if (sections.contains(name))
            continue;
        Keys sub = keys;
        sub.insert(u"parametername"_s,
                   names.value(QString::number(i), u"%1 %2"_s.arg(keys.value(u"parametername"_s)).arg(i)));
        if (i == 0)
            sub = {{u"parametername"_s, u"Highest subindex supported"_s},
                   {u"datatype"_s, u"5"_s},
                   {u"accesstype"_s, u"ro"_s},
                   {u"defaultvalue"_s, QString::number(count)}};
        Keys &part = parts[name];
        part = valuesOf(sub);
        part.insert(u"parametername"_s, sub.value(u"parametername"_s));
        part.insert(u"objecttype"_s, u"7"_s);
    }
}

QList<DescriptionDifference> differences(const DescribedDevice &maker, const DescribedDevice &generated)
{
    QList<DescriptionDifference> found;
    const QStringList partNames = QStringList(maker.parts.keys() + generated.parts.keys());
    for (const QString &name : QSet<QString>(partNames.begin(), partNames.end())) {
        if (!maker.parts.contains(name) || !generated.parts.contains(name)) {
            found.append({placeOf(name), {}});
            continue;
        }
        const Keys wanted = maker.parts.value(name);
        const Keys made = generated.parts.value(name);
        const QStringList keys = wanted.keys() + made.keys();
        for (const QString &key : QSet<QString>(keys.begin(), keys.end())) {
            const bool isOwnCount = key == "subnumber"_L1 && !wanted.contains(key);
            if (wanted.value(key) != made.value(key) && !isOwnCount)
                found.append({placeOf(name), key});
        }
    }
    for (const QString &section : {u"deviceinfo"_s, u"dummyusage"_s, u"fileinfo"_s}) {
        const Keys wanted = maker.sections.value(section);
        const Keys made = generated.sections.value(section);
        for (auto it = wanted.cbegin(); it != wanted.cend(); ++it) {
            const bool isText = it.key().endsWith("name"_L1) || it.key() == "ordercode"_L1;
            if (canonical(it.value(), isText ? 9 : 0) != canonical(made.value(it.key()), isText ? 9 : 0))
                found.append({section, it.key()});
        }
    }
    return found;
}

} // namespace TestSupport
