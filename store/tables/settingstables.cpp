#include "store/tables/settingstables.h"

#include "store/tables/descriptiondefaults.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto general = "GeneralSettings"_L1;
constexpr auto description = "DescriptionSettings"_L1;
constexpr auto energyBus = "EnergyBusSettings"_L1;
constexpr auto j1939 = "J1939Settings"_L1;
constexpr auto misc = "MiscSettings"_L1;

/// The part of a comma list for a line; a line beyond the end takes the last part.
QString partForLine(const QString &value, quint8 line)
{
    const QStringList parts = value.split(u',');
    return line < parts.size() ? parts.at(line) : parts.last();
}

} // namespace

QStringList SettingsTables::getGeneralSettingKeys()
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

QString SettingsTables::settingOf(QLatin1StringView table, const QString &key)
{
    return statements_.value({nullptr, u"select value from %1 where item = ?"_s.arg(table)}, {key}).toString();
}

QHash<QString, QString> SettingsTables::settingsOf(QLatin1StringView table)
{
    QHash<QString, QString> settings;
    std::ignore = statements_.visit({nullptr, u"select item, value from %1"_s.arg(table)}, {},
                                    [&](const ResultRow &row) { settings.insert(row.text(0), row.text(1)); });
    return settings;
}

QHash<QString, QString> SettingsTables::getGeneralSettings()
{
    return settingsOf(general);
}

QHash<QString, QString> SettingsTables::getJ1939Settings()
{
    return settingsOf(j1939);
}

bool SettingsTables::settingExists(QLatin1StringView table, const QString &key)
{
    return statements_.hasRow({nullptr, u"select item from %1 where item = ?"_s.arg(table)}, {key});
}

/// Writes a value. Of a row that holds the value already nothing is written. A key is a literal text in all tables.
SettingsTables::Write SettingsTables::write(QLatin1StringView table, const QString &key, const QString &value,
                                            Quotes quotes)
{
    const std::optional<QString> item = LiteralText::stored(key, Quotes::Literal);
    if (!item)
        return Write::Failed;
    std::optional<QVariant> before;
    if (!statements_.visit({nullptr, u"select value from %1 where item = ?"_s.arg(table)}, {*item},
                           [&](const ResultRow &row) { before = row.value(0); }))
        return Write::Failed;
    if (before && !before->isNull() && before->toString() == value)
        return Write::Unchanged;
    const std::optional<QString> text = LiteralText::stored(value, quotes);
    const QString statement = before ? u"update %1 set value = ? where item = ?"_s.arg(table)
                                     : u"insert into %1 (value, item) values(?, ?)"_s.arg(table);
    const bool done = text && statements_.execute({nullptr, statement, Statement::Effect::Rows}, {*text, *item});
    return done ? Write::Written : Write::Failed;
}

bool SettingsTables::writeAndNotify(QLatin1StringView table, const QString &key, const QString &value, Quotes quotes,
                                    Change change, const StoreRecords::ChangeSet &fields)
{
    const Write result = write(table, key, value, quotes);
    if (result == Write::Written)
        notify(change, fields);
    return result != Write::Failed;
}

QString SettingsTables::getGeneralSetting(const QString &key)
{
    return settingOf(general, key);
}

QString SettingsTables::getGeneralSetting(const QString &key, quint8 line)
{
    return partForLine(getGeneralSetting(key), line);
}

bool SettingsTables::setGeneralSetting(const QString &key, const QString &value, Quotes quotes)
{
    return writeAndNotify(general, key, value, quotes, Change::GeneralSetting);
}

bool SettingsTables::setGeneralSetting(const QString &key, const QString &value, quint8 line, Quotes quotes)
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

bool SettingsTables::generalSettingExists(const QString &key)
{
    return settingExists(general, key);
}

QString SettingsTables::getJ1939Setting(const QString &key)
{
    return settingOf(j1939, key);
}

QString SettingsTables::getJ1939Setting(const QString &key, quint8 line)
{
    return partForLine(getJ1939Setting(key), line);
}

bool SettingsTables::setJ1939Setting(const QString &key, const QString &value)
{
    return !isBlocked() && writeAndNotify(j1939, key, value, Quotes::Kept, Change::J1939Setting);
}

QString SettingsTables::descriptionKey(const QString &key) const
{
    return currentLine_ == 0 ? key : u"%1_%2"_s.arg(key, QString::number(currentLine_));
}

QString SettingsTables::getDescriptionSetting(const QString &key)
{
    return settingOf(description, descriptionKey(key));
}

