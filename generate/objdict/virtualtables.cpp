#include "generate/objdict/virtualtables.h"

#include "generate/base/codewriter.h"
#include "generate/model/dictionarycollect.h"
#include "generate/model/linesettings.h"
#include "generate/model/serviceobjects.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using Code::hex;

namespace {

class Collector
{
public:
    Collector(const DictionaryTables &tables, bool dynamic)
        : tables_(tables)
        , dynamic_(dynamic)
    {
    }

    VirtualTables collect()
    {
        for (const DictionaryLine &line : tables_.lines) {
            for (const LineObject &object : line.objects) {
                if (object.isVirtual())
                    addObject(object);
            }
        }
        return std::move(result_);
    }

private:
    void addObject(const LineObject &object)
    {
        AssignRow row{.index = object.index,
                      .highest = object.highestSubindex(),
                      .objectType = DictionaryCollect::objectTypeWord(object.data.objecttype)};
        starts_.insert(objectKey(object.line, object.index), static_cast<quint32>(result_.description.size()));
        for (const StoreRecords::SubEntry &sub : object.subs) {
            if (sub.data.implementation != CANopen::Implementation::VirtualObject)
                continue;
            const bool owned = sub.line == 0 || !sub.data.sharedlines;
            const quint16 number = owned ? nextNumber(sub.data.datatype) : quint16{0};
            // A row that stands for a tail leaves the numbers behind its own to that tail.
            if (sub.subindex > object.compactLimit)
                continue;
            ++row.subs;
            if (owned)
                result_.description.push_back(description(object, sub, number));
        }
        const quint8 owner = object.subs.front().data.sharedlines ? quint8{0} : object.line;
        row.start = starts_.value(objectKey(owner, object.index));
        result_.assign.push_back(row);
    }

    /// BOOLEAN and small numbers are stored as bytes, so that all of these count together.
    quint16 nextNumber(quint16 dataType)
    {
        const auto type = valueTypeOf(dataType);
        return type ? valueCounts_[valueTypePlace(*type)]++ : otherCounts_[dataType]++;
    }

    VirtualDescriptionRow description(const LineObject &object, const StoreRecords::SubEntry &sub, quint16 number)
    {
        const quint32 key = subKey(sub);
        VirtualDescriptionRow row{.index = object.index,
                                  .subindex = sub.subindex,
                                  .dataType = sub.data.datatype,
                                  .attributes = DictionaryCollect::accessAttributes(sub.data),
                                  .defaultPosition = tables_.defaultIndexMap.value(key),
                                  .lowerPosition = tables_.lowerLimitIndexMap.value(key),
                                  .upperPosition = tables_.upperLimitIndexMap.value(key)};
        row.valueIsIndex = ServiceObjects::value(object.index, sub.subindex) == object.index;
        row.value = row.valueIsIndex ? object.index : number;
        row.attributes.setFlag(Attribute::Dynamic, dynamic_);
        row.attributes.setFlag(Attribute::Compact,
                               object.compactLimit != notCompact && sub.subindex == object.compactLimit);
        return row;
    }

    const DictionaryTables &tables_;
    bool dynamic_;
    VirtualTables result_;
    QHash<quint32, quint32> starts_;
    std::array<quint16, valueTypeCount> valueCounts_{};
    QHash<quint16, quint16> otherCounts_; ///< by data type
};

} // namespace

QString VirtualDescriptionRow::dataName() const
{
    return u"V_%1_%2"_s.arg(hex(index), hex(subindex));
}

VirtualTables collectVirtualTables(const DictionaryTables &tables, bool dynamic)
{
    return Collector(tables, dynamic).collect();
}

bool hasVirtualObjects(ObjectDataBase &store)
{
    return std::ranges::any_of(LineSettings::stackLines(store), [&](quint8 line) {
        return std::ranges::any_of(LineDictionary(store, line).objects, &LineObject::isVirtual);
    });
}
