#pragma once

#include "import/basedataimporter.h"
#include "store/records/storerecords.h"

#include <QHash>
#include <QList>

#include <optional>

/// Imports a profile database: a text, in Latin-1, of one line for each object and sub-object, whose fields ":"
/// separates. The layout follows CiA 306 part 2, of which the fields named in docs/profiles.md are read.
///
/// A line may end early: the fields that it lacks are empty. A data type that nobody knows is 0. A sub-object whose
/// index or sub-index is no number that fits goes to 0x0000:00, where no object is and nothing is lost. The index range
/// holds for objects only: a sub-object comes in with any index, and is nobody's until the line has its object.
class CODBImporter : public BaseDataImporter
{
    Q_OBJECT

public:
    CODBImporter();
    ~CODBImporter() override;

    QString lastErrorText() const override { return {}; }

    /// Whether a copy line "$1401=1400" makes object 0x1401 as a copy of 0x1400 as it stands by then. If not, which is
    /// what a new importer does, it is read as a sub-object line, which leaves a row at 0x0000:00 that no object owns.
    void setResolveCopyLines(bool on) { resolveCopyLines_ = on; }

protected:
    void read() override;

private:
    void importLine(const QString &line);
    bool importCopy(const QString &line);
    void importObject(const QStringList &fields);
    void importVariable(quint16 index, StoreRecords::IndexData object, const QStringList &fields);
    void importSubObject(const QStringList &fields);
    void fitToObject(quint16 index, quint8 subindex, StoreRecords::SubIndexData &record);
    std::optional<StoreRecords::IndexData> &knownObject(quint16 index);
    void addObject(quint16 index, const StoreRecords::IndexData &object);
    void addEntry(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &record);
    void flush();

    bool resolveCopyLines_ = false;
    qsizetype lineNumber_ = 0;              ///< of the line being read
    QList<StoreRecords::SubEntry> entries_; ///< sub-objects read and not yet in the store
    /// The objects asked for so far, those that the line lacks included.
    QHash<quint16, std::optional<StoreRecords::IndexData>> objects_;
};
