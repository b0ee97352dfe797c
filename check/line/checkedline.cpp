#include "check/line/checkedline.h"

#include "check/line/pdo.h"
#include "check/line/storevalue.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"

#include <algorithm>

QString CheckedSubindex::variable(quint8 line) const
{
    if (data->implementation != CANopen::Implementation::Variable)
        return {};
    return Helper::substituteVariables(data->varname.trimmed(), index, subindex, line);
}

const CheckedSubindex *CheckedObject::sub(quint8 subindex) const
{
    const auto it = std::ranges::lower_bound(subs, subindex, {}, &CheckedSubindex::subindex);
    return it != subs.end() && it->subindex == subindex ? &*it : nullptr;
}

std::optional<quint64> CheckedObject::value(quint8 subindex) const
{
    const CheckedSubindex *found = sub(subindex);
    return found ? plainValue(found->data->defaultvalue) : std::nullopt;
}

bool CheckedObject::isComplex() const
{
    return data.objecttype == CANopen::Array || data.objecttype == CANopen::Record;
}

CheckedLine::CheckedLine(ObjectDataBase &store, quint8 line)
    : store_(store)
    , line_(line)
    , readAt_(store.writes().moment())
    , settings_(LineReader::settings(store, line))
    , objects_(store, line)
    , pgns_(store, line)
    , canIds_(store, line)
{
}

CheckedLine::Changes CheckedLine::update()
{
    Changes changes;
    for (std::size_t kind = 0; kind < WriteLog::kinds; ++kind)
        changes.written[kind] = store_.writes().since(readAt_, line_, static_cast<WriteLog::Kind>(kind));
    readAt_ = store_.writes().moment();
    LineSettings settings = LineReader::settings(store_, line_);
    changes.settings = settings != settings_;
    settings_ = std::move(settings);
    objects_.update(changes.of(CheckedObject::kind));
    pgns_.update(changes.of(CheckedPGN::kind));
    canIds_.update(changes.of(CheckedCanId::kind));
    pdos_.reset();
    return changes;
}

const CheckedSubindex *CheckedLine::sub(quint16 index, quint8 subindex)
{
    const CheckedObject *found = object(index);
    return found ? found->sub(subindex) : nullptr;
}

const CheckedSubindex *CheckedLine::firstUserOf(const QString &variable)
{
    const auto first = objects_.firstUserOf(variable);
    return first ? &first->subject.subs[first->part] : nullptr;
}

const CheckedSignal *CheckedLine::firstSpnWith(const QString &variable)
{
    const auto first = pgns_.firstUserOf(variable);
    return first ? &first->subject.spns[first->part] : nullptr;
}

const CheckedSignal *CheckedLine::firstSignalWith(const QString &variable)
{
    const auto first = canIds_.firstUserOf(variable);
    return first ? &first->subject.signalList[first->part] : nullptr;
}

std::optional<quint64> CheckedLine::cobIdKey(const CheckedObject &communication) const
{
    const std::optional<StoreValue> cobId = PDO::cobIdOf(communication);
    if (!cobId)
        return {};
    const quint64 canId = cobId->magnitude & CAN::identifierBits;
    if (!cobId->nodeRelative)
        return canId;
    // Without a fixed node-id a relative COB-ID can only be held against another.
    constexpr quint64 relativeMark = quint64{1} << 32;
    return settings_.nodeId ? canId + *settings_.nodeId : canId | relativeMark;
}

std::optional<quint16> CheckedLine::firstPdoLike(const CheckedObject &communication)
{
    if (!pdos_) {
        pdos_.emplace();
        for (const CheckedObject &object : objects()) {
            const auto key = PDO::isCommunication(object.index) ? cobIdKey(object) : std::nullopt;
            if (key && PDO::isEnabled(&object) && !pdos_->contains(*key))
                pdos_->insert(*key, object.index);
        }
    }
    const auto key = cobIdKey(communication);
    const auto first = key ? pdos_->constFind(*key) : pdos_->cend();
    return first != pdos_->cend() ? std::optional(*first) : std::nullopt;
}

bool CheckedLine::hasCanId(quint32 id, quint8 direction)
{
    return canIds_.find(WriteLog::messageKey(id, direction)) != nullptr;
}

void CheckedLine::replace(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data)
{
    pdos_.reset();
    CheckedObject *object = objects_.find(index);
    if (!object)
        return;
    const auto sub = std::ranges::lower_bound(object->subs, subindex, {}, &CheckedSubindex::subindex);
    if (sub == object->subs.end() || sub->subindex != subindex)
        return;
    const QString variable = sub->variable(line_);
    sub->data = std::make_shared<const StoreRecords::SubIndexData>(data);
    if (sub->variable(line_) != variable)
        objects_.forgetVariables();
}
