#pragma once

#include "check/line/defaultcobids.h"
#include "store/tables/storerecords.h"

#include <QHash>
#include <QSet>

#include <optional>
#include <vector>

class ObjectDataBase;

struct CheckedSubindex
{
    quint16 index = 0;
    quint8 subindex = 0;
    StoreRecords::SubIndexData data;

    /// Application variable behind a Variable, its placeholders filled in; empty for any other implementation.
    QString variable(quint8 line) const;
};

struct CheckedObject
{
    quint16 index = 0;
    StoreRecords::IndexData data;
    std::vector<CheckedSubindex> subs; ///< ascending

    /// Null where the object has no such subindex.
    const CheckedSubindex *sub(quint8 subindex) const;
    /// The number that a subindex holds; nothing where it is missing or holds none.
    std::optional<quint64> value(quint8 subindex) const;
    /// True for an ARRAY or RECORD.
    bool isComplex() const;
    /// True if there are elements beside subindex 0.
    bool hasElements() const { return !subs.empty() && subs.back().subindex > 0; }
};

/// A signal of a message, with what its place tells.
struct CheckedSignal
{
    StoreRecords::SPN data;
    int position = 1;             ///< in its message, from 1
    quint32 bits = 0;             ///< width
    bool ascends = true;          ///< starts behind the start of the signal before it
    bool overlapsEarlier = false; ///< shares bits with a signal before it
};

struct CheckedPGN
{
    StoreRecords::PGN data;
    std::vector<CheckedSignal> spns; ///< in the order of their places in the message
    quint32 bits = 0;                ///< from the first bit to the end of the last signal

    quint8 direction() const { return data.direction; }
};

struct CheckedCanId
{
    StoreRecords::CANID data;
    std::vector<CheckedSignal> signalList; ///< by number
    quint32 bits = 0;                      ///< sum of the signals

    quint8 direction() const { return data.direction; }
};

/// What the settings say about a line.
struct LineSettings
{
    quint8 granularity = 0; ///< bits that a PDO mapping goes by (CiA 306): 0 where the mapping is fixed
    bool canFd = false;
    bool bitwiseMapping = false;
    bool limitCheckEnabled = false;
    bool nmtMaster = false;
    bool safetySupport = false;   ///< SAE J1939-76
    std::optional<quint8> nodeId; ///< where it is fixed, from 1 to 127
    QList<DefaultCobId> defaultCobIds;

    quint32 frameBits() const { return canFd ? 512 : 64; }
};

/// A line as the rules see it: read from the store once, each part when it is first asked for.
class CheckedLine
{
public:
    CheckedLine(ObjectDataBase &store, quint8 line);

    quint8 number() const { return line_; }
    const LineSettings &settings() const { return settings_; }
    /// All objects, ascending.
    const std::vector<CheckedObject> &objects();
    /// Null where the line has no such object, or subindex.
    const CheckedObject *object(quint16 index);
    const CheckedSubindex *sub(quint16 index, quint8 subindex);
    /// Receive before transmit, ascending in each, as the next.
    const std::vector<CheckedPGN> &pgns();
    const std::vector<CheckedCanId> &canIds();

    // Who was the first with something that others may not have, too. Null or nothing for what nobody has.

    const CheckedSubindex *firstUserOf(const QString &variable);
    const CheckedSignal *firstSpnWith(const QString &variable);
    const CheckedSignal *firstSignalWith(const QString &variable);
    /// Index of the first enabled PDO with the COB-ID of this one.
    std::optional<quint16> firstPdoLike(const CheckedObject &communication);
    bool hasCanId(quint32 id, quint8 direction);

    /// Takes a subindex that was corrected in the store over into the loaded objects.
    void replace(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data);

private:
    /// What makes two COB-IDs the same; nothing for one that is no number.
    std::optional<quint64> cobIdKey(const CheckedObject &communication) const;

    ObjectDataBase &store_;
    quint8 line_;
    LineSettings settings_;
    std::optional<std::vector<CheckedObject>> objects_;
    std::optional<std::vector<CheckedPGN>> pgns_;
    std::optional<std::vector<CheckedCanId>> canIds_;
    std::optional<QHash<QString, const CheckedSubindex *>> variables_;
    std::optional<QHash<QString, const CheckedSignal *>> spnVariables_;
    std::optional<QHash<QString, const CheckedSignal *>> signalVariables_;
    std::optional<QHash<quint64, quint16>> pdos_;
    std::optional<QSet<quint64>> canIdKeys_;
};
