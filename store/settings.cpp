#include "store/settings.h"

#include "store/objectdatabase.h"
#include "texttools/numbertext.h"

#include <algorithm>
#include <array>
#include <span>

using namespace Qt::StringLiterals;

namespace {

using Form = Settings::Form;
using Table = Settings::Table;

/// The lines that a list is meant for. One without a protocol counts where CANopen does, as its objects do.
enum class Lines
{
    Any,
    CanOpen,
    J1939
};

/// What switches a setting on.
enum class On
{
    AboveZero,
    One,       ///< any other number is off
    UnlessZero ///< no number at all is on
};

struct Kind
{
    Form form = Form::OneValue;
    Lines lines = Lines::Any;
    On on = On::AboveZero;
};

struct Row
{
    QLatin1StringView key;
    Kind kind;
};

constexpr Kind anyLine{.form = Form::PerLine};
constexpr Kind canOpenLine{.form = Form::PerLine, .lines = Lines::CanOpen};
constexpr Kind j1939Line{.form = Form::PerLine, .lines = Lines::J1939};
constexpr Kind freeText{.form = Form::Text};
constexpr Kind exactlyOne{.on = On::One};

constexpr std::array generalKinds{
    Row{"additional_cob_count"_L1, anyLine},
    Row{"all_targets"_L1, exactlyOne},
    Row{"applicationheader"_L1, freeText},
    Row{"co_node_id"_L1, canOpenLine},
    Row{"co_node_id_fct"_L1, {.form = Form::TextPerLine, .lines = Lines::CanOpen}},
    Row{"co_srdo_interval"_L1, freeText},
    Row{"compact_array_description"_L1, exactlyOne},
    Row{"drv_filter"_L1, exactlyOne},
    Row{"drv_group_filter"_L1, exactlyOne},
    Row{"enable_dynamic"_L1, {.on = On::UnlessZero}},
    Row{"endian"_L1, exactlyOne},
    Row{"gen_csharp_props"_L1, exactlyOne},
    Row{"generate_cpp_output"_L1, exactlyOne},
    Row{"generate_generation_counter"_L1, exactlyOne},
    Row{"hw_defines"_L1, freeText},
    Row{"init_static_variables"_L1, exactlyOne},
    Row{"isotp_client_con"_L1, anyLine},
    Row{"isotp_server_con"_L1, anyLine},
    Row{"isotp_supported"_L1, exactlyOne},
    Row{"max_slave_assignment"_L1, canOpenLine},
    Row{"new_init_structure"_L1, exactlyOne},
    Row{"nmtmaster"_L1, canOpenLine},
    Row{"overwrite_predef"_L1, anyLine},
    Row{"receivebuffersize"_L1, anyLine},
    Row{"routing_counts"_L1, anyLine},
    Row{"special_virtual_objects"_L1, freeText},
    Row{"static_memory_specifier"_L1, freeText},
    Row{"static_srdo_data"_L1, exactlyOne},
    Row{"target_id"_L1, freeText},
    Row{"transmitbuffersize"_L1, anyLine},
    Row{"uds_bl_setting"_L1, exactlyOne},
    Row{"uds_client_cnt"_L1, anyLine},
    Row{"uds_ext_addressing"_L1, anyLine},
    Row{"uds_functional_request_ext_addr"_L1, anyLine},
    Row{"uds_functional_request_id"_L1, anyLine},
    Row{"uds_physical_request_ext_addr"_L1, anyLine},
    Row{"uds_physical_request_id"_L1, anyLine},
    Row{"uds_physical_response_ext_addr"_L1, anyLine},
    Row{"uds_physical_response_id"_L1, anyLine},
    Row{"uds_rdbip_canid"_L1, anyLine},
    Row{"uds_server_active"_L1, anyLine},
    Row{"uds_static_indication"_L1, exactlyOne},
    Row{"usdo_client_cnt"_L1, canOpenLine},
    Row{"usdo_client_enabled"_L1, canOpenLine},
    Row{"usdo_server_cnt"_L1, canOpenLine},
    Row{"usdo_server_enabled"_L1, canOpenLine},
    Row{"use_core_headers"_L1, freeText},
    Row{"user_defines"_L1, freeText},
};

constexpr std::array j1939Kinds{
    Row{"cia510clientsupport"_L1, {.form = Form::PerLine, .lines = Lines::J1939, .on = On::One}},
    Row{"cia510serversupport"_L1, {.form = Form::PerLine, .lines = Lines::J1939, .on = On::One}},
    Row{"j1939adapter"_L1, {.form = Form::PerLine, .lines = Lines::J1939, .on = On::One}},
};

constexpr std::array textBeginnings{"fct_"_L1, "note_"_L1, "uds_fct_"_L1};
constexpr std::array textEndings{"_function"_L1, "_name"_L1, "_targetid"_L1, "_defines"_L1};

Kind kindOf(const QString &key, Table table)
{
    const std::span<const Row> rows = table == Table::J1939 ? std::span<const Row>(j1939Kinds) : generalKinds;
    const auto row = std::ranges::find_if(rows, [&key](const Row &each) { return each.key == key; });
    if (row != rows.end())
        return row->kind;
    if (table == Table::J1939)
        return j1939Line;
    const bool isText =
        std::ranges::any_of(textBeginnings, [&](QLatin1StringView part) { return key.startsWith(part); }) ||
        std::ranges::any_of(textEndings, [&](QLatin1StringView part) { return key.endsWith(part); });
    return isText ? freeText : Kind{};
}

bool isMeant(Lines lines, const LineProtocols &protocols)
{
    switch (lines) {
    case Lines::CanOpen:
        return protocols.canOpen || !protocols.any();
    case Lines::J1939:
        return protocols.j1939;
    case Lines::Any:
        break;
    }
    return true;
}

bool switchesOn(const QString &value, On on)
{
    const std::optional<quint32> number = NumberText::byPrefix(value);
    switch (on) {
    case On::One:
        return number == 1U;
    case On::UnlessZero:
        return number != 0U;
    case On::AboveZero:
        break;
    }
    return number.value_or(0) > 0;
}

bool isList(Form form)
{
    return form == Form::PerLine || form == Form::TextPerLine;
}

/// The part of a list for a line.
QString partOf(const QStringList &parts, quint8 line)
{
    return line < parts.size() ? parts.at(line) : parts.last();
}

} // namespace

