#pragma once

#include "check/line/defaultcobids.h"
#include "store/records/storerecords.h"
#include "store/statements/writelog.h"

#include <memory>
#include <optional>
#include <vector>

// What rules look at: the objects and messages of a line as they were read from the store.

struct CheckedSubindex
{
    quint16 index = 0;
    quint8 subindex = 0;
    std::shared_ptr<const StoreRecords::SubIndexData>
        data; ///< never null; mostly part of the list that the store has read

    /// Names it in its object.
    quint32 number() const { return subindex; }
    /// Application variable behind a Variable, its placeholders filled in; empty for any other implementation.
    QString variable(quint8 line) const;
};

struct CheckedObject
{
    static constexpr WriteLog::Kind kind = WriteLog::Kind::Object;

    quint16 index = 0;
    StoreRecords::IndexData data;
    std::vector<CheckedSubindex> subs; ///< ascending

    /// What names the object among all of its line, and where it stands among them; likewise of a message.
    quint64 key() const { return index; }
    static constexpr quint64 place(quint64 key) { return key; }

    const std::vector<CheckedSubindex> &parts() const { return subs; }

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

    quint32 number() const { return data.spnnumber; }
    QString variable(quint8 /*line*/) const { return data.varname; }
};

/// Orders the messages of a line by their keys: receive before transmit, ascending in each.
constexpr quint64 placeOfMessage(quint64 key)
{
    return (0xff - (key & 0xff)) << 32 | key >> 8;
}

struct CheckedPGN
{
    static constexpr WriteLog::Kind kind = WriteLog::Kind::Pgn;

    StoreRecords::PGN data;
    std::vector<CheckedSignal> spns; ///< in the order of their places in the message
    quint32 bits = 0;                ///< from the first bit to the end of the last signal

    quint64 key() const { return WriteLog::messageKey(data.number, data.direction); }
    static constexpr quint64 place(quint64 key) { return placeOfMessage(key); }
    quint8 direction() const { return data.direction; }
    const std::vector<CheckedSignal> &parts() const { return spns; }
};

struct CheckedCanId
{
    static constexpr WriteLog::Kind kind = WriteLog::Kind::CanId;

    StoreRecords::CANID data;
    std::vector<CheckedSignal> signalList; ///< by number
    quint32 bits = 0;                      ///< sum of the signals

    quint64 key() const { return WriteLog::messageKey(data.id, data.direction); }
    static constexpr quint64 place(quint64 key) { return placeOfMessage(key); }
    quint8 direction() const { return data.direction; }
    const std::vector<CheckedSignal> &parts() const { return signalList; }
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
    friend bool operator==(const LineSettings &, const LineSettings &) = default;
};
