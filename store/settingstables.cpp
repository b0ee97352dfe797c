// The settings of a project: five tables of key and value.

#include "store/objectdatabase.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto general = "GeneralSettings"_L1;
constexpr auto description = "DescriptionSettings"_L1;
constexpr auto energyBus = "EnergyBusSettings"_L1;
constexpr auto j1939 = "J1939Settings"_L1;
constexpr auto misc = "MiscSettings"_L1;

struct DescriptionDefault
{
    QLatin1StringView key;
    QLatin1StringView value;
};

/// What a line's device description (CiA 306) holds until the user sets it.
constexpr DescriptionDefault descriptionDefaults[] = {
    {"BaudRate_10"_L1, "0"_L1},   {"BaudRate_20"_L1, "0"_L1},   {"BaudRate_50"_L1, "0"_L1},
    {"BaudRate_125"_L1, "1"_L1},  {"BaudRate_250"_L1, "1"_L1},  {"BaudRate_500"_L1, "0"_L1},
    {"BaudRate_800"_L1, "0"_L1},  {"BaudRate_1000"_L1, "0"_L1}, {"Dummy0001"_L1, "0"_L1},
    {"Dummy0002"_L1, "0"_L1},     {"Dummy0003"_L1, "0"_L1},     {"Dummy0004"_L1, "0"_L1},
    {"Dummy0005"_L1, "0"_L1},     {"Dummy0006"_L1, "0"_L1},     {"Dummy0007"_L1, "0"_L1},
    {"LSS_Supported"_L1, "0"_L1}, {"SelfStarting"_L1, "0"_L1},  {"VendorName"_L1, ""_L1},
    {"ProductName"_L1, ""_L1},    {"CreatedBy"_L1, ""_L1},      {"ModifiedBy"_L1, ""_L1},
    {"FileVersion"_L1, "1"_L1},   {"FileRevision"_L1, "1"_L1},  {"OrderCode"_L1, "0815-BUY-ME"_L1},
    {"Granularity"_L1, "0"_L1},   {"Comment"_L1, ""_L1},        {"AdditionalSections"_L1, ""_L1},
};

/// The part of a comma list for a line; a line beyond the end takes the last part.
QString partForLine(const QString &value, quint8 line)
{
    const QStringList parts = value.split(u',');
    return line < parts.size() ? parts.at(line) : parts.last();
}

} // namespace

QStringList ObjectDataBase::getGeneralSettingKeys()
{
    return {u"nmtmaster"_s,
            u"co_node_id"_s,
            u"co_node_id_fct"_s,
            u"overwrite_predef"_s,
            u"receivebuffersize"_s,
            u"transmitbuffersize"_s,
            u"isotp_client_con"_s,
            u"isotp_server_con"_s,
            u"uds_physical_request_id"_s,
            u"uds_physical_response_id"_s,
            u"uds_functional_request_id"_s};
}

QString ObjectDataBase::settingOf(QLatin1StringView table, const QString &key)
{
    return statements_.value({nullptr, u"select value from %1 where item = ?"_s.arg(table)}, {key}).toString();
}

QHash<QString, QString> ObjectDataBase::settingsOf(QLatin1StringView table)
{
    QHash<QString, QString> settings;
    statements_.visit({nullptr, u"select item, value from %1"_s.arg(table)}, {},
                      [&](const ResultRow &row) { settings.insert(row.text(0), row.value(1).toString()); });
    return settings;
}

QHash<QString, QString> ObjectDataBase::getGeneralSettings()
{
    return settingsOf(general);
}

QHash<QString, QString> ObjectDataBase::getJ1939Settings()
{
    return settingsOf(j1939);
}

bool ObjectDataBase::settingExists(QLatin1StringView table, const QString &key)
{
    return statements_.hasRow({nullptr, u"select item from %1 where item = ?"_s.arg(table)}, {key});
}

/// Writes a value. Of a row that holds the value already nothing is written. A key is a literal text in all tables.
ObjectDataBase::SettingWrite ObjectDataBase::writeSetting(QLatin1StringView table, const QString &key,
                                                          const QString &value, Quotes quotes)
{
    const std::optional<QString> item = LiteralText::stored(key, Quotes::Literal);
    if (!item)
        return SettingWrite::Failed;
    std::optional<QVariant> before;
    if (!statements_.visit({nullptr, u"select value from %1 where item = ?"_s.arg(table)}, {*item},
                           [&](const ResultRow &row) { before = row.value(0); }))
        return SettingWrite::Failed;
    if (before && !before->isNull() && before->toString() == value)
        return SettingWrite::Unchanged;
    const std::optional<QString> text = LiteralText::stored(value, quotes);
    const QString statement = before ? u"update %1 set value = ? where item = ?"_s.arg(table)
                                     : u"insert into %1 (value, item) values(?, ?)"_s.arg(table);
    const bool done = text && statements_.execute({nullptr, statement, Statement::Effect::Rows}, {*text, *item});
    return done ? SettingWrite::Written : SettingWrite::Failed;
}

