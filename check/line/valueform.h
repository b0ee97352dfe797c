#pragma once

#include "store/records/storerecords.h"

#include <optional>

/// How the texts of default values and limits are read, by their data type. Limits are read as the tables of the
/// dictionary have them: one that is left out beside the other is that of the type, a text that is no number is 0, and
/// a number is cut to the width of the type.
namespace ValueForm {

/// True for a type that the stack can hold.
bool isSupported(quint16 dataType);
/// True for a default value that can be read in the form of its type, of which UNSIGNED7 has none. In the unsigned
/// types, which identifiers have, a value may be relative to the node-id: the stack works that out.
bool isReadable(const QString &value, quint16 dataType);
/// False for a default value that is beyond one of its limits. A value relative to the node-id is worked out where
/// that is known, and fits where it is not.
bool fitsLimits(const StoreRecords::SubIndexData &data, std::optional<quint8> nodeId);

} // namespace ValueForm
