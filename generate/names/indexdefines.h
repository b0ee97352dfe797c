#pragma once

#include <QList>
#include <QString>

#include <functional>

class ObjectDataBase;

/// A name of gen_indices.h, ready to print.
struct IndexDefine
{
    QString name;  ///< without the line's prefix
    QString value; ///< C number with its suffix
    QString comment{};
    bool ofSubindex = false;
};

/// The names of one item of the project.
struct IndexDefines
{
    QString prefix; ///< "L%1_", or empty
    QList<IndexDefine> defines{};
};

/// Reads the names of the lines and calls `take` with those of each item, in their order.
///
/// Per line: its objects from 0x1000 up with their subindices, its raw CAN-IDs with their data elements, its PGNs with
/// their SPNs, each of the receive direction first, and the parts of the J1939 address claim (SAE J1939-81) that a
/// J1939 line always has.
///
/// A name that a line has used gets a distinguishing end. That end is repeated with a count for as long as the whole
/// name is taken too, and a name is never defined twice with different values, whatever the project calls its items:
/// the header is always valid C.
///
/// `cancelled` is asked before each object; true skips the rest of that line's objects.
void collectIndexDefines(ObjectDataBase &store, const QList<quint8> &lines, bool withPrefix,
                         const std::function<bool()> &cancelled, const std::function<void(const IndexDefines &)> &take);

/// The name that closes the list: not an item of the project, and always 0.
inline constexpr auto numberOfEntriesName = "S_NUMBER_OF_ENTRIES";
inline constexpr auto numberOfEntriesValue = "0x0u";