bool SettingsTables::setDescriptionSetting(const QString &key, const QString &value)
{
    return writeAndNotify(description, descriptionKey(key), value, Quotes::Kept, Change::DescriptionSetting,
                          {.line = currentLine_});
}

bool SettingsTables::descriptionSettingExists(const QString &key)
{
    const bool hasSuffix = currentLine_ != 0 && key.endsWith(u"_%1"_s.arg(currentLine_));
    return settingExists(description, hasSuffix ? key : descriptionKey(key));
}

QString SettingsTables::getEnergyBusSetting(const QString &key)
{
    return settingOf(energyBus, key);
}

bool SettingsTables::setEnergyBusSetting(const QString &key, const QString &value, Quotes quotes)
{
    return writeAndNotify(energyBus, key, value, quotes, Change::EnergyBusSetting);
}

bool SettingsTables::removeEnergyBusSetting(const QString &key)
{
    return !isBlocked() && run("removeEnergyBusSetting", u"delete from EnergyBusSettings where item = ?"_s, {key});
}

QStringList SettingsTables::getEnergyBusSettingKeys()
{
    return statements_.list({nullptr, u"select item from EnergyBusSettings"_s}, {},
                            [](const ResultRow &row) { return row.text(0); });
}

QString SettingsTables::getMiscSetting(const QString &key)
{
    return settingOf(misc, key);
}

bool SettingsTables::setMiscSetting(const QString &key, const QString &value)
{
    return !isBlocked() && writeAndNotify(misc, key, value, Quotes::Kept, Change::MiscSetting);
}

bool SettingsTables::miscSettingExists(const QString &key)
{
    return settingExists(misc, key);
}

bool SettingsTables::addDescriptionDefaults(quint8 line)
{
    setCurrentLine(line);
    bool done = true;
    const QString suffix = line == 0 ? QString() : u"_%1"_s.arg(line);
    for (const auto &[key, value] : DescriptionDefaults::all) {
        const QString item = key + suffix;
        if (!settingExists(description, item))
            done = run("addDescriptionDefaults", u"insert into DescriptionSettings (item, value) values(?, ?)"_s,
                       {item, QString(value)}) &&
                   done;
    }
    return done;
}

bool SettingsTables::extendLineLists(quint8 line)
{
    const QStringList keys = getGeneralSettingKeys();
    return std::ranges::all_of(keys, [&](const QString &key) {
        return getGeneralSetting(key).isEmpty() ||
               setGeneralSetting(key, getGeneralSetting(key, line), line, Quotes::Kept);
    });
}

bool SettingsTables::trimLineLists(quint8 lastLine)
{
    bool done = true;
    // A key without a row gets one here, with an empty value.
    for (const QString &key : getGeneralSettingKeys()) {
        const QStringList parts = getGeneralSetting(key).split(u',').mid(0, lastLine + 1);
        done = setGeneralSetting(key, parts.join(u','), Quotes::Kept) && done;
    }
    return done;
}

bool SettingsTables::removeLineSettings(quint8 line)
{
    bool done = removeDescription(line);
    done = dropListPart(general, line) && done;
    return dropListPart(j1939, line) && done;
}

bool SettingsTables::removeDescription(quint8 line)
{
    const QString suffix = u"_%1"_s.arg(line);
    QStringList items;
    bool done =
        statements_.visit({"removeNode", u"select item from DescriptionSettings"_s}, {}, [&](const ResultRow &row) {
            if (row.text(0).endsWith(suffix))
                items.append(row.text(0));
        });
    for (const QString &item : std::as_const(items))
        done = run("removeNode", u"delete from DescriptionSettings where item = ?"_s, {item}) && done;
    return done;
}

/// Takes the line's part out of every value of a settings table. That a value is no list is not known here, so a text
/// with commas in it loses a part as well.
bool SettingsTables::dropListPart(QLatin1StringView table, quint8 line)
{
    QList<std::pair<QString, QString>> rows;
    bool done =
        statements_.visit({"removeNode", u"select item, value from %1"_s.arg(table)}, {}, [&](const ResultRow &row) {
            rows.append({row.text(0), row.text(1)});
        });
    const QString typeKey = u"line%1type"_s.arg(line);
    for (const auto &[item, value] : std::as_const(rows)) {
        if (item.contains(typeKey)) {
            done = run("removeNode", u"delete from %1 where item = ?"_s.arg(table), {item}) && done;
            continue;
        }
        QStringList parts = value.split(u',');
        if (line >= parts.size())
            continue;
        parts.removeAt(line);
        done =
            run("removeNode", u"update %1 SET value = ? WHERE item = ?"_s.arg(table), {parts.join(u','), item}) && done;
    }
    return done;
}
