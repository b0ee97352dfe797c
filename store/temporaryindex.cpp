#include "store/temporaryindex.h"

#include "store/objectdatabase.h"

#include <QDebug>

using namespace Qt::StringLiterals;

namespace {

void execute(ObjectDataBase &store, const QString &text)
{
    if (!store.statements().execute({"TemporaryIndex", text, Statement::Effect::Schema}))
        qDebug().noquote() << "the job goes on without its index";
}

} // namespace

TemporaryIndex::TemporaryIndex(ObjectDataBase &store, quint8 line, QLatin1StringView tableAndColumns)
    : store_(store)
{
    const QString place = QString(tableAndColumns).arg(line);
    name_ = "temporary_"_L1 + place.section(u' ', 0, 0);
    execute(store_, u"create index if not exists %1 on %2"_s.arg(name_, place));
}

TemporaryIndex::~TemporaryIndex()
{
    execute(store_, u"drop index if exists %1"_s.arg(name_));
}
