#include "store/file/migrations.h"

#include "store/file/repairs.h"
#include "store/records/addedcolumns.h"
#include "store/statements/transaction.h"
#include "store/tables/projecttables.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;
using ProjectSchema::Table;

namespace {

constexpr quint8 firstLineBeyondRepair = 32;
constexpr int spnDirectionVersion = 100;
constexpr int uniqueSubObjectsVersion = 101;
constexpr int bitPositionVersion = 105;

/// The services of ISO 14229-1 that a UDS server offers until the user chooses, with the sessions they are offered in.
struct DefaultService
{
    quint8 sid;
    QLatin1StringView sessions;
};
constexpr DefaultService defaultServices[] = {
    {0x10, "1,2,3,4"_L1}, {0x11, "1,2,3,4"_L1}, {0x3e, "1,2,3,4"_L1}, {0x22, "1,2,3,4"_L1}, {0x2e, "1,2,3,4"_L1},
    {0x23, "1,2,3,4"_L1}, {0x3d, "1,2,3,4"_L1}, {0x14, "1,2,3,4"_L1}, {0x19, "1,2,3,4"_L1}, {0x31, "1,2,3,4"_L1},
    {0x27, "2,3,4"_L1},   {0x28, "2,3,4"_L1},   {0x2f, "2,3,4"_L1},   {0x34, "2,3,4"_L1},   {0x35, "2,3,4"_L1},
    {0x36, "2,3,4"_L1},   {0x37, "2,3,4"_L1},
};

[[nodiscard]] bool runSchema(ProjectTables &tables, const char *operation, const QString &text)
{
    return tables.context.statements.execute({operation, text, Statement::Effect::Schema});
}

/// A statement that fails on most files, which need it no more.
void tryTo(ProjectTables &tables, const QString &text)
{
    std::ignore = runSchema(tables, nullptr, text);
}

void addColumns(ProjectTables &tables, LineTable family, quint8 line)
{
    for (const ProjectSchema::AddedColumn &column : ProjectSchema::addedColumns(family)) {
        if (column.belowVersion != 0 && Migrations::versionOf(tables) >= column.belowVersion)
            continue;
        const QString statement = ProjectSchema::addStatement(column, line);
        // Old files have no table of services yet; it is made complete further on.
        if (family == LineTable::UDSSettings)
            tryTo(tables, statement);
        else
            ProjectSchema::migrationExec(tables.context.statements, statement);
    }
}

/// Rebuilds the table of a line so that a subindex can stand in it only once. An old file may hold its columns in
/// another order, NULL where no row may have it now, and a subindex twice, of which the first has always counted.
bool addUniqueColumnsToSubDatabase(ProjectTables &tables, quint8 line)
{
    constexpr auto operation = "addUniqueColumnsToSubDatabase";
    const QString table = ProjectSchema::tableName(LineTable::SubObjects, line);
    const QString columns = ProjectSchema::columnNames(LineTable::SubObjects).join(u',');
    const QString values = ProjectSchema::columnsWithoutNull(LineTable::SubObjects).join(u',');

    TransactionScope step(tables.context.statements, TransactionScope::Kind::Step);
    const bool done =
        runSchema(tables, operation, u"drop table if exists %1_old"_s.arg(table)) &&
        runSchema(tables, operation, u"alter table %1 rename to %1_old"_s.arg(table)) &&
        runSchema(tables, operation, ProjectSchema::createStatement(LineTable::SubObjects, line, false)) &&
        runSchema(
            tables, operation,
            u"INSERT OR IGNORE INTO %1 (%2) SELECT %3 FROM %1_old ORDER BY rowid"_s.arg(table, columns, values)) &&
        runSchema(tables, operation, u"DROP TABLE %1_old"_s.arg(table));
    return done && step.commit();
}

void migrateLine(ProjectTables &tables, quint8 line)
{
    for (const LineTable family : {LineTable::Objects, LineTable::SubObjects, LineTable::SPNs})
        addColumns(tables, family, line);
    // A table that cannot be rebuilt stays as it is.
    if (Migrations::versionOf(tables) < uniqueSubObjectsVersion)
        std::ignore = addUniqueColumnsToSubDatabase(tables, line);
    for (const LineTable family : {LineTable::DataElements, LineTable::UDSSettings, LineTable::PGNs})
        addColumns(tables, family, line);
}

QString inferLineType(ProjectTables &tables, quint8 line)
{
    // The version row is what has always been compared here, although the name row would say more.
    const QString createdBy = tables.getMiscSetting(u"CreateToolVersion"_s);
    if (createdBy == "CANopen NodeComposer"_L1)
        return u"1"_s;
    if (createdBy == "J1939 NodeComposer"_L1)
        return u"2"_s;
    constexpr quint16 firstCommunicationObject = 0x1000;
    constexpr quint16 lastObject = 0xffff;
    const qsizetype objects = tables.getIndexList(line, firstCommunicationObject, lastObject).size();
    return objects > tables.getPGNList(line, 0, false).size() ? u"1"_s : u"2"_s;
}

bool activateDefaultServices(ProjectTables &tables, quint8 line)
{
    if (tables.anyUDSServiceActive(line))
        return true;
    TransactionScope transaction(tables.context.statements, TransactionScope::Kind::Batch);
    bool done = true;
    for (const auto &[sid, sessions] : defaultServices)
        done = tables.setUDSServiceActive(line, sid, true) && done;
    for (const auto &[sid, sessions] : defaultServices)
        done = tables.setUDSServiceSessions(line, sid, sessions) && done;
    return transaction.commit() && done;
}

bool makeEdsPathsAbsolute(LineTables &lines, const QString &projectPath)
{
    QDir::setCurrent(QFileInfo(projectPath).absolutePath());
    bool done = true;
    for (const quint8 line : lines.getNodeList()) {
        std::optional<LineTables::Node> node = lines.getNode(line);
        if (!node || node->edspath.isEmpty() || QFileInfo(node->edspath).isAbsolute())
            continue;
        node->edspath = QFileInfo(node->edspath).absoluteFilePath();
        done = lines.addNode(line, *node, Quotes::Kept) && done;
    }
    return done;
}

bool completeDescriptions(ProjectTables &tables, const QList<quint8> &lines)
{
    TransactionScope transaction(tables.context.statements, TransactionScope::Kind::Batch);
    bool done = true;
    for (const quint8 line : lines)
        done = tables.addDescriptionDefaults(line) && done;
    return transaction.commit() && done;
}

} // namespace

