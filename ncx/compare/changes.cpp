#include "ncx/compare/changes.h"

#include "ncx/compare/breaking.h"
#include "store/objectdatabase.h"

#include <QJsonArray>
#include <QSet>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;
using Kind = DeviceChange::Kind;

namespace {

/// Walks two lists that ascend by a key, side by side: `visit` gets the parts of a key, null where a side has none.
template <class List, class KeyOf, class Visit>
void sideBySide(const List &before, const List &after, const KeyOf &keyOf, const Visit &visit)
{
    auto old = before.begin();
    auto now = after.begin();
    while (old != before.end() || now != after.end()) {
        const bool hasOld = old != before.end() && (now == after.end() || keyOf(*old) <= keyOf(*now));
        const bool hasNow = now != after.end() && (old == before.end() || keyOf(*now) <= keyOf(*old));
        Q_ASSUME(hasOld || hasNow); // the lesser of the two keys, or the only one
        visit(hasOld ? &*old : nullptr, hasNow ? &*now : nullptr);
        old += hasOld ? 1 : 0;
        now += hasNow ? 1 : 0;
    }
}

/// Signals of a CAN-ID have no number of their own on the bus: two are the same if they have one name, or else if they
/// begin at one bit.
QList<std::pair<const CheckedSignal *, const CheckedSignal *>> pairsOf(const CheckedCanId &before,
                                                                       const CheckedCanId &after)
{
    QHash<QString, const CheckedSignal *> byName;
    QHash<quint32, const CheckedSignal *> byBit;
    for (const CheckedSignal &signal : after.signalList)
        byName.insert(signal.data.name, &signal);
    QHash<const CheckedSignal *, const CheckedSignal *> partners;
    QSet<const CheckedSignal *> taken;
    for (const CheckedSignal &signal : before.signalList) {
        const CheckedSignal *same = signal.data.name.isEmpty() ? nullptr : byName.value(signal.data.name);
        if (same && !taken.contains(same)) {
            partners.insert(&signal, same);
            taken.insert(same);
        }
    }
    for (const CheckedSignal &signal : after.signalList) {
        if (!taken.contains(&signal))
            byBit.insert(signal.data.bitposition, &signal);
    }
    QList<std::pair<const CheckedSignal *, const CheckedSignal *>> pairs;
    for (const CheckedSignal &signal : before.signalList) {
        const CheckedSignal *same = partners.value(&signal);
        if (!same)
            same = byBit.take(signal.data.bitposition);
        taken.insert(same);
        pairs.emplace_back(&signal, same);
    }
    for (const CheckedSignal &signal : after.signalList) {
        if (!taken.contains(&signal))
            pairs.emplace_back(nullptr, &signal);
    }
    return pairs;
}

std::vector<const CheckedSignal *> byNumber(const CheckedPGN &pgn)
{
    std::vector<const CheckedSignal *> spns;
    for (const CheckedSignal &spn : pgn.spns)
        spns.push_back(&spn);
    std::ranges::stable_sort(spns, {}, [](const CheckedSignal *spn) { return spn->data.spnnumber; });
    return spns;
}

} // namespace

QJsonObject DeviceChange::toJson() const
{
    static const QStringList kinds{u"added"_s, u"removed"_s, u"changed"_s};
    QJsonObject json = place.toJson();
    json.insert(u"change"_s, kinds.at(static_cast<int>(kind)));
    json.insert(u"breaking"_s, rule != nullptr);
    if (!title.isEmpty())
        json.insert(u"name"_s, title);
    if (kind == Kind::Changed) {
        json.insert(u"property"_s, property);
        json.insert(u"before"_s, before);
        json.insert(u"after"_s, after);
    }
    return json;
}

DeviceChanges::DeviceChanges(ComparedDevice &before, ComparedDevice &after, std::optional<quint8> only)
    : before_(before)
    , after_(after)
    , scope_(before.isDescription() || after.isDescription() ? Scope::Description : Scope::Project)
{
    if (scope_ == Scope::Description) {
        const auto lineOf = [only](const ComparedDevice &device) {
            return device.isDescription() || !only ? device.canOpenLine().value_or(0) : *only;
        };
        line_ = lineOf(before.isDescription() ? after : before);
        compareLines(before.line(lineOf(before)), after.line(lineOf(after)));
        return;
    }
    if (!only)
        compareSettings({}, FactsOf::projectSettings(before.store()), FactsOf::projectSettings(after.store()));
    const auto isWanted = [only](quint8 line) { return !only || line == *only; };
    sideBySide(
        before.lines(), after.lines(), [](quint8 line) { return line; },
        [&](const quint8 *old, const quint8 *now) {
            line_ = old ? *old : *now;
            if (!isWanted(line_))
                return;
            if (old && now) {
                compareLines(before_.line(line_), after_.line(line_));
                return;
            }
            DeviceLine &line = (old ? before_ : after_).line(line_);
            lines_.append({.line = line_, .before = old ? &line : nullptr, .after = now ? &line : nullptr});
            tellWhole(old ? Kind::Removed : Kind::Added, place(PartKind::Line), line.name());
        });
}

