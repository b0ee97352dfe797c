#include "generate/docs/documentgenerator.h"

#include <QDebug>
#include <QThread>

#include <array>

using namespace Qt::StringLiterals;

QString DocumentGenerator::documentName(QLatin1StringView ending) const
{
    const QString number = isMultiLine() ? u"_%1"_s.arg(line()) : QString();
    return baseName() + number + fileSuffix() + ending;
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
