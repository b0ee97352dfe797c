#include "generate/tables/tablegenerator.h"

#include "generate/model/objectrecords.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QTextStream>

#include <array>

namespace {

constexpr quint16 firstIndex = 0x1000;
constexpr std::array<quint16, 2> areas{0x2000, 0x6000};

} // namespace

void TableGenerator::write(QTextStream &stream)
{
    writeHead(stream);
    auto area = areas.begin();
    const ObjectReader reader(*database(), line(), firstIndex);
    for (const quint16 index : reader.indices()) {
        if (takeCancelRequest()) {
            qDebug() << "Generation aborted";
            return;
        }
        for (; area != areas.end() && index >= *area; ++area)
            stream << " \n";
        writeObject(stream, reader.read(index));
    }
}
