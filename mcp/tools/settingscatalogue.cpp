#include "mcp/tools/settingscatalogue.h"

#include "mcp/tools/settingsrows.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace {

using SettingsRows::Indication;
using SettingsRows::Row;
using SettingsRows::Section;
using enum Setting::Type;

void addFixedRows(std::vector<Setting> &settings)
{
    for (const Section &section : SettingsRows::sections()) {
        for (const Row &row : section.rows) {
            Setting setting{
                .key = row.key.toString(),
                .group = section.group.toString(),
                .section = section.name.toString(),
                .scope = row.scope,
                .type = row.type,
                .label = row.label.toString(),
                .description = row.description.toString(),
                .requiredKey = row.extras.requiredKey.toString(),
                .falseAsEmpty = row.extras.falseAsEmpty,
                .readOnly = row.extras.readOnly,
                .decimal = row.extras.decimal,
                .min = row.extras.min,
                .max = row.extras.max,
            };
            for (const QStringView item : row.extras.enumValues)
                setting.enumValues.append(item.toString());
            settings.push_back(setting);
        }
    }
}

void addIndicationRows(std::vector<Setting> &settings)
{
    const Setting form{.group = u"stack"_s, .section = u"Indications"_s};
    const auto add = [&settings, &form](const QString &key, Setting::Type type, const QString &label,
                                        const QString &description) -> Setting & {
        Setting &setting = settings.emplace_back(form);
        setting.key = key;
        setting.type = type;
        setting.label = label;
        setting.description = description;
        return setting;
    };
    add(u"enable_dynamic"_s, Bool, u"Enable dynamic registration of indication functions"_s,
        u"An empty value counts as enabled."_s)
        .emptyIsTrue = true;
    for (const Indication &indication : SettingsRows::indications()) {
        if (!indication.countKey.isEmpty()) {
            Setting &count =
                add(indication.countKey.toString(), UInt, u"%1: number of dynamic functions"_s.arg(indication.event),
                    u"Number of indication functions that may be registered dynamically for this event - %1."_s.arg(
                        indication.macro));
            count.decimal = true;
            count.min = 0;
            count.max = 65535;
        }
        if (!indication.functionKey.isEmpty()) {
            add(indication.functionKey.toString(), String, u"%1: static function name"_s.arg(indication.event),
                u"Name of the static indication function for this event."_s);
            add(u"note_%1"_s.arg(indication.functionKey), String, u"%1: notes"_s.arg(indication.event),
                u"Free text about this indication function. It is written as a comment into gen_indication.h, provided "
                "a static function name is set."_s);
        }
    }
}

void addUsdoRows(std::vector<Setting> &settings)
{
    const auto add = [&settings](QStringView key, Setting::Type type, const QString &label) {
        settings.push_back({.key = key.toString(),
                            .group = u"stack"_s,
                            .section = u"USDO"_s,
                            .type = type,
                            .label = label,
                            .requiredKey = u"canfd_supported"_s,
                            .decimal = type == UInt});
    };
    add(u"usdo_server_domain_write_ind_size", UInt, u"USDO Domain Indication size in multiple of 60 bytes"_s);
    add(u"usdo_split_indication_supported", Bool, u"USDO Server Split Indication support"_s);
    for (const Indication &indication : SettingsRows::usdoIndications()) {
        add(indication.countKey, UInt, u"%1: number of dynamic indication functions"_s.arg(indication.event));
        add(indication.functionKey, String, u"%1: static indication function name"_s.arg(indication.event));
    }
}

} // namespace

const std::vector<Setting> &SettingsCatalogue::settings()
{
    static const std::vector<Setting> settings = [] {
        std::vector<Setting> rows;
        addFixedRows(rows);
        addIndicationRows(rows);
        addUsdoRows(rows);
        return rows;
    }();
    return settings;
}

const Setting *SettingsCatalogue::find(const QString &key)
{
    static const QHash<QString, const Setting *> byKey = [] {
        QHash<QString, const Setting *> hash;
        for (const Setting &setting : settings())
            hash.insert(setting.key, &setting);
        return hash;
    }();
    return byKey.value(key);
}
