#pragma once

#include "generate/docs/busmessages.h"

#include <QHash>
#include <QSet>

#include <utility>

/// A signal of a frame as a bus database knows it.
struct DbcSignal
{
    QString name = {};
    QString comment = {};
    quint32 startBit = 0;
    quint32 bits = 0;
    bool isSigned = false;
    bool isText = false;
    bool isApplicationVariable = false;
    QString variable = {};
};

/// A frame as a bus database knows it: with the identifier of a DBC file, and names that are identifiers.
struct DbcFrame
{
    quint32 id = 0;
    QString name = {};
    QString comment = {};
    quint32 length = 0; ///< bytes, up to the last bit of a signal
    quint32 cycleTimeMs = 0;
    bool isJ1939 = false;
    QList<DbcSignal> signalList = {};
};

/// The frames of a line, each identifier once.
///
/// A PGN or CAN-ID that is both sent and received has one frame with the signals of both; what is equal in name and
/// bits is one signal. Names that are taken get a number behind them, and names that begin with a digit an underscore
/// before it. Signals without bits are left out: there is nothing of them on the bus.
class DbcFrames
{
public:
    /// The raw CAN-IDs of a line.
    void addCanIds(ObjectDataBase &store, quint8 line);
    /// The PGNs of a line, as the device with this address would send them.
    void addPGNs(ObjectDataBase &store, quint8 line, quint8 sourceAddress);
    /// What the J1939 stack sends by itself.
    void addStackMessages(quint8 sourceAddress, bool withDm1);

    const QList<DbcFrame> &frames() const { return frames_; }

    /// Identifier of a PGN (SAE J1939-21) with the mark of 29 bits. A PGN of format PDU1, which has a destination in
    /// place of its lowest byte, goes to the null address 0xFE.
    static quint32 idOfPGN(quint32 pgn, quint8 priority, quint8 sourceAddress);

private:
    void add(DbcFrame frame, const BusMessage &message);
    void addSignal(qsizetype frame, DbcSignal signal);

    QList<DbcFrame> frames_;
    QHash<quint32, qsizetype> frameById_;
    QSet<QString> frameNames_;
    QHash<QString, int> frameNumbers_;                             ///< the highest numbers behind names
    QHash<std::pair<qsizetype, QString>, qsizetype> signalByName_; ///< by the place of the frame
    QHash<std::pair<qsizetype, QString>, int> signalNumbers_;
};
