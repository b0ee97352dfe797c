#include "generate/model/linedictionary.h"

#include "generate/model/linesettings.h"
#include "store/objectdatabase.h"

#include <algorithm>

LineDictionary::LineDictionary(ObjectDataBase &store, quint8 line)
    : store_(store)
    , line_(line)
    , indices_(store.getIndexList(line, ObjectRange::all.first, ObjectRange::all.last))
{
    for (const ObjectDataBase::SubKey &key : store.getSubKeys(line))
        subs_[key.index].append(key.subindex);
}

bool LineDictionary::has(quint16 index) const
{
    return std::ranges::binary_search(indices_, index);
}

QList<quint16> LineDictionary::range(quint16 first, quint16 last) const
{
    return {std::ranges::lower_bound(indices_, first), std::ranges::upper_bound(indices_, last)};
}

QList<quint8> LineDictionary::subs(quint16 index) const
{
    return has(index) ? subs_.value(index) : QList<quint8>();
}

quint32 LineDictionary::value(quint16 index, quint8 subindex) const
{
    ObjectDataBase::SUBINDEX_DATA_T sub;
    return has(index) && store_.getSubIndex(line_, index, subindex, sub) ? LineSettings::number(sub.defaultvalue) : 0;
}

QString LineDictionary::access(quint16 index, quint8 subindex) const
{
    ObjectDataBase::SUBINDEX_DATA_T sub;
    return has(index) && store_.getSubIndex(line_, index, subindex, sub) ? sub.accesstype : QString();
}
