// The CAN lines of a device: the table `Nodes` and what belongs to a line elsewhere.

#include "store/objectdatabase.h"

#include "store/recordcolumns.h"
#include "store/schema.h"

#include <QDebug>

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::Row;
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

constexpr RecordColumns::Names setByName = {"isbootupmanager"_L1, "isconfigmanager"_L1, "excludepdolinking"_L1,
                                            "multilinedata"_L1, "lssslave"_L1};
constexpr quint8 previewLine = 254;
constexpr quint8 basicServices[] = {0x10, 0x11, 0x3e, 0x22, 0x2e};

Row nodeRow(quint8 line)
{
    return {u"Nodes"_s, {{"nodeId"_L1, line}}};
}

bool isNodeColumn(const QString &column)
{
    return std::ranges::any_of(nodeColumns, [&](const Column<Node> &known) { return known.name == column; });
}

} // namespace

/// Writes the row of a line. Five columns of one that exists belong to whoever set them last by name.
bool ObjectDataBase::writeNodeRow(quint8 line, const NODE_DATA_T &data, Quotes quotes)
{
    const Row row = nodeRow(line);
    const bool exists = nodeExists(line);
    const RecordColumns::Names except = exists ? setByName : RecordColumns::Names();
    std::optional<QVariantList> values =
        textsOf("addNode", RecordColumns::values(nodeColumns, data, {}, quotes, except));
    if (!values)
        return false;
    values->append(row.key());
    return run("addNode", exists ? row.update(nodeColumns, setByName) : row.insert(nodeColumns), *values);
}

bool ObjectDataBase::addNode(quint8 line, const NODE_DATA_T &data, Quotes quotes)
{
    if (blocked_)
        return false;
    Step step(*this);
    if (!writeNodeRow(line, data, quotes))
        return false;
    for (const LineTable family : {LineTable::Objects, LineTable::SubObjects, LineTable::PGNs, LineTable::SPNs,
                                   LineTable::CANIDs, LineTable::DataElements}) {
        const QByteArray operation = "create table " + ProjectSchema::tableName(family, line).toLatin1();
        if (!runSchema(operation.constData(), ProjectSchema::createStatement(family, line)))
            return false;
    }
    if (line != previewLine) {
        for (const QString &key : getGeneralSettingKeys()) {
            if (!getGeneralSetting(key).isEmpty() &&
                !setGeneralSetting(key, getGeneralSetting(key, line), line, Quotes::Kept))
                return false;
        }
        addDescriptionDefaults(line);
    }
    bool done = createUDSSettingsTable(line);
    for (const quint8 sid : basicServices)
        done = done && setUDSColumn(line, sid, UDSColumn::Active, u"1"_s);
    for (const quint8 sid : basicServices)
        done = done && setUDSColumn(line, sid, UDSColumn::Sessions, u"1"_s);
    if (!done || !step.commit())
        return false;
    notify(Change::LineWritten, {.line = line});
    return true;
}

bool ObjectDataBase::removeNode(quint8 line)
{
    if (blocked_)
        return false;
    Step step(*this);
    bool done = run("removeNode", u"delete from Nodes where nodeId = ?"_s, {line});
    for (int family = 0; family < ProjectSchema::lineTableCount; ++family) {
        const QString table = ProjectSchema::tableName(static_cast<LineTable>(family), line);
        done = runSchema("removeNode", u"drop table if exists "_s + table) && done;
    }

    const QString suffix = u"_%1"_s.arg(line);
    QStringList items;
    statements_.visit({"removeNode", u"select item from DescriptionSettings"_s}, {}, [&](const ResultRow &row) {
        if (row.text(0).endsWith(suffix))
            items.append(row.text(0));
    });
    for (const QString &item : std::as_const(items))
        done = run("removeNode", u"delete from DescriptionSettings where item = ?"_s, {item}) && done;
    done = dropListPart("GeneralSettings"_L1, line) && done;
    done = dropListPart("J1939Settings"_L1, line) && done;
    done = run("removeNode", u"delete from Connections where prodnode = ? OR connode = ?"_s, {line, line}) && done;
    if (!done || !step.commit())
        return false;
    notify(Change::LineRemoved, {.line = line});
    return true;
}

/// Takes the line's part out of every value of a settings table. That a value is no list is not known here, so a text
/// with commas in it loses a part as well.
bool ObjectDataBase::dropListPart(QLatin1StringView table, quint8 line)
{
    QList<std::pair<QString, QString>> rows;
    bool done =
        statements_.visit({"removeNode", u"select item, value from %1"_s.arg(table)}, {}, [&](const ResultRow &row) {
            rows.append({row.text(0), row.text(1)});
        });
    const QString typeKey = u"line%1type"_s.arg(line);
    for (const auto &[item, value] : std::as_const(rows)) {
        if (item.contains(typeKey)) {
            done = run("removeNode", u"delete from %1 where item = ?"_s.arg(table), {item}) && done;
            continue;
        }
        QStringList parts = value.split(u',');
        if (line >= parts.size())
            continue;
        parts.removeAt(line);
        done =
            run("removeNode", u"update %1 SET value = ? WHERE item = ?"_s.arg(table), {parts.join(u','), item}) && done;
    }
    return done;
}

bool ObjectDataBase::getNode(quint8 line, NODE_DATA_T &data)
{
    const Row row = nodeRow(line);
    return statements_.visitFirst(
        {nullptr, row.select(RecordColumns::names(nodeColumns))}, row.key(),
        [&](const ResultRow &result) { RecordColumns::readRow(nodeColumns, result, data, strings_); });
}

QList<quint8> ObjectDataBase::getNodeList()
{
    QList<quint8> lines;
    statements_.visit({nullptr, u"select nodeId from nodes"_s}, {}, [&](const ResultRow &row) {
        const auto line = row.number<qint64>(0);
        if (line >= 0 && line <= 0xff)
            lines.append(static_cast<quint8>(line));
    });
    return lines;
}

bool ObjectDataBase::nodeExists(quint8 line)
{
    return statements_.hasRow({nullptr, u"select nodeId from nodes where nodeId = ?"_s}, {line});
}

void ObjectDataBase::setNodeSqlValue(const QString &nodeId, const QString &column, const QVariant &value, Quotes quotes)
{
    const QString simplified = value.toString().simplified();
    if (blocked_ || simplified.isEmpty())
        return;
    const std::optional<QString> text = LiteralText::stored(simplified, quotes);
    if (!text || !isNodeColumn(column))
        qDebug().noquote() << "setNodeSqlValue" << nodeId << column << simplified;
    else
        run("setNodeSqlValue", u"update Nodes set %1 = ? where nodeId = ?"_s.arg(column), {*text, nodeId});
}
