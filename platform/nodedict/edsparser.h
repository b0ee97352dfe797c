#pragma once

#include "nodedict/canopenindex.h"
#include "nodedict/canopensubindex.h"
#include "nodedict/edssections.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>

#include <array>
#include <bitset>
#include <optional>

/// Reads a device description of CANopen: an Electronic Data Sheet or a Device Configuration File (CiA 306).
///
/// It reads what device makers write rather than what the standard asks for: section and key names in any letter case,
/// any line ending and encoding (see TextFile), blanks around names and values, sections in any order. A line that
/// begins ";" or "#" is a comment. Within a text these are part of it, and so are quotes; behind a number or a word ";"
/// begins a remark, and quotes around them go. Where a section stands twice its keys are joined, and where a key stands
/// twice the first one counts. An object is there if its section is, whatever the lists of supported objects say. What
/// a section leaves out:
///
/// | Missing         | Taken                                                                                       |
/// |-----------------|---------------------------------------------------------------------------------------------|
/// | `ParameterName` | an empty name                                                                               |
/// | `ObjectType`    | VAR; ARRAY with `CompactSubObj`, RECORD with sections of sub-objects                        |
/// | `DataType`      | of a DOMAIN, DOMAIN; at sub-index 0 of an ARRAY or RECORD, UNSIGNED8; of an ARRAY's element |
/// |                 | the type of the ARRAY; of an ARRAY or RECORD itself, UNSIGNED8; else `CAN::NoType`          |
/// | `AccessType`    | of a DOMAIN "rw", else "ro"                                                                 |
/// | `PDOMapping`    | 0                                                                                           |
///
/// `SubNumber` is not looked at: the sub-objects are those that have sections. Sections of modules and of the
/// commissioning of a device are passed over, and so is all that is no description: reading takes time and memory in
/// proportion to the file, whatever is in it, and ends with fewer objects, or none.
class EdsParser : public QObject
{
    Q_OBJECT

public:
    explicit EdsParser(QObject *parent = nullptr);

    /// Reads a file and raises the signals. False if it is missing, no regular file, unreadable or beyond
    /// `TextFile::maxFileSize`.
    bool LoadEds(const QString &path);
    /// The same for a text in memory.
    void loadContent(const QByteArray &content);

    /// Names of compact sub-objects, from `[xxxxName]`: by sub-index, as decimal text.
    QMap<QString, QString> getCompactSubObjNames(quint32 index) const;
    /// Parameter values of compact sub-objects, from `[xxxxValue]` of a DCF, in the form that fits the object's type.
    QMap<QString, QString> getCompactSubObjValues(quint32 index) const;
    /// Denotations of compact sub-objects, from `[xxxxDenotation]` of a DCF.
    QMap<QString, QString> getCompactSubObjDenotations(quint32 index) const;

    /// Value of a key in one of the sections FileInfo, DeviceInfo, DummyUsage, Comments and MandatoryObjects, as it
    /// stands in the file; null if section or key are missing.
    QString sectionValue(QLatin1StringView section, const QString &key) const;
    /// The lines of the section Comments, as many as it announces and has, joined by line feeds.
    QString commentText() const;
    /// Number of the line in which the section of an object or sub-object begins, from 1; 0 if it has none.
    qsizetype lineOf(quint32 index, std::optional<quint8> subindex = {}) const;
    /// The texts of ";;" lines, the program's own way to keep descriptions in a file, one for each section of an object
    /// or sub-object that holds any, in file order.
    QList<EdsSections::Comment> comments() const { return sections_.comments(); }

Q_SIGNALS:
    /// An object; in the order of the file.
    void newIndex(const CANopen::CANopenIndex &index);
    /// A sub-object; in the order of the file, but behind its object. The compact sub-objects of an ARRAY are not
    /// raised, those of any other object are.
    void newSubIndex(const CANopenSubindex &sub);

private:
    using Head = EdsSections::Head;

    enum Field
    {
        ParameterName,
        ObjectType,
        DataType,
        AccessType,
        DefaultValue,
        LowLimit,
        HighLimit,
        PDOMapping,
        ObjFlags,
        CompactSubObj,
        ParameterValue,
        Denotation,
        Description,
        FieldCount
    };
    /// The values of a section's known keys; none where a key is missing.
    struct Fields
    {
        std::array<std::optional<QByteArrayView>, FieldCount> values;
    };

    void raiseAll();
    void raiseObject(quint32 index);
    void raiseCompact(const CANopen::CANopenIndex &object);

    Fields fieldsOf(const Head &head) const;
    QString text(const Fields &fields, Field field) const;
    /// The text without a remark behind it, for the keys whose values are words.
    QString word(const Fields &fields, Field field) const;
    /// True for a value that is not empty.
    bool has(const Fields &fields, Field field) const { return !text(fields, field).isEmpty(); }
    QString value(const Fields &fields, Field field, quint32 type) const;
    QString limit(const Fields &fields, Field field, quint32 type) const;
    QString accessType(const Fields &fields, bool isDomain) const;
    bool isMappable(const Fields &fields) const;
    std::optional<quint32> number(const Fields &fields, Field field) const;
    std::optional<quint32> dataType(const Fields &fields) const;
    std::optional<quint32> objectType(const Fields &fields) const;
    CANopen::CANopenIndex readObject(quint32 index, const Fields &fields) const;
    CANopenSubindex readSub(quint32 index, quint8 subindex, const Fields &fields, quint32 typeIfMissing) const;
    quint32 typeOf(const Fields &fields, quint32 typeIfMissing) const;
    quint32 objectTypeOf(quint32 index, const Fields &fields) const;
    quint32 missingTypeOfSub(quint32 index, quint8 subindex) const;
    QMap<QString, QString> compactTexts(const Head &head) const;
    void noteLists();

    EdsSections sections_;
    std::bitset<0x10000> hasSubs_;   ///< objects with sections of sub-objects
    std::bitset<0x10000> mandatory_; ///< objects in the list of these
    std::bitset<0x10000> raised_;
    std::bitset<0x10000> hasOwnSub_;     ///< raised objects whose own section was raised as sub-index 0, too
    QHash<quint32, quint32> arrayTypes_; ///< data types of the raised ARRAYs
};
