// The CAN lines of a device: the table `Nodes` and what belongs to a line elsewhere.

#include "store/objectdatabase.h"

#include "store/recordcolumns.h"
#include "store/schema.h"

#include <QDebug>
#include <QSqlQuery>

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::text;

namespace {

using Node = ObjectDataBase::NODE_DATA_T;

constexpr std::array<Column<Node>, 25> nodeColumnTable = {
    text<&Node::name>("name"_L1),
    text<&Node::edspath>("edspath"_L1),
    text<&Node::xddpath>("xddpath"_L1),
    text<&Node::dcfpath>("dcfpath"_L1),
    number<&Node::tpdocnt>("tpdocnt"_L1),
    number<&Node::rpdocnt>("rpdocnt"_L1),
    number<&Node::ismaster>("ismaster"_L1),
    number<&Node::issyncproducer>("issyncproducer"_L1),
    number<&Node::issyncconsumer>("issyncconsumer"_L1),
    number<&Node::ishbconsumer>("ishbconsumer"_L1),
    number<&Node::isemergencyproducer>("isemergencyproducer"_L1),
    number<&Node::isemergencyconsumer>("isemergencyconsumer"_L1),
    number<&Node::ismpdosupported>("ismpdosupported"_L1),
    number<&Node::iscanopengateway>("iscanopengateway"_L1),
    number<&Node::allpdosstatic>("allpdosstatic"_L1),
    number<&Node::excludegeneration>("excludegeneration"_L1),
    number<&Node::generatedcf>("generatedcf"_L1),
    text<&Node::prefix>("prefix"_L1),
    text<&Node::outputpath>("outputpath"_L1),
    text<&Node::iconpath>("iconpath"_L1),
    number<&Node::isbootupmanager>("isbootupmanager"_L1),
    number<&Node::isconfigmanager>("isconfigmanager"_L1),
    number<&Node::excludepdolinking>("excludepdolinking"_L1),
    number<&Node::multilinedata>("multilinedata"_L1),
    number<&Node::lssslave>("lssslave"_L1),
};
constexpr std::span<const Column<Node>> nodeColumns = nodeColumnTable;

constexpr quint8 previewLine = 254;
constexpr quint8 basicServices[] = {0x10, 0x11, 0x3e, 0x22, 0x2e};

} // namespace

bool ObjectDataBase::addNode(quint8 line, const NODE_DATA_T &data)
{
    if (blocked_)
        return false;
    const Transaction transaction(*this);
    const QString number = QString::number(line);
    QString statement;
    if (selectsRow(u"select * from Nodes where nodeId = %1"_s.arg(number))) {
        // Five columns belong to whoever set them last by name.
        statement = u"update Nodes set %1 where nodeId = %2"_s.arg(
            RecordColumns::assignments(nodeColumns, data, {},
                                       {"isbootupmanager"_L1, "isconfigmanager"_L1, "excludepdolinking"_L1,
                                        "multilinedata"_L1, "lssslave"_L1}),
            number);
    } else {
        statement = u"insert into Nodes (nodeId, %1) values(%2, %3)"_s.arg(
            RecordColumns::names(nodeColumns), number, RecordColumns::values(nodeColumns, data, {}));
    }
    // Without its row the line does not exist, and nothing of the others is to change.
    if (!run("addNode", statement))
        return false;
    for (const LineTable family : {LineTable::Objects, LineTable::SubObjects, LineTable::PGNs, LineTable::SPNs,
                                   LineTable::CANIDs, LineTable::DataElements}) {
        const QByteArray operation = "create table " + ProjectSchema::tableName(family, line).toLatin1();
        run(operation.constData(), ProjectSchema::createStatement(family, line));
    }
    if (line != previewLine) {
        for (const QString &key : getGeneralSettingKeys()) {
            if (!getGeneralSetting(key).isEmpty())
                setGeneralSetting(key, getGeneralSetting(key, line), line);
        }
        addDescriptionDefaults(line);
    }
    const bool done = createUDSSettingsTable(line);
    for (const quint8 sid : basicServices)
        setUDSServiceActive(line, sid, true);
    for (const quint8 sid : basicServices)
        setUDSServiceSessions(line, sid, u"1"_s);
    notify(Change::LineWritten, {.line = line});
    return done;
}

