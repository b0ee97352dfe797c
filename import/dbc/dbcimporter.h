#pragma once

#include "import/basedataimporter.h"
#include "import/dbc/dbcconversion.h"

/// Imports the messages of a DBC file into a J1939 line, a raw CAN line, or one that speaks both; `DbcConversion` tells
/// what becomes of them. A message that the line has already is replaced with its signals.
///
/// From a file that this program wrote, and where the device is one of its nodes, the line also takes the source
/// address of the device.
class DbcImporter : public BaseDataImporter
{
    Q_OBJECT

public:
    DbcImporter();
    ~DbcImporter() override;
    Q_DISABLE_COPY_MOVE(DbcImporter)

    /// Line and fault of a file that is none, or the node that it lacks.
    QString lastErrorText() const override { return error_; }
    /// The device among the nodes of the file: what it sends is transmitted, what it is a receiver of is received.
    void setNode(const QString &node) { node_ = node; }
    /// PGNs that a project may not define, since the stack handles them.
    void setHandledPgns(const QList<quint32> &pgns) { handledPgns_ = QSet<quint32>(pgns.begin(), pgns.end()); }

protected:
    void read() override;

private:
    bool hasNode(const CANdb::Database &database);
    DbcConversion::Options optionsFor(const CANdb::Database &database) const;
    void write(const DbcConversion::Message &message);
    void writeSettings(const DbcConversion &conversion);

    QString node_;
    QSet<quint32> handledPgns_;
    QString error_;
};
