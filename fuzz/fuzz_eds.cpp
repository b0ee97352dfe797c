// The reader of device descriptions on anything at all: it must end, and what it raises must keep its promises.

#include "fuzz/scratch.h"
#include "nodedict/edsparser.h"

#include <QSet>

using Fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    EdsParser parser;
    QSet<quint32> objects;
    QSet<quint32> subs;
    QObject::connect(&parser, &EdsParser::newIndex, &parser, [&](const CANopen::CANopenIndex &object) {
        require(object.index <= 0xffff && !objects.contains(object.index));
        objects.insert(object.index);
        parser.getCompactSubObjNames(object.index);
        parser.getCompactSubObjValues(object.index);
        parser.getCompactSubObjDenotations(object.index);
    });
    QObject::connect(&parser, &EdsParser::newSubIndex, &parser, [&](const CANopenSubindex &sub) {
        const quint32 key = sub.index << 8 | sub.subindex;
        require(sub.index <= 0xffff && sub.datatype <= 0xffff && !subs.contains(key));
        require(!sub.name.contains(QChar(u'\0')) && !sub.accesstype.isEmpty());
        subs.insert(key);
    });
    parser.loadContent(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    parser.sectionValue(QLatin1StringView("DeviceInfo"), QStringLiteral("VendorName"));
    parser.commentText();
    parser.comments();
    return 0;
}
