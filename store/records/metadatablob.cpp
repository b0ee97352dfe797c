#include "store/records/metadatablob.h"

#include <QDataStream>
#include <QIODevice>

namespace {

constexpr int metadataStreamVersion = 17;

} // namespace

StoreRecords::Metadata MetadataBlob::parse(const QByteArray &bytes)
{
    constexpr int countSize = 4;
    StoreRecords::Metadata metadata;
    if (bytes.size() < countSize)
        return metadata;
    QDataStream stream(bytes);
    stream.setVersion(metadataStreamVersion);
    stream >> metadata;
    return stream.status() == QDataStream::Ok ? metadata : StoreRecords::Metadata();
}

QByteArray MetadataBlob::serialise(const StoreRecords::Metadata &metadata)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(metadataStreamVersion);
    stream << metadata;
    return bytes;
}
