#include "store/stringpool.h"

#include "store/statements/statements.h"

using namespace Qt::StringLiterals;

/// A text that the map never finds, as it stands there with its quotes doubled.
bool StringPool::hasARowPerInterning(const QString &text)
{
    return text.contains(u'\'');
}

int StringPool::idOf(const QString &text)
{
    if (const auto it = ids_.constFind(text); it != ids_.constEnd())
        return *it;

    const int added = insert(text);
    if (added >= 0)
        texts_.insert(added, text);
    if (!hasARowPerInterning(text)) {
        if (added >= 0)
            ids_.insert(text, added);
        return added;
    }
    const int first = firstQuoted_.value(text, added);
    if (added >= 0 && !firstQuoted_.contains(text))
        firstQuoted_.insert(text, added);
    if (first >= 0)
        ids_.insert(QString(text).replace(u'\'', "''"_L1), first);
    return first;
}

int StringPool::insert(const QString &text)
{
    const std::optional<qint64> id =
        statements_.insert({"getStringId", u"insert into Strings values(NULL,?)"_s, Statement::Effect::Rows}, {text});
    return id ? static_cast<int>(*id) : -1;
}

QString StringPool::textOf(int id)
{
    const auto it = texts_.constFind(id);
    if (it != texts_.constEnd())
        return *it;
    QString text = statements_.value({nullptr, u"select string from Strings where id = ?"_s}, {id}).toString();
    texts_.insert(id, text);
    return text;
}

void StringPool::loadTexts()
{
    if (textsLoaded_)
        return;
    textsLoaded_ = statements_.visit({nullptr, u"select id, string from Strings"_s}, {},
                                     [this](const ResultRow &row) { texts_.insert(row.number<int>(0), row.text(1)); });
}

void StringPool::reload()
{
    clear();
    textsLoaded_ = statements_.visit({nullptr, u"select * from Strings"_s}, {}, [this](const ResultRow &row) {
        const int id = row.number<int>(0);
        const QString text = row.text(1);
        texts_.insert(id, text);
        ids_.insert(text, id);
        if (hasARowPerInterning(text) && !firstQuoted_.contains(text))
            firstQuoted_.insert(text, id);
    });
}

void StringPool::clear()
{
    textsLoaded_ = false;
    texts_.clear();
    ids_.clear();
    firstQuoted_.clear();
}