QList<DeviceChange> DeviceChanges::breaking() const
{
    QList<DeviceChange> list;
    std::ranges::copy_if(changes_, std::back_inserter(list), [](const DeviceChange &change) { return change.rule; });
    return list;
}

QJsonObject DeviceChanges::toJson(const QString &before, const QString &after, const QList<DeviceChange> &changes)
{
    constexpr int version = 1;
    QJsonArray list;
    qint64 breaking = 0;
    for (const DeviceChange &change : changes) {
        list.append(change.toJson());
        breaking += change.rule ? 1 : 0;
    }
    return {{u"format"_s, u"ncx-diff"_s}, {u"version"_s, version},  {u"old"_s, before}, {u"new"_s, after},
            {u"changes"_s, list},         {u"breaking"_s, breaking}};
}

PartPlace DeviceChanges::place(PartKind kind, quint32 number, quint32 sub, quint8 direction) const
{
    return {.kind = kind, .line = line_, .number = number, .sub = sub, .direction = direction};
}

void DeviceChanges::tell(DeviceChange change)
{
    change.rule = BreakingRule::find(change);
    changes_.append(std::move(change));
}

void DeviceChanges::tellWhole(Kind kind, const PartPlace &place, const QString &title)
{
    tell({.kind = kind, .place = place, .title = title});
}

void DeviceChanges::compareFacts(const PartPlace &place, const QString &title, const Facts &before, const Facts &after)
{
    for (qsizetype i = 0; i < before.size(); ++i) {
        // A value that has got another meaning is told by what it was.
        const Fact &old = before.at(i);
        const Fact &now = after.at(i);
        if (old.differsFrom(now))
            tell({.place = place, .title = title, .property = old.name, .before = old.value, .after = now.value});
    }
}

void DeviceChanges::compareSettings(const PartPlace &place, Facts before, Facts after)
{
    std::ranges::stable_sort(before, {}, &Fact::name);
    std::ranges::stable_sort(after, {}, &Fact::name);
    sideBySide(
        before, after, [](const Fact &fact) { return fact.name; },
        [&](const Fact *old, const Fact *now) {
            const Fact none{.name = (old ? old : now)->name};
            const Fact &was = old ? *old : none;
            const Fact &is = now ? *now : none;
            // What a description does not say is not another value.
            const bool isTold = scope_ == Scope::Project || (!was.value.isEmpty() && !is.value.isEmpty());
            if (isTold && was.differsFrom(is))
                tell({.place = place, .property = none.name, .before = was.value, .after = is.value});
        });
}

void DeviceChanges::compareLines(DeviceLine &before, DeviceLine &after)
{
    lines_.append({.line = line_, .before = &before, .after = &after});
    compareFacts(place(PartKind::Line), after.name(), FactsOf::line(before_.store(), before, scope_),
                 FactsOf::line(after_.store(), after, scope_));
    compareSettings(place(PartKind::Line), FactsOf::lineSettings(before_.store(), before, scope_),
                    FactsOf::lineSettings(after_.store(), after, scope_));
    compareObjects(before, after);
    if (scope_ == Scope::Description)
        return;
    comparePgns(before, after);
    compareCanIds(before, after);
    compareServices();
}

void DeviceChanges::compareObjects(DeviceLine &before, DeviceLine &after)
{
    sideBySide(
        before.objects(), after.objects(), [](const CheckedObject &object) { return object.index; },
        [this](const CheckedObject *old, const CheckedObject *now) {
            const CheckedObject &any = now ? *now : *old;
            const PartPlace where = place(PartKind::Object, any.index);
            if (!old || !now) {
                tellWhole(old ? Kind::Removed : Kind::Added, where, any.data.name);
                return;
            }
            if (!(old->data == now->data))
                compareFacts(where, any.data.name, FactsOf::object(*old, scope_), FactsOf::object(*now, scope_));
            compareSubindices(*old, *now);
        });
}

