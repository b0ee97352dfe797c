#include "store/temporaryindex.h"

#include "store/objectdatabase.h"

#include <QDebug>
#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {

void execute(ObjectDataBase &store, const QString &statement)
{
    QSqlQuery query = store.newQuery();
    if (!store.execQuery(query, statement))
        qDebug().noquote() << "TemporaryIndex" << statement << query.lastError().text();
}

} // namespace

TemporaryIndex::TemporaryIndex(ObjectDataBase &store, quint8 line, QLatin1StringView tableAndColumns)
    : store_(store)
{
    execute(store_, u"create index if not exists temporaryindex on "_s + QString(tableAndColumns).arg(line));
}

TemporaryIndex::~TemporaryIndex()
{
    execute(store_, u"drop index if exists temporaryindex"_s);
}
