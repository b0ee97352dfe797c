#pragma once

#include "store/objectdatabase.h"

#include <QDebug>
#include <QSqlError>
#include <QSqlQuery>

/// An index over the signals of a line for the time of an import, so that each write by key need not read the table.
class MessageIndex
{
public:
    enum Table
    {
        SPNs,
        DataElements
    };

    MessageIndex(ObjectDataBase &store, quint8 line, Table table)
        : store_(store)
    {
        const QString columns = table == SPNs ? QStringLiteral("SPNs%1 (pgnnumber, spnnumber, direction)")
                                              : QStringLiteral("DataElements%1 (canid, number, direction)");
        exec(QStringLiteral("create index if not exists importindex on ") + columns.arg(line));
    }
    ~MessageIndex() { exec(QStringLiteral("drop index if exists importindex")); }
    Q_DISABLE_COPY_MOVE(MessageIndex)

private:
    void exec(const QString &statement)
    {
        QSqlQuery query = store_.newQuery();
        if (!store_.execQuery(query, statement))
            qDebug().noquote() << "MessageIndex" << statement << query.lastError().text();
    }

    ObjectDataBase &store_;
};
