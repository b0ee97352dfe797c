#include "generate/common/documentgenerator.h"

#include "generate/common/documentname.h"

#include <QDebug>
#include <QThread>

#include <array>

using namespace Qt::StringLiterals;

QString DocumentGenerator::nameWith(QLatin1StringView ending) const
{
    return documentName(baseName(), line(), isMultiLine()) + fileSuffix() + ending;
}

bool DocumentGenerator::goesOn()
{
    QThread::yieldCurrentThread();
    if (!takeCancelRequest())
        return true;
    qDebug() << "Generation aborted";
    fail(OutputError, u"Generation aborted."_s);
    return false;
}

QString DocumentWords::implementation(quint8 code)
{
    constexpr std::array words{"Managed Variable"_L1, "Managed Const"_L1, "Variable"_L1, "Virtual Object"_L1};
    return code < words.size() ? QString(words.at(code)) : QString::number(code);
}

QString DocumentWords::frameFormat(bool isExtended)
{
    return isExtended ? u"Extended"_s : u"Standard"_s;
}
