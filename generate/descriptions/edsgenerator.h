#pragma once

#include "generate/base/filegenerator.h"
#include "store/records/storerecords.h"

#include <QStringList>

class ObjectDataBase;

/// Which of a line's device descriptions is meant.
struct EdsVariant
{
    QString tag{};          ///< attribute `eds_define` of the objects that are in no other; empty for the general file
    bool extended = false;  ///< with the objects of CANopen FD
    bool classical = false; ///< the partner, for devices without FD, of an extended file; changes only the file's name

    /// True for what the file holds: all without a tag, and what has this one.
    bool holds(const StoreRecords::Metadata &metadata) const;
};

/// The tags of a line in the order in which objects and subindices have them, the empty one of the general file first.
QStringList edsTags(ObjectDataBase &store, quint8 line);

/// Writes the Electronic Data Sheet of a CANopen line (CiA 306).
///
/// A tag beats the word "_classical" in the file's name, so that of a tagged variant the classical file replaces the
/// extended one. Characters of a tag that would leave the folder become "_".
class EDSGenerator : public FileGenerator
{
    Q_OBJECT

public:
    using FileGenerator::FileGenerator;

    void setVariant(const EdsVariant &variant) { variant_ = variant; }
    QString fileName() const override;

protected:
    QString jobName() const override;
    void write(Utf8Sink &sink) override;

private:
    EdsVariant variant_;
};
