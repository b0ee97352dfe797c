#include "support/recordfields.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <tuple>

using namespace Qt::StringLiterals;
using namespace StoreRecords;
using TestSupport::RecordFields::number;

namespace {

// The names of a record's fields and references to them, in the order of their declaration.

auto fieldsOf(IndexData &record)
{
    auto &[a, b, c, d, e, f, g, h] = record;
    return std::pair("name datatype objecttype description category device_class fwsupported metadata"_L1,
                     std::tie(a, b, c, d, e, f, g, h));
}

auto fieldsOf(SubIndexData &record)
{
    auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x, y, z, aa, bb, cc] = record;
    return std::pair(
        "name datatype accesstype defaultvalue currentvalue pdomapping lowlimit uplimit size defaultineds "
        "limitineds refuseread refusewrite dcfcomponent cyclicread allowedaccesstypes implementation "
        "description varname category writedefaulttoeds changedbyuser wizardsource sharedlines denotation "
        "managedbyqlk signalid nvstorage metadata"_L1,
        std::tie(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x, y, z, aa, bb, cc));
}

auto fieldsOf(NodeData &record)
{
    auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x, y] = record;
    return std::pair("name iconpath edspath dcfpath xddpath tpdocnt rpdocnt prefix outputpath ismaster issyncproducer "
                     "issyncconsumer ishbconsumer isemergencyproducer isemergencyconsumer ismpdosupported "
                     "iscanopengateway allpdosstatic excludegeneration generatedcf isbootupmanager isconfigmanager "
                     "excludepdolinking multilinedata lssslave"_L1,
                     std::tie(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x, y));
}

auto fieldsOf(PGN &record)
{
    auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q] = record;
    return std::pair("name desc number edp_dp_key priority cycletime_ms inhibittime_ms mappingcount direction srvt_ms "
                     "issafe FD_TrailerFormat FD_AssuranceType FD_AssuranceDataSize multisourceaddress safetytype "
                     "FD_DataID"_L1,
                     std::tie(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q));
}

auto fieldsOf(SPN &record)
{
    auto &[a, b, c, d, e, f, g, h, i, j, k, l, m] = record;
    return std::pair("pos name desc defaultvalue datatype pgnnumber direction spnnumber implementation varname bitsize "
                     "slot_df bitposition"_L1,
                     std::tie(a, b, c, d, e, f, g, h, i, j, k, l, m));
}

auto fieldsOf(CANID &record)
{
    auto &[a, b, c, d, e, f, g] = record;
    return std::pair("name desc id cycletime_ms inhibittime_ms mappingcount direction"_L1,
                     std::tie(a, b, c, d, e, f, g));
}

void read(const QString &text, QString &value)
{
    value = QString(text).replace("\\n"_L1, "\n"_L1);
}

void read(const QString &text, std::integral auto &value)
{
    value = static_cast<std::remove_reference_t<decltype(value)>>(number(text));
}

void read(const QString &text, PDOMapping &value)
{
    value = PDOMapping(number(text));
}

void read(const QString &text, Metadata &value)
{
    value.clear();
    for (const QString &pair : text.split(u',', Qt::SkipEmptyParts))
        value.insert(pair.section(u':', 0, 0), pair.section(u':', 1));
}

QString shown(const QString &value)
{
    return QString(value).replace("\n"_L1, "\\n"_L1);
}

QString shown(std::integral auto value)
{
    return QString::number(value);
}

QString shown(const PDOMapping &value)
{
    return QString::number(value.toUInt());
}

QString shown(const Metadata &value)
{
    QStringList pairs;
    for (const auto &[key, text] : value.asKeyValueRange())
        pairs.append(key + u':' + text);
    return pairs.join(u',');
}

} // namespace

quint32 TestSupport::RecordFields::number(const QString &text)
{
    if (text == "tx"_L1 || text == "rx"_L1)
        return text == "tx"_L1 ? transmit : receive;
    bool ok = false;
    const qlonglong value = text.toLongLong(&ok, 0);
    EXPECT_TRUE(ok) << "no number: " << qPrintable(text);
    return static_cast<quint32>(value);
}

template <class Record>
void TestSupport::RecordFields::assign(Record &record, const QString &fields)
{
    const auto [names, values] = fieldsOf(record);
    const QStringList all = QString(names).split(u' ');
    for (const QString &field : fields.split(u"; "_s, Qt::SkipEmptyParts)) {
        qsizetype place = all.indexOf(field.section(u'=', 0, 0));
        EXPECT_GE(place, 0) << "no field: " << qPrintable(field);
        const auto assignAtPlace = [&](auto &value) {
            if (place-- == 0)
                read(field.section(u'=', 1), value);
        };
        std::apply([&](auto &...value) { (assignAtPlace(value), ...); }, values);
    }
}

template <class Record>
QString TestSupport::RecordFields::described(Record record)
{
    Record fresh;
    const auto textsOf = [](Record &of) {
        return std::apply([](auto &...value) { return QStringList{shown(value)...}; }, fieldsOf(of).second);
    };
    const QStringList names = QString(fieldsOf(record).first).split(u' ');
    const QStringList texts = textsOf(record);
    const QStringList usual = textsOf(fresh);
    QStringList different;
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (texts.at(i) != usual.at(i))
            different.append(names.at(i) + u'=' + texts.at(i));
    }
    return different.join("; "_L1);
}

namespace TestSupport::RecordFields {

template void assign(IndexData &, const QString &);
template void assign(SubIndexData &, const QString &);
template void assign(NodeData &, const QString &);
template void assign(PGN &, const QString &);
template void assign(SPN &, const QString &);
template void assign(CANID &, const QString &);
template QString described(IndexData);
template QString described(SubIndexData);
template QString described(NodeData);
template QString described(PGN);
template QString described(SPN);
template QString described(CANID);

} // namespace TestSupport::RecordFields
