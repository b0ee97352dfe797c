#include "store/stringpool.h"

#include "store/objectdatabase.h"

#include <QSqlQuery>
#include <QVariant>

using namespace Qt::StringLiterals;

int StringPool::idOf(const QString &text)
{
    if (const auto it = ids_.constFind(text); it != ids_.constEnd())
        return *it;

    const int added = insert(text);
    if (added >= 0)
        texts_.insert(added, text);
    if (!text.contains(u'\'')) {
        if (added >= 0)
            ids_.insert(text, added);
        return added;
    }
    const int first = firstQuoted_.value(text, added);
    if (added >= 0 && !firstQuoted_.contains(text))
        firstQuoted_.insert(text, added);
    if (first >= 0) {
        QString escaped = text;
        ObjectDataBase::escapeQuotes(escaped);
        ids_.insert(escaped, first);
    }
    return first;
}

StringPool::Batch::Batch(StringPool &pool)
    : pool_(pool)
{
    Q_ASSERT(!pool_.batchInsert_);
    pool_.batchInsert_ = std::make_unique<QSqlQuery>(pool_.store_.newQuery());
    if (!pool_.batchInsert_->prepare(u"insert into Strings values(NULL,?)"_s))
        pool_.batchInsert_.reset();
}

StringPool::Batch::~Batch()
{
    pool_.batchInsert_.reset();
}

int StringPool::insert(const QString &text)
{
    if (batchInsert_) {
        batchInsert_->bindValue(0, text.isNull() ? u""_s : text);
        return store_.execPrepared(*batchInsert_) ? batchInsert_->lastInsertId().toInt() : -1;
    }
    QString escaped = text;
    ObjectDataBase::escapeQuotes(escaped);
    QSqlQuery query = store_.newQuery();
    if (!store_.run("getStringId", query, u"insert into Strings values(NULL,'%1')"_s.arg(escaped)))
        return -1;
    return query.lastInsertId().toInt();
}

QString StringPool::textOf(int id)
{
    const auto it = texts_.constFind(id);
    if (it != texts_.constEnd())
        return *it;
    QString text = store_.selectValue(u"select string from Strings where id = %1"_s.arg(id)).toString();
    texts_.insert(id, text);
    return text;
}

void StringPool::loadTexts()
{
    if (textsLoaded_)
        return;
    QSqlQuery query = store_.newQuery();
    query.setForwardOnly(true);
    if (!store_.execQuery(query, u"select id, string from Strings"_s))
        return;
    while (query.next())
        texts_.insert(query.value(0).toInt(), query.value(1).toString());
    textsLoaded_ = true;
}

void StringPool::reload()
{
    clear();
    QSqlQuery query = store_.newQuery();
    query.setForwardOnly(true);
    if (!store_.execQuery(query, u"select * from Strings"_s))
        return;
    while (query.next()) {
        const int id = query.value(0).toInt();
        const QString text = query.value(1).toString();
        texts_.insert(id, text);
        ids_.insert(text, id);
        if (text.contains(u'\'') && !firstQuoted_.contains(text))
            firstQuoted_.insert(text, id);
    }
    textsLoaded_ = true;
}

void StringPool::clear()
{
    textsLoaded_ = false;
    texts_.clear();
    ids_.clear();
    firstQuoted_.clear();
}
