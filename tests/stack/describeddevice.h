#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>

namespace TestSupport {

/// A device description (CiA 306) as plain sections and keys, read without the program's own reader: names in lower
/// case, and what an object is made of in one form, so that two files that mean the same are equal.
class DescribedDevice
{
public:
    static DescribedDevice read(const QString &path);

    /// By section and key, both in lower case; what stands first counts.
    QMap<QString, QMap<QString, QString>> sections;
    /// By "1018" and "1018sub1": the properties of objects and subindices, those of compact ones spread out.
    QMap<QString, QMap<QString, QString>> parts;

private:
    void addObject(const QString &name, const QMap<QString, QString> &keys);
    void addCompact(const QString &object, const QMap<QString, QString> &keys);
};

/// What differs between two descriptions, as "place key" with the place as the report of `ncx new` has it.
struct DescriptionDifference
{
    QString place; ///< "0x1018:1", or the section
    QString key;   ///< empty where one of the files lacks the whole

    QString text() const { return place + u' ' + key; }
};
QList<DescriptionDifference> differences(const DescribedDevice &maker, const DescribedDevice &generated);

} // namespace TestSupport
