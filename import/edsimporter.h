#pragma once

#include "import/basedataimporter.h"
#include "store/records/storerecords.h"

#include <QHash>
#include <QList>

#include <bitset>

struct CANopenSubindex;
class EdsParser;

namespace CANopen {
struct CANopenIndex;
}

/// Imports a device description of CANopen, EDS or DCF (CiA 306): objects and sub-objects, the descriptions kept in
/// ";;" comments, and the settings of the description itself.
///
/// Where a description announces more PDOs than it defines objects for, the missing communication and mapping objects
/// are made, for at most the 512 PDOs of each direction that exist.
class EDSImporter : public BaseDataImporter
{
    Q_OBJECT

public:
    EDSImporter();
    ~EDSImporter() override;

    QString lastErrorText() const override { return {}; }

protected:
    void read() override;

private Q_SLOTS:
    void newIndex(const CANopen::CANopenIndex &index);
    void newSubIndex(const CANopenSubindex &sub);

private:
    void addCompactSubs(const CANopen::CANopenIndex &object);
    void setArrayType(quint16 index, quint16 dataType);
    void importDescription();
    void importComments();

    std::shared_ptr<EdsParser> parser_;
    QList<StoreRecords::SubEntry> entries_;
    std::bitset<0x10000> existing_;                  ///< objects that the line has by now
    QHash<quint16, StoreRecords::IndexData> arrays_; ///< those of this file
};