Settings Settings::valuesOf(ObjectDataBase &store, Table table)
{
    Settings settings(store, table);
    settings.lines();
    settings.values_ = table == Table::General ? store.getGeneralSettings() : store.getJ1939Settings();
    settings.store_ = nullptr;
    return settings;
}

const QList<Settings::Line> &Settings::lines() const
{
    if (!lines_) {
        lines_.emplace();
        for (const quint8 line : store_->getNodeList()) {
            if (line < firstLineBeyondStack)
                lines_->append({line, LineProtocols::ofLine(*store_, line)});
        }
    }
    return *lines_;
}

Settings::Form Settings::form(const QString &key, Table table)
{
    return kindOf(key, table).form;
}

QString Settings::text(const QString &key) const
{
    if (!store_)
        return values_.value(key);
    return table_ == Table::General ? store_->getGeneralSetting(key) : store_->getJ1939Setting(key);
}

QString Settings::text(const QString &key, quint8 line) const
{
    const QString whole = text(key);
    return isList(form(key, table_)) ? partOf(whole.split(u','), line) : whole;
}

bool Settings::isOn(const QString &key) const
{
    const Kind kind = kindOf(key, table_);
    const QString whole = text(key);
    if (!isList(kind.form))
        return switchesOn(whole, kind.on);
    const QStringList parts = whole.split(u',');
    return std::ranges::any_of(lines(), [&](const Line &line) {
        return isMeant(kind.lines, line.protocols) && switchesOn(partOf(parts, line.number), kind.on);
    });
}

bool Settings::isOn(const QString &key, quint8 line) const
{
    return switchesOn(text(key, line), kindOf(key, table_).on);
}

quint32 Settings::number(const QString &key) const
{
    const Kind kind = kindOf(key, table_);
    const QString whole = text(key);
    if (!isList(kind.form))
        return NumberText::byPrefix(whole).value_or(0);
    const QStringList parts = whole.split(u',');
    quint32 highest = 0;
    for (const Line &line : lines()) {
        if (isMeant(kind.lines, line.protocols))
            highest = std::max(highest, NumberText::byPrefix(partOf(parts, line.number)).value_or(0));
    }
    return highest;
}

quint32 Settings::number(const QString &key, quint8 line) const
{
    return NumberText::byPrefix(text(key, line)).value_or(0);
}
