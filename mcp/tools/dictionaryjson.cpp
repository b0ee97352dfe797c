#include "mcp/tools/dictionaryjson.h"

#include "mcp/call/jsontext.h"

using namespace Qt::StringLiterals;

namespace {

QJsonArray subindices(ObjectDataBase &store, quint8 line, quint16 index)
{
    store.cacheAllSubs(line, index);
    QJsonArray subs;
    for (const quint8 sub : store.getSubIndexList(line, index)) {
        if (const auto data = store.getSubIndex(line, index, sub))
            subs.append(DictionaryJson::subindex(sub, *data));
    }
    store.clearSubCache();
    return subs;
}

} // namespace

QString DictionaryJson::indexText(quint16 index)
{
    return u"0x%1"_s.arg(index, 4, 16, '0'_L1);
}

QString DictionaryJson::subindexText(quint16 index, quint8 sub)
{
    return u"%1:%2"_s.arg(indexText(index), QString::number(sub));
}

QMap<quint16, QString> DictionaryJson::names(ObjectDataBase &store, quint8 line)
{
    return store.getIndexNames(line, firstIndex, lastIndex);
}

QString DictionaryJson::listing(const QMap<quint16, QString> &names)
{
    QString text(u'[');
    for (const auto &[index, name] : names.asKeyValueRange()) {
        if (text.size() > 1)
            text += u',';
        text += R"({"index":")"_L1;
        text += indexText(index);
        text += R"(","indexDec":)"_L1;
        text += QString::number(index);
        text += R"(,"name":)"_L1;
        JsonText::appendQuoted(text, name);
        text += u'}';
    }
    return text + u']';
}

QJsonObject DictionaryJson::subindex(quint8 sub, const ObjectDataBase::SUBINDEX_DATA_T &data)
{
    return {{u"sub"_s, sub},
            {u"name"_s, data.name},
            {u"dataTypeCode"_s, data.datatype},
            {u"accessType"_s, data.accesstype},
            {u"pdoMapping"_s, data.pdomapping.getCSVStringValue()},
            {u"defaultValue"_s, data.defaultvalue},
            {u"currentValue"_s, data.currentvalue},
            {u"hasDefault"_s, data.defaultineds},
            {u"size"_s, qint64{data.size}}};
}

std::optional<QJsonObject> DictionaryJson::object(ObjectDataBase &store, quint8 line, quint16 index)
{
    const auto data = store.getIndex(line, index);
    if (!data)
        return {};
    return QJsonObject{{u"index"_s, indexText(index)},
                       {u"name"_s, data->name},
                       {u"objectTypeCode"_s, qint64{data->objecttype}},
                       {u"categoryCode"_s, qint64{data->category}},
                       {u"description"_s, data->description},
                       {u"subs"_s, subindices(store, line, index)}};
}
