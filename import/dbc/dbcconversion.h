#pragma once

#include "candb/candb.h"
#include "import/dbc/dbcdescriptions.h"
#include "store/records/storerecords.h"

#include <QHash>
#include <QSet>

struct ImportReport;

/// What the messages of a DBC file are in a project, and what of them it cannot hold.
///
/// Frames become PGNs with SPNs (SAE J1939-21) or CAN-IDs with data elements, as the protocols of the line and the
/// file's own marks tell. Scales, units, ranges, names of values and multiplexing, for which a project has no place, go
/// into the descriptions. A signal in Motorola byte order that lies in more than one byte, one of a width that no data
/// type has, and one whose bits another signal has, are left out.
class DbcConversion
{
public:
    struct Options
    {
        QString node = {}; ///< the device among the file's nodes; empty for a file that describes the device alone
        bool j1939 = false;
        bool rawCan = false;
        QSet<quint32> handledPgns = {};    ///< that the stack knows by itself
        QSet<quint32> takenSpns = {};      ///< that new numbers may not have
        QSet<QString> takenVariables = {}; ///< of the line
    };

    struct Message
    {
        bool isPgn = false;
        StoreRecords::PGN head = {}; ///< of a CAN-ID: its id, texts, times and direction
        QList<StoreRecords::SPN> items = {};
        int line = 0; ///< of the file
    };

    DbcConversion(const CANdb::Database &database, Options options, ImportReport &report);

    /// The numbers that the frames of a file may have as PGNs and as CAN-IDs.
    static QSet<quint32> numbersOf(const CANdb::Database &database);
    QList<Message> messages();
    /// The source address of the frames that the device sends, if it is one for all of them and an address.
    std::optional<quint8> sourceAddress() const;
    /// True if the file tells of the DM1 that the stack sends.
    bool hasOwnDm1() const { return hasOwnDm1_; }

private:
    using Direction = quint8;

    bool isOwnForm() const;
    bool isParameterGroup(const CANdb::Message &frame) const;
    bool isOfOwnStack(const CANdb::Message &frame, quint32 pgn);
    std::optional<Direction> directionOf(const CANdb::Message &frame, quint32 number, bool isPgn);
    std::optional<Message> messageOf(const CANdb::Message &frame);
    bool takeKey(Message &message, const CANdb::Message &frame);
    void addSignals(Message &message, const CANdb::Message &frame);
    std::optional<StoreRecords::SPN> itemOf(const CANdb::Message &frame, const CANdb::Signal &signal);
    void nameItem(StoreRecords::SPN &item, const Message &message, const CANdb::Signal &signal);
    bool setType(StoreRecords::SPN &item, const CANdb::Message &frame, const CANdb::Signal &signal);
    quint16 timeOf(const CANdb::Message &frame, const QString &attribute);
    QString value(const CANdb::Attributes &attributes, const QString &name) const;
    QString word(const CANdb::Attributes &attributes, const QString &name) const;
    void drop(int line, const QString &what);
    void note(int line, const QString &what);

    const CANdb::Database &database_;
    Options options_;
    ImportReport &report_;
    QHash<QString, const CANdb::AttributeDefinition *> definitions_;
    bool isOwn_ = false; ///< this program has written the file
    bool hasOwnDm1_ = false;
    QSet<quint8> sources_;
    QHash<std::pair<quint64, bool>, QString> names_; ///< of messages by number, direction and kind
    QHash<bool, quint32> last_;                      ///< number of the last message, of PGNs and of CAN-IDs
    QHash<bool, bool> areReceived_; ///< the same kinds: the messages that the device receives have begun
    QSet<quint32> spnsOfMessage_;
    quint32 nextSpn_;
    int others_ = 0; ///< frames that are not the device's
    DbcDescriptions descriptions_;
};
