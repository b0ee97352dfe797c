#pragma once

#include "mcp/tools/settingscatalogue.h"

#include <span>

/// The settings of the catalogue as tables, which settingscatalogue.cpp makes its rows of.
namespace SettingsRows {

/// What few rows have.
struct Extras
{
    bool decimal = false;
    bool falseAsEmpty = false;
    bool readOnly = false;
    std::optional<quint32> min = {};
    std::optional<quint32> max = {};
    QStringView requiredKey = {};
    std::span<const QStringView> enumValues = {};
};

/// A setting without its group and section.
struct Row
{
    QStringView key;
    Setting::Scope scope;
    Setting::Type type;
    QStringView label;
    QStringView description;
    Extras extras = {};
};

struct Section
{
    QStringView group;
    QStringView name;
    std::span<const Row> rows;
};

/// An event of the stack: functions may be registered for it at run time, or one be bound at compile time.
struct Indication
{
    QStringView event;
    QStringView countKey;
    QStringView functionKey;
    QStringView macro = {};
};

/// The settings that stand by themselves, in their order.
std::span<const Section> sections();
/// The events of section "Indications", of which each makes up to three settings.
std::span<const Indication> indications();
/// The events of section "USDO".
std::span<const Indication> usdoIndications();

} // namespace SettingsRows