bool ObjectDataBase::setAndNotify(QLatin1StringView table, const QString &key, const QString &value, Quotes quotes,
                                  Change change, ChangeSet fields)
{
    const SettingWrite result = writeSetting(table, key, value, quotes);
    if (result == SettingWrite::Written)
        notify(change, fields);
    return result != SettingWrite::Failed;
}

QString ObjectDataBase::getGeneralSetting(const QString &key)
{
    return settingOf(general, key);
}

QString ObjectDataBase::getGeneralSetting(const QString &key, quint8 line)
{
    return partForLine(getGeneralSetting(key), line);
}

bool ObjectDataBase::setGeneralSetting(const QString &key, const QString &value, Quotes quotes)
{
    return setAndNotify(general, key, value, quotes, Change::GeneralSetting);
}

bool ObjectDataBase::setGeneralSetting(const QString &key, const QString &value, quint8 line, Quotes quotes)
{
    const std::optional<QString> part = LiteralText::stored(value, quotes);
    if (!part)
        return false;
    // An empty value has no parts, so that the first of them is a blank like any other that nobody wrote.
    const QString whole = getGeneralSetting(key);
    QStringList parts = whole.isEmpty() ? QStringList() : whole.split(u',');
    while (line >= parts.size())
        parts.append(u" "_s);
    parts[line] = *part;
    return setGeneralSetting(key, parts.join(u','), Quotes::Kept);
}

bool ObjectDataBase::generalSettingExists(const QString &key)
{
    return settingExists(general, key);
}

QString ObjectDataBase::getJ1939Setting(const QString &key)
{
    return settingOf(j1939, key);
}

QString ObjectDataBase::getJ1939Setting(const QString &key, quint8 line)
{
    return partForLine(getJ1939Setting(key), line);
}

bool ObjectDataBase::setJ1939Setting(const QString &key, const QString &value)
{
    return !blocked_ && setAndNotify(j1939, key, value, Quotes::Kept, Change::J1939Setting);
}

QString ObjectDataBase::descriptionKey(const QString &key) const
{
    return currentLine_ == 0 ? key : u"%1_%2"_s.arg(key, QString::number(currentLine_));
}

QString ObjectDataBase::getDescriptionSetting(const QString &key)
{
    return settingOf(description, descriptionKey(key));
}

bool ObjectDataBase::setDescriptionSetting(const QString &key, const QString &value)
{
    return setAndNotify(description, descriptionKey(key), value, Quotes::Kept, Change::DescriptionSetting,
                        {.line = currentLine_});
}

bool ObjectDataBase::descriptionSettingExists(const QString &key)
{
    const bool hasSuffix = currentLine_ != 0 && key.endsWith(u"_%1"_s.arg(currentLine_));
    return settingExists(description, hasSuffix ? key : descriptionKey(key));
}

QString ObjectDataBase::getEnergyBusSetting(const QString &key)
{
    return settingOf(energyBus, key);
}

bool ObjectDataBase::setEnergyBusSetting(const QString &key, const QString &value, Quotes quotes)
{
    return setAndNotify(energyBus, key, value, quotes, Change::EnergyBusSetting);
}

bool ObjectDataBase::removeEnergyBusSetting(const QString &key)
{
    return !blocked_ && run("removeEnergyBusSetting", u"delete from EnergyBusSettings where item = ?"_s, {key});
}

QStringList ObjectDataBase::getEnergyBusSettingKeys()
{
    QStringList keys;
    statements_.visit({nullptr, u"select item from EnergyBusSettings"_s}, {},
                      [&](const ResultRow &row) { keys.append(row.text(0)); });
    return keys;
}

QString ObjectDataBase::getMiscSetting(const QString &key)
{
    return settingOf(misc, key);
}

bool ObjectDataBase::setMiscSetting(const QString &key, const QString &value)
{
    return !blocked_ && setAndNotify(misc, key, value, Quotes::Kept, Change::MiscSetting);
}

bool ObjectDataBase::miscSettingExists(const QString &key)
{
    return settingExists(misc, key);
}

void ObjectDataBase::addDescriptionDefaults(quint8 line)
{
    setCurrentLine(line);
    const QString suffix = line == 0 ? QString() : u"_%1"_s.arg(line);
    for (const auto &[key, value] : descriptionDefaults) {
        const QString item = key + suffix;
        if (!settingExists(description, item))
            run("addDescriptionDefaults", u"insert into DescriptionSettings (item, value) values(?, ?)"_s,
                {item, QString(value)});
    }
}

void ObjectDataBase::trimLineLists()
{
    const QList<quint8> lines = getNodeList();
    const quint8 highest = lines.isEmpty() ? quint8{0} : *std::max_element(lines.begin(), lines.end());
    // A key without a row gets one here, with an empty value.
    for (const QString &key : getGeneralSettingKeys())
        setGeneralSetting(key, getGeneralSetting(key).split(u',').mid(0, highest + 1).join(u','), Quotes::Kept);
}
