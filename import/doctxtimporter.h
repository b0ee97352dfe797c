#pragma once

#include "import/basedataimporter.h"
#include "store/records/storerecords.h"

#include <QList>
#include <QStringView>

#include <optional>

/// Imports the textual documentation of a J1939 line, as the program writes it: PGNs, each followed by its SPNs, whose
/// fields tabs separate; docs/import.md has them.
///
/// A PGN that cannot be read, or that is outside the index range, is left out with all that belongs to it. A number
/// that its field in the project cannot hold counts as unreadable; an inhibit time alone is cut to 16 bits.
class DOCTXTImporter : public BaseDataImporter
{
    Q_OBJECT

public:
    DOCTXTImporter();
    ~DOCTXTImporter() override;

    QString lastErrorText() const override { return {}; }

protected:
    void read() override;

private:
    void importFile();
    void importLine(const QString &line);
    bool importPGN(const QList<QStringView> &fields);
    void writePGN();
    void importDescription(const QList<QStringView> &fields);
    bool importSPN(const QList<QStringView> &fields);

    qsizetype lineNumber_ = 0; ///< of the line being read
    quint32 pgn_ = 0;
    std::optional<StoreRecords::PGN> read_; ///< the current PGN, until it is written
    qsizetype readAt_ = 0;                  ///< its line
    quint8 direction_ = 0;                  ///< of the current PGN; 0 if there is none
    quint32 position_ = 0;                  ///< of the next SPN in its PGN
};
