#pragma once

#include "store/storerecords.h"

#include <QList>

class ObjectDataBase;

/// A PGN or a raw CAN-ID with its signals, as the documents and bus databases print it. The placeholders in names and
/// descriptions are filled.
struct BusMessage
{
    /// A PGN, or a CAN-ID as the project has it.
    quint32 number = 0;
    quint8 direction = 0;
    quint8 priority = 0; ///< of a PGN
    QString name = {};
    QString description = {};
    quint32 cycleTimeMs = 0; ///< 0 for acyclic
    quint32 inhibitTimeMs = 0;
    QList<StoreRecords::SPN> signalList = {};

    bool isTransmitted() const { return direction == StoreRecords::transmit; }
    /// The identifier without what the project marks beside it.
    quint32 canId() const { return number & 0x1FFFFFFF; }
    /// A CAN-ID of 29 bits, whatever its value: marked by a bit above these.
    bool isExtended() const { return number > 0x1FFFFFFF; }

    /// PGNs of a line, the transmitted ones first, each direction in the store's order; SPNs in their order in the PGN.
    static QList<BusMessage> pgns(ObjectDataBase &store, quint8 line);
    /// CAN-IDs of a line likewise; data elements by their numbers.
    static QList<BusMessage> canIds(ObjectDataBase &store, quint8 line);

    /// Bits that a signal takes in its message: its own size for texts and byte strings, for others that of its type.
    static quint32 bitsOf(const StoreRecords::SPN &signal);
};