void DeviceChanges::compareSubindices(const CheckedObject &before, const CheckedObject &after)
{
    sideBySide(
        before.subs, after.subs, [](const CheckedSubindex &sub) { return sub.subindex; },
        [&](const CheckedSubindex *old, const CheckedSubindex *now) {
            const CheckedSubindex &any = now ? *now : *old;
            const PartPlace where = place(PartKind::Subindex, any.index, any.subindex);
            const QString title = (now ? after : before).isComplex() ? any.data->name : after.data.name;
            if (!old || !now)
                tellWhole(old ? Kind::Removed : Kind::Added, where, title);
            else if (!(*old->data == *now->data))
                compareFacts(where, title, FactsOf::subindex(before, *old, scope_),
                             FactsOf::subindex(after, *now, scope_));
        });
}

void DeviceChanges::comparePgns(DeviceLine &before, DeviceLine &after)
{
    const auto keyOf = [](const CheckedPGN &pgn) {
        return std::pair(pgn.direction() == StoreRecords::transmit, pgn.data.number);
    };
    sideBySide(before.pgns(), after.pgns(), keyOf, [this](const CheckedPGN *old, const CheckedPGN *now) {
        const StoreRecords::PGN &any = now ? now->data : old->data;
        const PartPlace where = place(PartKind::Pgn, any.number, 0, any.direction);
        if (!old || !now) {
            tellWhole(old ? Kind::Removed : Kind::Added, where, any.name);
            return;
        }
        compareFacts(where, any.name, FactsOf::pgn(*old), FactsOf::pgn(*now));
        sideBySide(
            byNumber(*old), byNumber(*now), [](const CheckedSignal *spn) { return spn->data.spnnumber; },
            [&](const CheckedSignal *const *oldSpn, const CheckedSignal *const *newSpn) {
                const StoreRecords::SPN &spn = newSpn ? (*newSpn)->data : (*oldSpn)->data;
                const PartPlace spot = place(PartKind::Spn, any.number, spn.spnnumber, any.direction);
                if (!oldSpn || !newSpn)
                    tellWhole(oldSpn ? Kind::Removed : Kind::Added, spot, spn.name);
                else if (!((*oldSpn)->data == spn))
                    compareFacts(spot, spn.name, FactsOf::signal(**oldSpn), FactsOf::signal(**newSpn));
            });
    });
}

void DeviceChanges::compareCanIds(DeviceLine &before, DeviceLine &after)
{
    const auto keyOf = [](const CheckedCanId &canId) {
        return std::pair(canId.direction() == StoreRecords::transmit, canId.data.id);
    };
    sideBySide(before.canIds(), after.canIds(), keyOf, [this](const CheckedCanId *old, const CheckedCanId *now) {
        const StoreRecords::CANID &any = now ? now->data : old->data;
        const PartPlace where = place(PartKind::CanId, any.id, 0, any.direction);
        if (!old || !now) {
            tellWhole(old ? Kind::Removed : Kind::Added, where, any.name);
            return;
        }
        compareFacts(where, any.name, FactsOf::canId(*old), FactsOf::canId(*now));
        compareSignals(*old, *now);
    });
}

void DeviceChanges::compareSignals(const CheckedCanId &before, const CheckedCanId &after)
{
    for (const auto &[old, now] : pairsOf(before, after)) {
        Q_ASSUME(old || now);
        const StoreRecords::SPN &any = now ? now->data : old->data;
        const PartPlace where = place(PartKind::Signal, after.data.id, any.spnnumber, after.direction());
        if (!old || !now)
            tellWhole(old ? Kind::Removed : Kind::Added, where, any.name);
        else
            compareFacts(where, any.name, FactsOf::signal(*old), FactsOf::signal(*now));
    }
}

void DeviceChanges::compareServices()
{
    sideBySide(
        FactsOf::services(before_.store(), line_), FactsOf::services(after_.store(), line_),
        [](const FactsOf::Service &service) { return service.sid; },
        [this](const FactsOf::Service *old, const FactsOf::Service *now) {
            const PartPlace where = place(PartKind::Service, (now ? now : old)->sid);
            if (old && now)
                compareFacts(where, now->name, old->facts, now->facts);
            else
                tellWhole(old ? Kind::Removed : Kind::Added, where, (now ? now : old)->name);
        });
}
