#include "generate/tables/tablegenerator.h"

#include "generate/base/utf8sink.h"
#include "generate/model/linedictionary.h"
#include "store/objectdatabase.h"

#include <QDebug>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<quint16, 2> areas{0x2000, 0x6000};

} // namespace

void TableGenerator::write(Utf8Sink &sink)
{
    writeHead(sink);
    auto area = areas.begin();
    const LineDictionary dictionary(*database(), line());
    for (const LineObject &object : dictionary.objects) {
        if (takeCancelRequest()) {
            qDebug() << "Generation aborted";
            return;
        }
        for (; area != areas.end() && object.index >= *area; ++area)
            sink << " \n"_L1;
        writeObject(sink, object);
    }
}
