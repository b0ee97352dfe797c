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

PrintedValue DocumentWords::implementation(quint8 code)
{
    constexpr std::array words{"Managed Variable"_L1, "Managed Const"_L1, "Variable"_L1, "Virtual Object"_L1};
    return code < words.size() ? PrintedValue(words.at(code)) : Digits::decimal(code);
}

QLatin1StringView DocumentWords::frameFormat(bool isExtended)
{
    return isExtended ? "Extended"_L1 : "Standard"_L1;
}
