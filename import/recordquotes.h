#pragma once

#include "nodedict/canopendatatype.h"
#include "store/objectdatabase.h"

#include <algorithm>

/// Foreign texts on their way into the store, whose statements hold most of a record's texts as they stand.
namespace RecordQuotes {

/// The record with its single quotes doubled, but for names and descriptions and for the values of VISIBLE_STRING,
/// where the store does that itself.
inline ObjectDataBase::SUBINDEX_DATA_T withQuotesDoubled(ObjectDataBase::SUBINDEX_DATA_T record)
{
    if (record.datatype != CAN::VisibleString) {
        ObjectDataBase::escapeQuotes(record.defaultvalue);
        ObjectDataBase::escapeQuotes(record.currentvalue);
    }
    ObjectDataBase::escapeQuotes(record.accesstype);
    ObjectDataBase::escapeQuotes(record.allowedaccesstypes);
    ObjectDataBase::escapeQuotes(record.lowlimit);
    ObjectDataBase::escapeQuotes(record.uplimit);
    ObjectDataBase::escapeQuotes(record.varname);
    return record;
}

/// Whether the doubling changes anything.
inline bool needsDoubling(const ObjectDataBase::SUBINDEX_DATA_T &record)
{
    const bool text = record.datatype == CAN::VisibleString;
    const QString *const values[] = {&record.accesstype,
                                     &record.allowedaccesstypes,
                                     &record.lowlimit,
                                     &record.uplimit,
                                     &record.varname,
                                     text ? nullptr : &record.defaultvalue,
                                     text ? nullptr : &record.currentvalue};
    return std::ranges::any_of(values, [](const QString *value) { return value && value->contains(u'\''); });
}

} // namespace RecordQuotes
