#include "generate/base/outputhandlerbase.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

void OutputHandlerBase::forwardMessage(const QVariant &value)
{
    message(value);
}

QString OutputHandlerBase::withoutMarkup(QString text)
{
    static const QRegularExpression markup(u"<[^.]*>"_s);
    return text.remove(markup);
}
