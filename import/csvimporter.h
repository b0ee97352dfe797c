#pragma once

#include "import/basedataimporter.h"
#include "import/csvrow.h"
#include "store/records/storerecords.h"
#include "texttools/tablerows.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QSet>

#include <optional>

/// Imports a table of objects and sub-objects, one a row, whose columns a header line names; docs/import.md has them.
///
/// A row that cannot be read is dropped without a message, and so is one whose target line the project lacks. Where a
/// table leaves the matter open:
/// - A row with an empty `sub` and the object code of an ARRAY or a RECORD is about the object alone. It names the
///   object for the whole table: a later row of sub-index 0 without an object code is about the sub-object alone.
/// - An empty data type is that of the ARRAY or variable that the row belongs to, else UNSIGNED8.
/// - Sub-index 0 is raised to the highest sub-index only where the import made it: one that the table or the project
///   has may well say less, as that of a PDO mapping does.
class CsvImporter : public BaseDataImporter
{
    Q_OBJECT

public:
    /// A part of the dictionary that a table wants deleted or copied.
    struct ListEntry
    {
        quint16 index = 0;
        quint8 subindex = 0;
        bool wholeObject = false;

        friend bool operator==(const ListEntry &, const ListEntry &) = default;
    };

    CsvImporter();
    ~CsvImporter() override;

    QString lastErrorText() const override { return {}; }

    /// Deletions of the table imported last. The import collects them; it never deletes.
    QList<ListEntry> deletionList() const;
    /// Copies of the table imported last, a source followed by its destination. The import collects them only.
    QList<ListEntry> copyList() const;

protected:
    void read() override;

private:
    using Row = CsvRow;
    struct Place;

    /// What is known of an object that the table speaks of.
    struct ObjectState
    {
        std::optional<StoreRecords::IndexData> object;
        bool hasHeadRow = false;
        bool hasSubZero = false;
        std::optional<StoreRecords::SubIndexData> madeSubZero; ///< not yet in the store
    };

    void handleHeader(const QString &line);
    void handleLine(const QString &line);
    void handleDataLine(const QString &line);
    bool handleDeleteLine(const QString &line);
    bool handleCopyLine(const QString &line);
    void drop(const QString &reason);
    std::optional<Place> placeOf(const Row &row);
    ObjectState &stateOf(const Place &place);
    void importObject(const Place &place, const Row &row, ObjectState &state);
    void provideSubZero(const Place &place, const Row &row, ObjectState &state);
    StoreRecords::SubIndexData recordOf(const Place &place, const Row &row, const StoreRecords::IndexData &object);
    void flush();

    TableRows rows_;
    CsvRow::Places columns_ = {};
    QList<ListEntry> deletions_;
    QList<ListEntry> copies_;
    QSet<quint8> lines_;                       ///< those of the project
    QHash<quint8, QSet<quint16>> lineObjects_; ///< those of the store before the import
    QMap<quint32, ObjectState> objects_;       ///< by line and index
    QList<StoreRecords::SubEntry> entries_;    ///< sub-objects not yet in the store
};
