#include "generate/tables/tablegenerator.h"

#include "generate/model/linedictionary.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QTextStream>

#include <array>

namespace {

constexpr std::array<quint16, 2> areas{0x2000, 0x6000};

} // namespace

void TableGenerator::write(QTextStream &stream)
{
    writeHead(stream);
    auto area = areas.begin();
    const LineDictionary dictionary(*database(), line());
    for (const LineObject &object : dictionary.objects) {
        if (takeCancelRequest()) {
            qDebug() << "Generation aborted";
            return;
        }
        for (; area != areas.end() && object.index >= *area; ++area)
            stream << " \n";
        writeObject(stream, object);
    }
}