int Migrations::versionOf(ProjectTables &tables)
{
    return tables.getMiscSetting(u"DatabaseVersion"_s).toInt();
}

void Migrations::addMissingTablesAndColumns(ProjectTables &tables)
{
    for (const Table table :
         {Table::GeneralSettings, Table::DescriptionSettings, Table::VirtualNodes, Table::SignalGroups, Table::Signals,
          Table::Groups, Table::EnergyBusSettings, Table::J1939Settings, Table::MiscSettings})
        tryTo(tables, ProjectSchema::createStatement(table, true));
    for (const ProjectSchema::AddedColumn &column : ProjectSchema::columnsOfEveryOpen())
        tryTo(tables, ProjectSchema::addStatement(column));
    for (const quint8 line : tables.getNodeList())
        migrateLine(tables, line);

    for (const Table table : {Table::Connections, Table::LockedMappings, Table::LockedPDOs})
        std::ignore = runSchema(tables, "in open", ProjectSchema::createStatement(table, true));
    for (const LineTable family : {LineTable::PGNs, LineTable::SPNs, LineTable::CANIDs, LineTable::DataElements}) {
        QString statement = ProjectSchema::createStatement(family, 0);
        // Files have always had this spelling here; the column under its right name is added behind it.
        if (family == LineTable::SPNs)
            statement.replace("bitposition"_L1, "bitpostion"_L1);
        const QByteArray operation = "create table " + ProjectSchema::tableName(family, 0).toLatin1();
        std::ignore = runSchema(tables, operation.constData(), statement);
    }
    ProjectSchema::migrationExec(tables.context.statements, u"alter table SPNs0 add bitposition integer"_s);
}

bool Migrations::completeLine(ProjectTables &tables, quint8 line)
{
    bool done = true;
    if (tables.lineType(line).isEmpty())
        done = tables.setGeneralSetting(u"line%1type"_s.arg(line), inferLineType(tables, line), Quotes::Kept);
    done = tables.createUDSSettingsTable(line) && done;
    return activateDefaultServices(tables, line) && done;
}

bool Migrations::repair(ProjectTables &tables, int fileVersion, const QString &path)
{
    const QList<quint8> lines = tables.getNodeList();
    bool done = true;
    if (fileVersion < spnDirectionVersion) {
        for (const quint8 line : lines) {
            if (tables.lineType(line) == "2"_L1)
                done = Repairs::spnDirections(tables, line) && done;
        }
    }
    if (path.endsWith("ncxe"_L1))
        done = makeEdsPathsAbsolute(tables, path) && done;
    done = completeDescriptions(tables, lines) && done;
    tables.cacheStrings(); // at once: a table of them that cannot be read makes the open fail
    if (fileVersion < bitPositionVersion) {
        for (const quint8 line : lines) {
            if (line < firstLineBeyondRepair)
                done = Repairs::bitPositions(tables, line) && done;
        }
    }
    done = Repairs::mappingCounts(tables) && done;
    const quint8 lastLine = lines.isEmpty() ? quint8{0} : *std::ranges::max_element(lines);
    return tables.trimLineLists(lastLine) && done;
}

bool Migrations::compact(ProjectTables &tables)
{
    return runSchema(tables, "VACUUM failed:", u"VACUUM"_s);
}
