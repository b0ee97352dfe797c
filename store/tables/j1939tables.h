#pragma once

#include "store/tables/keptlist.h"
#include "store/tables/keyedrows.h"
#include "store/tables/spncache.h"

/// The parameter groups and signals of a J1939 line: `PGNs%1` and `SPNs%1`. A direction is `StoreRecords::transmit` or
/// `receive`; 0 in a list operation means both.
class J1939Tables : public TableFamily
{
public:
    using PGN = StoreRecords::PGN;
    using SPN = StoreRecords::SPN;

    explicit J1939Tables(TableContext &context);

    [[nodiscard]] bool addPGN(quint8 line, quint32 number, const PGN &data);
    [[nodiscard]] bool addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, const SPN &data,
                              Quotes quotes = Quotes::Literal);
    [[nodiscard]] bool removePGN(quint8 line, quint32 number, quint8 direction);
    [[nodiscard]] bool removeSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction);
    bool pgnExists(quint8 line, quint32 number, quint8 direction);
    bool spnExists(quint8 line, quint32 pgn, quint8 direction, quint32 spn);
    /// True if some PGN of the line is a safety PGN (`issafe`).
    bool anySafePGN(quint8 line);

    [[nodiscard]] std::optional<PGN> getPGN(quint8 line, quint32 number, quint8 direction);
    QString getPGNName(quint8 line, quint32 number, quint8 direction);
    quint16 getPGNMappingCount(quint8 line, quint32 number, quint8 direction);
    QList<quint32> getPGNList(quint8 line, quint8 direction, bool leaveOutSafe = false);
    /// All PGNs of a line in one scan, receive before transmit and ascending in each.
    QList<PGN> getAllPGNs(quint8 line);
    /// The names of all PGNs of one direction, by number, from one scan.
    QHash<quint32, QString> getPGNNames(quint8 line, quint8 direction);

    [[nodiscard]] std::optional<SPN> getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn);
    QString getSPNName(quint8 line, quint32 pgn, quint8 direction, quint32 spn);
    quint32 getSPNDataType(quint8 line, quint32 pgn, quint8 direction, quint32 spn);
    QList<quint32> getSPNList(quint8 line, quint32 pgn, quint8 direction);
    /// All SPNs of a line in one scan, in the order of their places in each PGN.
    QList<SPN> getAllSPNs(quint8 line);
    /// Those of one PGN, in the same order.
    QList<SPN> getSPNs(quint8 line, quint32 pgn, quint8 direction);

    /// Loads the SPNs of a line into the cache that `getSPN` and `getSPNList` ask first.
    [[nodiscard]] bool cacheSPNs(quint8 line);
    void clearSPNCache() { cache_.clear(); }
    void dropKeptGroups();

private:
    void completeColumns(quint8 line);

    // The statements, "update PGNs%1 set ..." and the like, stand there.
    const KeyedRows<PGN> pgns_;
    const KeyedRows<SPN> spns_;
    SpnCache cache_;
    KeptList<PGN> keptPgns_;
    KeptList<SPN> keptSpns_;
};
