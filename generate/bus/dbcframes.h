#pragma once

#include "candb/candb.h"
#include "generate/model/linemessages.h"

#include <QHash>
#include <QMap>
#include <QStringList>

#include <utility>

/// A signal of a frame as a bus database knows it.
struct DbcSignal
{
    QString name = {};
    QString comment = {};
    quint32 startBit = 0;
    quint32 bits = 0;
    bool isSigned = false;
    CANdb::ValueType valueType = CANdb::ValueType::Integer;
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
    QStringList leftOut = {}; ///< signals whose bits others have, in the words of a comment

    /// The comment, and what had no room in the frame.
    QString fullComment() const;
};

/// The frames of a line.
///
/// Names that are taken get a number behind them, names that begin with a digit or are keywords of the format an
/// underscore before them. Signals without bits are left out: there is nothing of them on the bus.
class DbcFrames
{
public:
    enum class Form
    {
        /// Messages that have one identifier, such as those of both directions, are one frame with the signals of all:
        /// what is equal in name and bits is one signal, and what overlaps another is left out.
        OneFrame,
        /// Each message is a frame, as the project has it; frames of one identifier may have one name.
        AllMessages
    };

    explicit DbcFrames(Form form)
        : form_(form)
    {
    }
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
    /// A name in the frame of that place.
    using SignalName = std::pair<qsizetype, QString>;

    void add(DbcFrame frame, const LineMessage &message);
    qsizetype placeFor(DbcFrame frame);
    void addSignal(qsizetype place, DbcSignal signal, const LineMessage &message);
    bool overlaps(qsizetype place, const DbcSignal &signal) const;

    Form form_;
    QList<DbcFrame> frames_;
    QHash<quint32, qsizetype> frameById_;
    QHash<QString, quint32> frameNames_; ///< with the identifier that has the name
    QHash<QString, int> frameNumbers_;   ///< the highest numbers behind names
    QHash<SignalName, qsizetype> signalPlaces_;
    QHash<SignalName, int> signalNumbers_;                    ///< the highest numbers behind names
    QMap<std::pair<qsizetype, quint32>, quint32> signalEnds_; ///< of bits, by frame and first bit; no two overlap
};
