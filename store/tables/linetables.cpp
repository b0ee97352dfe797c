#include "store/tables/linetables.h"

#include "store/records/schema.h"
#include "store/tables/settingstables.h"
#include "store/tables/udstables.h"

#include <QDebug>

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::text;

namespace {

using Node = LineTables::Node;

constexpr std::array<Column<Node>, 25> nodeColumns = {
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

/// Columns of a line that exists belong to whoever set them last by name.
constexpr std::array setByName = {"isbootupmanager"_L1, "isconfigmanager"_L1, "excludepdolinking"_L1,
                                  "multilinedata"_L1, "lssslave"_L1};
constexpr quint8 previewLine = 254;
constexpr quint8 basicServices[] = {0x10, 0x11, 0x3e, 0x22, 0x2e};

bool isNodeColumn(const QString &column)
{
    return std::ranges::any_of(nodeColumns, [&](const Column<Node> &known) { return known.name == column; });
}

} // namespace

bool LineTables::writeNodeRow(quint8 line, const Node &data, Quotes quotes)
{
    const bool isUpdate = nodeExists(line);
    const RecordColumns::Names except = isUpdate ? RecordColumns::Names(setByName) : RecordColumns::Names();
    const QString text =
        isUpdate ? u"update Nodes set %1 where nodeId = ?"_s.arg(RecordColumns::assignments<Node>(nodeColumns, except))
                 : u"insert into Nodes (%1, nodeId) values(%2)"_s.arg(RecordColumns::names<Node>(nodeColumns),
                                                                      SqlText::places(nodeColumns.size() + 1));
    BoundStatement statement(statements_, {"addNode", text, Statement::Effect::Rows});
    if (!RecordColumns::bindTold<Node>("addNode", statement, {nodeColumns, data, {}, quotes, except}))
        return false;
    statement.bind(qint64{line});
    return statement.execute();
}

bool LineTables::createTables(quint8 line)
{
    constexpr std::array families = {LineTable::Objects, LineTable::SubObjects, LineTable::PGNs,
                                     LineTable::SPNs,    LineTable::CANIDs,     LineTable::DataElements};
    return std::ranges::all_of(families, [&](LineTable family) {
        const QByteArray operation = "create table " + ProjectSchema::tableName(family, line).toLatin1();
        return runSchema(operation.constData(), ProjectSchema::createStatement(family, line));
    });
}

bool LineTables::activateBasicServices(quint8 line)
{
    bool done = true;
    for (const quint8 sid : basicServices)
        done = done && uds_.setUDSServiceActive(line, sid, true);
    for (const quint8 sid : basicServices)
        done = done && uds_.setUDSServiceSessions(line, sid, u"1"_s);
    return done;
}

bool LineTables::addNode(quint8 line, const Node &data, Quotes quotes)
{
    if (isBlocked())
        return false;
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    const bool done =
        writeNodeRow(line, data, quotes) && createTables(line) &&
        (line == previewLine || (settings_.extendLineLists(line) && settings_.addDescriptionDefaults(line))) &&
        uds_.createUDSSettingsTable(line) && activateBasicServices(line);
    if (!done || !step.commit())
        return false;
    notify(Change::LineWritten, {.line = line});
    return true;
}

bool LineTables::removeNode(quint8 line)
{
    if (isBlocked())
        return false;
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    bool done = run("removeNode", u"delete from Nodes where nodeId = ?"_s, {line});
    for (int family = 0; family < ProjectSchema::lineTableCount; ++family) {
        const QString table = ProjectSchema::tableName(static_cast<LineTable>(family), line);
        done = runSchema("removeNode", u"drop table if exists "_s + table) && done;
    }
    done = settings_.removeLineSettings(line) && done;
    done = run("removeNode", u"delete from Connections where prodnode = ? OR connode = ?"_s, {line, line}) && done;
    if (!done || !step.commit())
        return false;
    notify(Change::LineRemoved, {.line = line});
    return true;
}

std::optional<Node> LineTables::getNode(quint8 line)
{
    const QString text = u"select %1 from Nodes where nodeId = ?"_s.arg(RecordColumns::names<Node>(nodeColumns));
    return statements_.first({nullptr, text}, {line}, [this](const ResultRow &row) {
        Node data;
        RecordColumns::readRow<Node>(nodeColumns, row, data, strings_);
        return data;
    });
}

QList<quint8> LineTables::getNodeList()
{
    QList<quint8> lines;
    std::ignore = statements_.visit({nullptr, u"select nodeId from nodes"_s}, {}, [&](const ResultRow &row) {
        const auto line = row.number<qint64>(0);
        if (line >= 0 && line <= 0xff)
            lines.append(static_cast<quint8>(line));
    });
    return lines;
}

bool LineTables::nodeExists(quint8 line)
{
    return statements_.hasRow({nullptr, u"select nodeId from nodes where nodeId = ?"_s}, {line});
}

bool LineTables::setNodeSqlValue(const QString &nodeId, const QString &column, const QVariant &value, Quotes quotes)
{
    const QString simplified = value.toString().simplified();
    if (isBlocked())
        return false;
    if (simplified.isEmpty())
        return true;
    const std::optional<QString> text = LiteralText::stored(simplified, quotes);
    if (text && isNodeColumn(column))
        return run("setNodeSqlValue", u"update Nodes set %1 = ? where nodeId = ?"_s.arg(column), {*text, nodeId});
    qDebug().noquote() << "setNodeSqlValue" << nodeId << column << simplified;
    return false;
}
