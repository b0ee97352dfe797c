// Opening a project file: the steps that bring a file of any age to the current layout.

#include "store/objectdatabase.h"

#include "store/databasetextconverter.h"
#include "store/schema.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using ProjectSchema::LineTable;
using ProjectSchema::Table;

namespace {

constexpr int openedProjectCachePages = 64000;
constexpr quint8 firstLineBeyondRepair = 32;

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

bool isTextPath(const QString &path)
{
    return path.endsWith("ncxt"_L1);
}

} // namespace

bool ObjectDataBase::openDataBase(const QString &path, bool /*unused*/)
{
    lastError_.clear();
    if (isTextPath(path)) {
        openTextDatabase(path);
        return true;
    }
    projectPath_ = path;
    if (!path.isEmpty() && openWorkingCopy(makeWorkingCopy(path)))
        return true;
    closeDatabase();
    forgetCaches();
    projectPath_.clear();
    return false;
}

/// Brings a copy of a project file to the current layout.
bool ObjectDataBase::openWorkingCopy(const QString &path)
{
    if (!connectTo(path) || !hasLines())
        return false;

    verifyFileHash();
    applyPragmas(openedProjectCachePages);
    addMissingTablesAndColumns();
    if (!savedByMatchingTool()) {
        Q_EMIT wrongTool();
        lastError_ = u"File was not created with this tool."_s;
        return false;
    }
    const int fileVersion = fileSchemaVersion();
    for (const quint8 line : getNodeList())
        completeLine(line);
    repairAfterOpen(fileVersion);
    notify(Change::ProjectReplaced);
    return true;
}

bool ObjectDataBase::openTextDatabase(const QString &path)
{
    lastError_.clear();
    projectPath_.clear();
    if (!createNewDataBase())
        return false;
    projectPath_ = path;
    DatabaseTextConverter converter;
    converter.setStore(this);
    converter.setInputFile(path);
    bool converted = false;
    {
        Transaction transaction(*this);
        converted = converter.convertTextToSql();
        converted = transaction.commit() && converted;
    }
    if (converted) {
        verifyFileHash();
        notify(Change::ProjectReplaced);
    }
    return converted;
}

bool ObjectDataBase::hasLines()
{
    // A view of that name could go on for ever.
    return statements_.hasRow(
               {nullptr, u"select 1 from sqlite_master where type = 'table' and name = 'Nodes' collate nocase"_s}) &&
           !getNodeList().isEmpty();
}

int ObjectDataBase::fileSchemaVersion()
{
    return getMiscSetting(u"DatabaseVersion"_s).toInt();
}

/// A migration statement: a failure is logged unless it says that the column exists already.
void ObjectDataBase::migrationExec(const QString &statement)
{
    if (runSchema(nullptr, statement))
        return;
    const QString error = statements_.errorText();
    if (!error.contains("duplicate column name"_L1, Qt::CaseInsensitive))
        qDebug().noquote() << "migration statement failed:" << statement << error;
}

void ObjectDataBase::addMissingTablesAndColumns()
{
    for (const Table table :
         {Table::GeneralSettings, Table::DescriptionSettings, Table::VirtualNodes, Table::SignalGroups, Table::Signals,
          Table::Groups, Table::EnergyBusSettings, Table::J1939Settings, Table::MiscSettings})
        runSchema(nullptr, ProjectSchema::createStatement(table, true));

    for (const auto &column : ProjectSchema::columnsOfEveryOpen())
        runSchema(nullptr, ProjectSchema::addStatement(column));
    for (const quint8 line : getNodeList())
        migrateLine(line);

    runSchema(nullptr, u"alter table Connections add priority integer"_s);
    for (const Table table : {Table::Connections, Table::LockedMappings, Table::LockedPDOs})
        runSchema("in open", ProjectSchema::createStatement(table, true));
    for (const LineTable family : {LineTable::PGNs, LineTable::SPNs, LineTable::CANIDs, LineTable::DataElements}) {
        QString statement = ProjectSchema::createStatement(family, 0);
        // Files have always had this spelling here; the column under its right name is added behind it.
        if (family == LineTable::SPNs)
            statement.replace("bitposition"_L1, "bitpostion"_L1);
        const QByteArray operation = "create table " + ProjectSchema::tableName(family, 0).toLatin1();
        runSchema(operation.constData(), statement);
    }
    migrationExec(u"alter table SPNs0 add bitposition integer"_s);
}

void ObjectDataBase::migrateLine(quint8 line)
{
    const auto add = [&](const QList<ProjectSchema::LineColumn> &columns) {
        for (const auto &[column, belowVersion] : columns) {
            if (belowVersion == 0 || fileSchemaVersion() < belowVersion)
                migrationExec(ProjectSchema::addStatement(column, line));
        }
    };
    constexpr int uniqueSubObjectsVersion = 101;
    constexpr int udsAuthenticationVersion = 107;

    add(ProjectSchema::objectColumns());
    if (fileSchemaVersion() < uniqueSubObjectsVersion)
        addUniqueColumnsToSubDatabase(line);
    add(ProjectSchema::signalColumns());
    // Before version 103 there is no such table yet; it is made complete further on.
    if (fileSchemaVersion() < udsAuthenticationVersion)
        runSchema(nullptr, u"alter table UDSSettings%1 add authentication text"_s.arg(line));
    add(ProjectSchema::pgnColumns());
}

