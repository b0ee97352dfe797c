#include "store/records/addedcolumns.h"

#include "store/records/columntypes.h"
#include "store/statements/statements.h"

#include <QDebug>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace ProjectSchema {
namespace {

using namespace ColumnTypes;

constexpr AddedColumn everyOpen[] = {
    {"SubObjects0"_L1, "writedefaulttoeds"_L1, integer},
    {"SubObjects0"_L1, "cyclicread"_L1, integer},
    {"SubObjects0"_L1, "dcfcomponent"_L1, integer},
    {"SubObjects0"_L1, "changedbyuser"_L1, integer},
    {"SubObjects0"_L1, "wizardsource"_L1, integer},
    {"SubObjects0"_L1, "sharedlines"_L1, integer},
    {"SubObjects0"_L1, "managedbyqlk"_L1, integer},
    {"SubObjects0"_L1, "signalid"_L1, integer},
    {"SubObjects0"_L1, "nvstorage"_L1, integer},
    {"SubObjects0"_L1, "metadata"_L1, blob},
    {"Nodes"_L1, "dcfpath"_L1, text},
    {"Nodes"_L1, "tpdocnt"_L1, integer},
    {"Nodes"_L1, "rpdocnt"_L1, integer},
    {"Nodes"_L1, "ismaster"_L1, integer},
    {"Nodes"_L1, "issyncproducer"_L1, integer},
    {"Nodes"_L1, "issyncconsumer"_L1, integer},
    {"Nodes"_L1, "ishbconsumer"_L1, integer},
    {"Nodes"_L1, "isemergencyproducer"_L1, integer},
    {"Nodes"_L1, "isemergencyconsumer"_L1, integer},
    {"Nodes"_L1, "ismpdosupported"_L1, integer},
    {"Nodes"_L1, "iscanopengateway"_L1, integer},
    {"Nodes"_L1, "allpdosstatic"_L1, integer},
    {"Nodes"_L1, "excludegeneration"_L1, integer},
    {"Nodes"_L1, "generatedcf"_L1, integer},
    {"Nodes"_L1, "prefix"_L1, text},
    {"Nodes"_L1, "outputpath"_L1, text},
    {"Nodes"_L1, "iconpath"_L1, text},
    {"Nodes"_L1, "isbootupmanager"_L1, integer},
    {"Nodes"_L1, "isconfigmanager"_L1, integer},
    {"Nodes"_L1, "excludepdolinking"_L1, integer},
    {"Nodes"_L1, "multilinedata"_L1, integer},
    {"Nodes"_L1, "lssslave"_L1, integer},
    {"Signals"_L1, "transmittype"_L1, integer},
    {"Signals"_L1, "transmittrigger"_L1, integer},
    {"Signals"_L1, "eventtimer"_L1, integer},
    {"Signals"_L1, "syncvalue"_L1, integer},
    {"Signals"_L1, "syncstartvalue"_L1, integer},
    {"Signals"_L1, "routing"_L1, integer},
    {"Connections"_L1, "priority"_L1, integer},
};

constexpr AddedColumn ofLines[] = {
    {"Objects"_L1, "fwsupported"_L1, integer},
    {"Objects"_L1, "device_class"_L1, integer},
    {"Objects"_L1, "metadata"_L1, blob},
    {"SubObjects"_L1, "writedefaulttoeds"_L1, integer},
    {"SubObjects"_L1, "cyclicread"_L1, integer},
    {"SubObjects"_L1, "dcfcomponent"_L1, integer},
    {"SubObjects"_L1, "changedbyuser"_L1, integer},
    {"SubObjects"_L1, "wizardsource"_L1, integer},
    {"SubObjects"_L1, "denotation"_L1, integer},
    {"SubObjects"_L1, "sharedlines"_L1, integer},
    {"SubObjects"_L1, "nvstorage"_L1, integer},
    {"SubObjects"_L1, "metadata"_L1, blob},
    {"SubObjects"_L1, "managedbyqlk"_L1, integer},
    {"SubObjects"_L1, "signalid"_L1, integer},
    {"SPNs"_L1, "pos"_L1, integer},
    {"SPNs"_L1, "bitsize"_L1, integer},
    {"SPNs"_L1, "direction"_L1, integer},
    {"SPNs"_L1, "slot_df"_L1, integer},
    {"SPNs"_L1, "bitposition"_L1, integer},
    {"DataElements"_L1, "bitpos"_L1, integer, 105},
    {"UDSSettings"_L1, "authentication"_L1, text, 107},
    {"PGNs"_L1, "issafe"_L1, integer},
    {"PGNs"_L1, "srvt_ms"_L1, integer},
    {"PGNs"_L1, "FD_TrailerFormat"_L1, integer},
    {"PGNs"_L1, "FD_AssuranceType"_L1, integer},
    {"PGNs"_L1, "FD_AssuranceDataSize"_L1, integer},
    {"PGNs"_L1, "multisourceaddress"_L1, integer},
    {"PGNs"_L1, "safetytype"_L1, integer, 106},
    {"PGNs"_L1, "FD_DataID"_L1, integer, 106},
};

} // namespace

QList<AddedColumn> columnsOfEveryOpen()
{
    return {std::begin(everyOpen), std::end(everyOpen)};
}

QList<AddedColumn> addedColumns(LineTable family)
{
    QList<AddedColumn> columns;
    std::ranges::copy_if(ofLines, std::back_inserter(columns),
                         [&](const AddedColumn &column) { return column.table == familyName(family); });
    return columns;
}

QString addStatement(const AddedColumn &column)
{
    return u"alter table %1 add %2 %3"_s.arg(column.table, column.column, column.type);
}

QString addStatement(const AddedColumn &column, quint8 line)
{
    return u"alter table %1%2 add %3 %4"_s.arg(column.table, QString::number(line), column.column, column.type);
}

void migrationExec(Statements &statements, const QString &statement)
{
    if (statements.execute({nullptr, statement, Statement::Effect::Schema}))
        return;
    const QString error = statements.errorText();
    if (!error.contains("duplicate column name"_L1, Qt::CaseInsensitive))
        qDebug().noquote() << "migration statement failed:" << statement << error;
}

} // namespace ProjectSchema
