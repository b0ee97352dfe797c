#pragma once

#include "store/records/storerecords.h"

#include <QString>

/// The fields of the store's records by their names, for projects and expectations that are written as text.
namespace TestSupport::RecordFields {

/// A number in decimal or with 0x; "tx" and "rx" are the directions. Anything else fails the test.
quint32 number(const QString &text);

/// Sets the fields that "name=it's; datatype=7; metadata=key:value,key:value" names. "\n" is a line break.
template <class Record>
void assign(Record &record, const QString &fields);

/// The fields that are not as in a new record, in the same form.
template <class Record>
QString described(Record record);

} // namespace TestSupport::RecordFields
