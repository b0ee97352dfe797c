#include "store/tables/temporaryindex.h"

#include "store/statements/statements.h"

#include <QDebug>

using namespace Qt::StringLiterals;

namespace {

void execute(Statements &statements, const QString &text)
{
    if (!statements.execute({"TemporaryIndex", text, Statement::Effect::Schema}))
        qDebug().noquote() << "the job goes on without its index";
}

} // namespace

TemporaryIndex::TemporaryIndex(Statements &statements, quint8 line, QLatin1StringView tableAndColumns)
    : statements_(statements)
{
    const QString place = QString(tableAndColumns).arg(line);
    name_ = "temporary_"_L1 + place.section(u' ', 0, 0);
    execute(statements_, u"create index if not exists %1 on %2"_s.arg(name_, place));
}

TemporaryIndex::~TemporaryIndex()
{
    execute(statements_, u"drop index if exists %1"_s.arg(name_));
}
