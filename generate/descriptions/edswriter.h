#pragma once

#include "generate/base/codewriter.h"
#include "generate/descriptions/edsgenerator.h"
#include "generate/model/linedictionary.h"

class ObjectDataBase;

/// Prints an Electronic Data Sheet (CiA 306), section by section.
///
/// The format gives a value one line, so that line breaks and other control characters of names and values become
/// blanks. It has no field for a description either: these stand in comment lines that begin ";;", at the end of the
/// section that they are about. `EdsParser` reads all of it back.
class EdsWriter
{
public:
    /// `dictionary` has to outlive the writer.
    EdsWriter(Utf8Sink &sink, ObjectDataBase &store, const LineDictionary &dictionary, EdsVariant variant);

    /// FileInfo to DummyUsage.
    void writeHead(const QString &baseName);
    /// The lists of mandatory, manufacturer's and optional objects, of those that get sections, ascending.
    void writeObjectLists(std::span<const LineObject> objects);
    void writeObject(const LineObject &object);
    /// The text that the user adds to the end of the file.
    void writeAdditionalSections();

private:
    QString setting(const QString &key) const;
    QString identity(quint8 subindex) const;
    bool hasMultiplexedPdo() const;
    void writeComments();
    void writeFileInfo(const QString &project);
    void writeDeviceInfo();
    void writeDummyUsage();
    void writeList(QLatin1StringView section, const QList<quint16> &indices);
    void writePlain(const LineObject &object);
    void writeGroup(const LineObject &object);
    void writeAttributes(const StoreRecords::SubIndexData &sub, const QString &defaultValue,
                         const QString &description);
    void writeDescription(const QString &text);
    void pair(QLatin1StringView key, const QString &value);

    CodeWriter out_;
    ObjectDataBase &store_;
    const LineDictionary &dictionary_;
    const EdsVariant variant_;
};