/// Rebuilds the table of a line so that a subindex can stand in it only once. An old file may hold its columns in
/// another order, NULL where no row may have it now, and a subindex twice, of which the first has always counted.
bool ObjectDataBase::addUniqueColumnsToSubDatabase(quint8 line)
{
    constexpr auto operation = "addUniqueColumnsToSubDatabase";
    const QString table = ProjectSchema::tableName(LineTable::SubObjects, line);
    const QString columns = ProjectSchema::columnNames(LineTable::SubObjects).join(u',');
    const QString values = ProjectSchema::columnsWithoutNull(LineTable::SubObjects).join(u',');

    Step step(*this);
    const bool done =
        runSchema(operation, u"drop table if exists %1_old"_s.arg(table)) &&
        runSchema(operation, u"alter table %1 rename to %1_old"_s.arg(table)) &&
        runSchema(operation, ProjectSchema::createStatement(LineTable::SubObjects, line, false)) &&
        runSubs(operation,
                u"INSERT OR IGNORE INTO %1 (%2) SELECT %3 FROM %1_old ORDER BY rowid"_s.arg(table, columns, values)) &&
        runSchema(operation, u"DROP TABLE %1_old"_s.arg(table));
    return done && step.commit();
}

bool ObjectDataBase::savedByMatchingTool()
{
    const QString application = QCoreApplication::applicationName();
    const QString savedBy = getMiscSetting(u"SaveToolType"_s);
    if ((!savedBy.isEmpty() && savedBy == application) || application == "CAN NodeComposer"_L1)
        return true;

    bool hasCANopen = false;
    bool hasJ1939 = false;
    for (const quint8 line : getNodeList()) {
        const QString type = getGeneralSetting(u"line%1type"_s.arg(line));
        const bool both = type == "4"_L1 || type == "5"_L1;
        hasCANopen |= both || type == "1"_L1;
        hasJ1939 |= both || type == "2"_L1;
    }
    return !(application == "CANopen NodeComposer"_L1 && hasJ1939) &&
           !(application == "J1939 NodeComposer"_L1 && hasCANopen);
}

void ObjectDataBase::completeLine(quint8 line)
{
    const QString typeKey = u"line%1type"_s.arg(line);
    if (getGeneralSetting(typeKey).isEmpty())
        setGeneralSetting(typeKey, inferLineType(line));
    createUDSSettingsTable(line);
    activateDefaultServices(line);
}

QString ObjectDataBase::inferLineType(quint8 line)
{
    // The version row is what has always been compared here, although the name row would say more.
    const QString createdBy = getMiscSetting(u"CreateToolVersion"_s);
    if (createdBy == "CANopen NodeComposer"_L1)
        return u"1"_s;
    if (createdBy == "J1939 NodeComposer"_L1)
        return u"2"_s;
    constexpr quint16 firstCommunicationObject = 0x1000;
    constexpr quint16 lastObject = 0xffff;
    const qsizetype objects = getIndexList(line, firstCommunicationObject, lastObject).size();
    return objects > getPGNList(line, 0).size() ? u"1"_s : u"2"_s;
}

void ObjectDataBase::activateDefaultServices(quint8 line)
{
    if (statements_.hasRow({nullptr, u"select sid from UDSSettings%1 where active = 1"_s.arg(line)}))
        return;
    const Transaction transaction(*this);
    for (const auto &[sid, sessions] : defaultServices)
        setUDSServiceActive(line, sid, true);
    for (const auto &[sid, sessions] : defaultServices)
        setUDSServiceSessions(line, sid, sessions);
}

void ObjectDataBase::makeEdsPathsAbsolute()
{
    QDir::setCurrent(QFileInfo(projectPath_).absolutePath());
    for (const quint8 line : getNodeList()) {
        NODE_DATA_T node;
        if (!getNode(line, node) || node.edspath.isEmpty() || QFileInfo(node.edspath).isAbsolute())
            continue;
        node.edspath = QFileInfo(node.edspath).absoluteFilePath();
        addNode(line, node, Quotes::Kept);
    }
}

void ObjectDataBase::repairAfterOpen(int fileVersion)
{
    constexpr int spnDirectionVersion = 100;
    constexpr int bitPositionVersion = 105;

    const QList<quint8> lines = getNodeList();
    if (fileVersion < spnDirectionVersion) {
        for (const quint8 line : lines) {
            if (getGeneralSetting(u"line%1type"_s.arg(line)) == "2"_L1)
                repairSPNDirections(line);
        }
    }
    if (projectPath_.endsWith("ncxe"_L1))
        makeEdsPathsAbsolute();
    {
        const Transaction transaction(*this);
        for (const quint8 line : lines)
            addDescriptionDefaults(line);
    }
    cacheStrings();
    if (fileVersion < bitPositionVersion) {
        for (const quint8 line : lines) {
            if (line < firstLineBeyondRepair)
                repairBitPositions(line);
        }
    }
    repairMappingCounts();
    trimLineLists();
    runSchema("VACUUM failed:", u"VACUUM"_s);
}
