#include "generate/descriptions/edsgenerator.h"

#include "generate/common/documentname.h"
#include "generate/descriptions/edswriter.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QThread>

using namespace Qt::StringLiterals;

namespace {

const QString tagAttribute = u"eds_define"_s;

constexpr quint16 firstIndex = 0x1000;

/// Objects that exist with CANopen FD only.
constexpr bool isExtendedOnly(quint16 index)
{
    return index == 0x1030 || index == 0x1032;
}

QString forFileName(QString tag)
{
    return tag.replace(u'/', u'_').replace(u'\\', u'_');
}

} // namespace

bool EdsVariant::holds(const StoreRecords::Metadata &metadata) const
{
    const auto own = metadata.constFind(tagAttribute);
    return own == metadata.constEnd() || *own == tag;
}

QStringList edsTags(ObjectDataBase &store, quint8 line)
{
    QStringList tags{QString()};
    const auto note = [&tags](const StoreRecords::Metadata &metadata) {
        const auto own = metadata.constFind(tagAttribute);
        if (own != metadata.constEnd() && !tags.contains(*own))
            tags.append(*own);
    };
    const ObjectReader reader(store, line, firstIndex);
    for (const quint16 index : reader.indices()) {
        const ObjectRecords records = reader.read(index);
        note(records.object.metadata);
        for (const ObjectRecords::Sub &sub : records.subs)
            note(sub.data.metadata);
    }
    return tags;
}

QString EDSGenerator::fileName() const
{
    QString end;
    if (!variant_.tag.isEmpty())
        end = u'_' + forFileName(variant_.tag);
    else if (variant_.classical)
        end = u"_classical"_s;
    return documentName(baseName(), line(), isMultiLine()) + end + u".eds"_s;
}

QString EDSGenerator::jobName() const
{
    return u"EDS file"_s;
}

QList<quint16> EDSGenerator::writtenIndices(const ObjectReader &reader) const
{
    QList<quint16> indices;
    for (auto object = reader.objects().cbegin(); object != reader.objects().cend(); ++object) {
        if (variant_.holds(object->metadata) && (variant_.extended || !isExtendedOnly(object.key())))
            indices.append(object.key());
    }
    return indices;
}

void EDSGenerator::write(QTextStream &stream)
{
    EdsWriter writer(stream, *database(), line(), variant_);
    const ObjectReader reader(*database(), line(), firstIndex);
    const QList<quint16> indices = writtenIndices(reader);
    writer.writeHead(baseName());
    writer.writeObjectLists(indices);
    Q_EMIT progress(25);
    for (const quint16 index : indices) {
        if (takeCancelRequest()) {
            qDebug() << "Generation aborted";
            break;
        }
        writer.writeObject(reader.read(index));
        QThread::yieldCurrentThread();
    }
    Q_EMIT progress(98);
    writer.writeAdditionalSections();
}
