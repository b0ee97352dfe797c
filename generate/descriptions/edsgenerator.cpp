#include "generate/descriptions/edsgenerator.h"

#include "generate/common/documentname.h"
#include "generate/descriptions/edswriter.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QThread>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

const QString tagAttribute = u"eds_define"_s;

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
    const LineDictionary dictionary(store, line);
    for (const LineObject &object : dictionary.objects) {
        note(object.data.metadata);
        for (const StoreRecords::SubEntry &sub : object.subs)
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

void EDSGenerator::write(Utf8Sink &sink)
{
    const LineDictionary dictionary(*database(), line());
    std::vector<LineObject> objects;
    std::ranges::copy_if(dictionary.objects, std::back_inserter(objects), [this](const LineObject &object) {
        return variant_.holds(object.data.metadata) && (variant_.extended || !isExtendedOnly(object.index));
    });
    EdsWriter writer(sink, *database(), dictionary, variant_);
    writer.writeHead(baseName());
    writer.writeObjectLists(objects);
    Q_EMIT progress(25);
    for (const LineObject &object : objects) {
        if (takeCancelRequest()) {
            qDebug() << "Generation aborted";
            break;
        }
        writer.writeObject(object);
        QThread::yieldCurrentThread();
    }
    Q_EMIT progress(98);
    writer.writeAdditionalSections();
}
