#include "ncx/compare/breaking.h"

#include "check/line/pdo.h"
#include "check/line/storevalue.h"
#include "nodedict/access.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Words of a list in `before` that are not in `after`.
bool losesWord(const DeviceChange &change, const QString &separator)
{
    const QStringList after = change.after.split(separator);
    const QStringList before = change.before.split(separator, Qt::SkipEmptyParts);
    return std::ranges::any_of(before, [&after](const QString &word) { return !after.contains(word); });
}

bool losesProtocol(const DeviceChange &change)
{
    return losesWord(change, u"+"_s);
}

bool losesMapping(const DeviceChange &change)
{
    return change.before != "no"_L1 && losesWord(change, u" and "_s);
}

bool losesAccess(const DeviceChange &change)
{
    const auto reads = [](const QString &access) { return access != CANopen::Access::WriteOnly; };
    return (reads(change.before) && !reads(change.after)) ||
           (CANopen::isWritable(change.before) && !CANopen::isWritable(change.after));
}

bool isSwitchedOff(const DeviceChange &change)
{
    const std::optional<quint64> after = plainValue(change.after);
    return plainValue(change.before).value_or(0) != 0 && after.value_or(0) == 0;
}

bool isRefusedNow(const DeviceChange &change)
{
    return change.after == "yes"_L1;
}

bool isSmaller(const DeviceChange &change)
{
    const quint64 after = plainValue(change.after).value_or(0);
    return after != 0 && after < plainValue(change.before).value_or(0);
}

/// -1, 0 or 1 where the first number is below, equal to or above the second; nothing if one is no number.
std::optional<int> order(const QString &first, const QString &second)
{
    const std::optional<StoreValue> a = StoreValue::parse(first);
    const std::optional<StoreValue> b = StoreValue::parse(second);
    if (!a || !b || a->nodeRelative != b->nodeRelative)
        return std::nullopt;
    if (a->negative != b->negative)
        return a->negative ? -1 : 1;
    const int magnitudes = a->magnitude < b->magnitude ? -1 : a->magnitude > b->magnitude ? 1 : 0;
    return a->negative ? -magnitudes : magnitudes;
}

/// A limit that no number can be read from is taken for a narrower one.
bool isRaised(const DeviceChange &change)
{
    return !change.after.isEmpty() && (change.before.isEmpty() || order(change.after, change.before).value_or(1) > 0);
}

bool isLowered(const DeviceChange &change)
{
    return !change.after.isEmpty() && (change.before.isEmpty() || order(change.after, change.before).value_or(-1) < 0);
}

bool wasInUse(const DeviceChange &change)
{
    const std::optional<StoreValue> before = StoreValue::parse(change.before);
    return !before || (before->magnitude & PDO::disabledBit) == 0;
}

/// CiA 301: another major number means another behaviour on the bus.
bool isOtherMajor(const DeviceChange &change)
{
    constexpr int majorShift = 16;
    return plainValue(change.before).value_or(0) >> majorShift != plainValue(change.after).value_or(0) >> majorShift;
}

constexpr BreakingRule rules[] = {
    {{}, {}, "it is removed"_L1},
    {"project"_L1, "canfd_supported"_L1, "it is another"_L1},
    {"line"_L1, "type"_L1, "a protocol is no longer spoken"_L1, losesProtocol},
    {"line"_L1, "co_node_id"_L1, "it is another"_L1},
    {"line"_L1, "BaudRate_*"_L1, "it is switched off"_L1, isSwitchedOff},
    {"line"_L1, "LSS_Supported"_L1, "it is switched off"_L1, isSwitchedOff},
    {"line"_L1, "startaddress"_L1, "it is another"_L1},
    {"line"_L1, "manufacturercode"_L1, "it is another"_L1},
    {"line"_L1, "industrygroup"_L1, "it is another"_L1},
    {"line"_L1, "vehiclesystem"_L1, "it is another"_L1},
    {"line"_L1, "vehicleinstance"_L1, "it is another"_L1},
    {"line"_L1, "function"_L1, "it is another"_L1},
    {"line"_L1, "functioninstance"_L1, "it is another"_L1},
    {"line"_L1, "ecuinstance"_L1, "it is another"_L1},
    {"line"_L1, "uds_*_id"_L1, "it is another"_L1},
    {"line"_L1, "uds_*_ext_addr"_L1, "it is another"_L1},
    {"object"_L1, "object code"_L1, "it is another"_L1},
    {"object"_L1, "data type"_L1, "it is another"_L1},
    {"object"_L1, "access"_L1, "it can no longer be read, or written"_L1, losesAccess},
    {"object"_L1, "read refused"_L1, "it is refused now"_L1, isRefusedNow},
    {"object"_L1, "write refused"_L1, "it is refused now"_L1, isRefusedNow},
    {"object"_L1, "PDO mapping"_L1, "a direction is lost"_L1, losesMapping},
    {"object"_L1, "size"_L1, "it is smaller"_L1, isSmaller},
    {"object"_L1, "low limit"_L1, "it is higher, or new"_L1, isRaised},
    {"object"_L1, "high limit"_L1, "it is lower, or new"_L1, isLowered},
    {"object"_L1, "COB-ID"_L1, "it is another, and was not switched off"_L1, wasInUse},
    {"object"_L1, "mapping"_L1, "it is another"_L1},
    {"object"_L1, "device type"_L1, "it is another"_L1},
    {"object"_L1, "vendor-ID"_L1, "it is another"_L1},
    {"object"_L1, "product code"_L1, "it is another"_L1},
    {"object"_L1, "revision number"_L1, "its major number, the upper 16 bits, is another"_L1, isOtherMajor},
    {"PGN"_L1, "length"_L1, "it is another"_L1},
    {"SPN"_L1, "data type"_L1, "it is another"_L1},
    {"SPN"_L1, "first bit"_L1, "it is another"_L1},
    {"SPN"_L1, "bits"_L1, "it is another"_L1},
    {"CAN-ID"_L1, "length"_L1, "it is another"_L1},
    {"signal"_L1, "data type"_L1, "it is another"_L1},
    {"signal"_L1, "first bit"_L1, "it is another"_L1},
    {"signal"_L1, "bits"_L1, "it is another"_L1},
};

/// "*" stands for any text.
bool matches(QLatin1StringView pattern, const QString &text)
{
    const qsizetype star = pattern.indexOf('*'_L1);
    if (star < 0)
        return text == pattern;
    return text.size() >= pattern.size() - 1 && text.startsWith(pattern.first(star)) &&
           text.endsWith(pattern.sliced(star + 1));
}

} // namespace

const BreakingRule *BreakingRule::find(const DeviceChange &change)
{
    if (change.kind == DeviceChange::Kind::Added)
        return nullptr;
    const QString part = nameOf(change.place.kind);
    const auto found = std::ranges::find_if(rules, [&](const BreakingRule &rule) {
        return (rule.of.isEmpty() || rule.of == part) && matches(rule.property, change.property) &&
               (!rule.test || rule.test(change));
    });
    return found == std::end(rules) ? nullptr : found;
}

std::span<const BreakingRule> BreakingRule::all()
{
    return rules;
}