bool ObjectDataBase::removeNode(quint8 line)
{
    if (blocked_)
        return false;
    const Transaction transaction(*this);
    QSqlQuery query = newQuery();
    for (int family = 0; family < ProjectSchema::lineTableCount; ++family)
        execQuery(query, u"drop table "_s + ProjectSchema::tableName(static_cast<LineTable>(family), line));
    const bool done = run("removeNode", u"delete from Nodes where nodeId = %1"_s.arg(line));

    const QString suffix = u"_%1"_s.arg(line);
    QStringList items;
    if (execQuery(query, u"select item from DescriptionSettings"_s)) {
        while (query.next())
            items.append(query.value(0).toString());
    }
    for (QString &item : items) {
        if (item.endsWith(suffix)) {
            escapeQuotes(item);
            run("removeNode", u"delete from DescriptionSettings where item = '%1'"_s.arg(item));
        }
    }
    dropListPart("GeneralSettings"_L1, line);
    dropListPart("J1939Settings"_L1, line);
    run("removeNode", u"delete from Connections where prodnode = %1 OR connode = %1"_s.arg(line));
    notify(Change::LineRemoved, {.line = line});
    return done;
}

/// Takes the line's part out of every value of a settings table. That a value is no list is not known here, so a text
/// with commas in it loses a part as well.
void ObjectDataBase::dropListPart(QLatin1StringView table, quint8 line)
{
    struct Row
    {
        QString item;
        QString value;
    };
    QList<Row> rows;
    QSqlQuery query = newQuery();
    if (execQuery(query, u"select item, value from %1"_s.arg(table))) {
        while (query.next())
            rows.append({query.value(0).toString(), query.value(1).toString()});
    }
    const QString typeKey = u"line%1type"_s.arg(line);
    for (const Row &row : std::as_const(rows)) {
        if (row.item.contains(typeKey)) {
            run("removeNode", u"delete from %1 where item = '%2'"_s.arg(table, row.item));
            continue;
        }
        QStringList parts = row.value.split(u',');
        if (line >= parts.size())
            continue;
        parts.removeAt(line);
        run("removeNode", u"update %1 SET value = '%2' WHERE item = '%3'"_s.arg(table, parts.join(u','), row.item));
    }
}

bool ObjectDataBase::getNode(quint8 line, NODE_DATA_T &data)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    const QString statement =
        u"select %1 from Nodes where nodeId = %2"_s.arg(RecordColumns::names(nodeColumns), QString::number(line));
    if (!execQuery(query, statement) || !query.next())
        return false;
    RecordColumns::readRow(nodeColumns, query, data, strings_);
    return true;
}

QList<quint8> ObjectDataBase::getNodeList()
{
    QList<quint8> lines;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (execQuery(query, u"select nodeId from nodes"_s)) {
        while (query.next()) {
            const qint64 line = query.value(0).toLongLong();
            if (line >= 0 && line <= 0xff)
                lines.append(static_cast<quint8>(line));
        }
    }
    return lines;
}

bool ObjectDataBase::nodeExists(quint8 line)
{
    return selectsRow(u"select nodeId from nodes where nodeId = %1"_s.arg(line));
}

void ObjectDataBase::setNodeSqlValue(const QString &nodeId, const QString &column, const QVariant &value)
{
    const QString text = value.toString().simplified();
    if (blocked_ || text.isEmpty())
        return;
    run("setNodeSqlValue", u"update Nodes set %1='%2' where nodeId = %3 "_s.arg(column, text, nodeId));
}
