#pragma once

#include "store/records/storerecords.h"

#include <QByteArray>

/// The stored form of the attributes of an object or subindex: a sorted map of string to string in the framework's
/// binary stream format, version 17.
namespace MetadataBlob {

/// Empty for anything that is no such map, the "0" of a row without attributes included.
StoreRecords::Metadata parse(const QByteArray &bytes);
QByteArray serialise(const StoreRecords::Metadata &metadata);

} // namespace MetadataBlob
