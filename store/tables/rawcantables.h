#pragma once

#include "store/tables/keptlist.h"
#include "store/tables/keyedrows.h"

/// The identifiers and data elements of a raw CAN line: `CANIDs%1` and `DataElements%1`. A direction is
/// `StoreRecords::transmit` or `receive`; 0 in a list operation means both.
class RawCanTables : public TableFamily
{
public:
    using CANID = StoreRecords::CANID;
    using DataElement = StoreRecords::DataElement;

    explicit RawCanTables(TableContext &context);

    [[nodiscard]] bool addCANID(quint8 line, quint32 id, const CANID &data);
    /// An update leaves `pos` and `bitsize` of the element as they were first inserted.
    [[nodiscard]] bool addDataElement(quint8 line, quint32 canid, quint8 direction, quint32 number,
                                      const DataElement &data, Quotes quotes = Quotes::Literal);
    [[nodiscard]] bool removeCANID(quint8 line, quint32 id, quint8 direction);
    [[nodiscard]] bool removeDataElement(quint8 line, quint32 canid, quint32 number, quint8 direction);
    bool canidExists(quint8 line, quint32 id, quint8 direction);
    bool dataElementExists(quint8 line, quint32 canid, quint8 direction, quint32 number);

    [[nodiscard]] std::optional<CANID> getCANID(quint8 line, quint32 id, quint8 direction);
    QString getCANIDName(quint8 line, quint32 id, quint8 direction);
    QList<quint32> getCANIDList(quint8 line, quint8 direction);
    /// All CAN-IDs of a line in one scan, receive before transmit and ascending in each.
    QList<CANID> getAllCANIDs(quint8 line);
    /// The names of all CAN-IDs of one direction, by id, from one scan.
    QHash<quint32, QString> getCANIDNames(quint8 line, quint8 direction);

    [[nodiscard]] std::optional<DataElement> getDataElement(quint8 line, quint32 canid, quint8 direction,
                                                            quint32 number);
    QString getDataElementName(quint8 line, quint32 canid, quint8 direction, quint32 number);
    QList<quint32> getDataElementList(quint8 line, quint32 canid, quint8 direction);
    /// All data elements of a line in one scan, by number, with the CAN-ID in `pgnnumber`.
    QList<DataElement> getAllDataElements(quint8 line);
    /// Those of one CAN-ID, in the same order.
    QList<DataElement> getDataElements(quint8 line, quint32 canid, quint8 direction);

    void dropKeptIds();

private:
    // The statements, "update CANIDs%1 set ..." and the like, stand there.
    const KeyedRows<CANID> canids_;
    const KeyedRows<DataElement> elements_;
    KeptList<CANID> keptIds_;
    KeptList<DataElement> keptElements_;
};
