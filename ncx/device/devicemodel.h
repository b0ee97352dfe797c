#pragma once

#include "check/line/checkedline.h"
#include "ncx/device/frame.h"
#include "store/lineprotocols.h"

#include <QList>
#include <QString>

#include <vector>

class ObjectDataBase;

/// A PDO as its communication and mapping objects describe it (CiA 301).
struct Pdo
{
    const CheckedObject *communication = nullptr;
    const CheckedObject *mapping = nullptr; ///< null where it is missing
    bool isTransmit = false;
    int number = 1; ///< among those of its direction, from 1
    bool isEnabled = false;
    QString cobId = {};        ///< as it is written, "$NODEID+0x180"
    QString transmission = {}; ///< "event-driven", "every 4th SYNC", ...; empty if it is not told
    quint64 inhibitTime = 0;   ///< 0.1 ms
    quint64 eventTimer = 0;    ///< ms
    Frame frame = {};
};

/// A line of a device, read once.
class DeviceLine
{
public:
    DeviceLine(ObjectDataBase &store, quint8 line);

    quint8 number() const { return line_.number(); }
    const LineProtocols &protocols() const { return protocols_; }
    /// "CANopen", "CANopen+J1939", ...; empty for a line without a type.
    QString typeName() const;
    const QString &name() const { return name_; }
    /// The node-id, the function that delivers it, or nothing.
    const QString &nodeId() const { return nodeId_; }

    const std::vector<CheckedObject> &objects() { return line_.objects(); }
    const CheckedObject *object(quint16 index) { return line_.object(index); }
    const std::vector<CheckedPGN> &pgns() { return line_.pgns(); }
    const std::vector<CheckedCanId> &canIds() { return line_.canIds(); }
    /// Receive before transmit, ascending.
    const std::vector<Pdo> &pdos();
    /// The PDO of a communication or mapping object; null for any other.
    const Pdo *pdoOf(quint16 index);

private:
    Pdo pdoOf(const CheckedObject &communication);

    CheckedLine line_;
    LineProtocols protocols_;
    QString name_;
    QString nodeId_;
    std::optional<std::vector<Pdo>> pdos_;
};

Frame frameOf(const CheckedPGN &pgn);
Frame frameOf(const CheckedCanId &canId);
/// "0x18f" for a CAN-ID, with "x" behind an extended one.
QString canIdText(quint32 id);
/// "transmit" or "receive".
QString directionText(quint8 direction);
/// "Managed Const", or the variable of a Variable.
QString storageText(const StoreRecords::SubIndexData &data);
QString storageText(const StoreRecords::SPN &data);
