#include "store/text/tableform.h"

#include "store/statements/statements.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

const TableForm *TableForm::of(const QString &table)
{
    // The first family that fits is a table's own; of two rows with one number the second gets a path of its own.
    static constexpr TableForm forms[] = {
        {Table::DescriptionSettings, "DescriptionSettings"_L1, {}, {}, {}, false, false},
        {Table::GeneralSettings, "GeneralSettings"_L1, {}, {}, {}, false, false},
        {Table::MiscSettings, "MiscSettings"_L1, {}, {}, {}, false, false},
        {Table::SubObjects,
         "SubObjects"_L1,
         "printf('0x%x/%d', objectindex, subindex)"_L1,
         {},
         "objectindex,subindex"_L1,
         false,
         true},
        {Table::Objects, "Objects"_L1, "printf('0x%x', objectindex)"_L1, {}, "objectindex"_L1, false, true},
        {Table::Nodes, "Nodes"_L1, "nodeId"_L1, {}, "nodeId"_L1, false, false},
        {Table::PGNs, "PGNs"_L1, "number || ''"_L1,
         "number || CASE row_number() OVER (PARTITION BY number ORDER BY rowid) WHEN 1 THEN '' ELSE '_' || "
         "row_number() OVER (PARTITION BY number ORDER BY rowid) END"_L1,
         "number"_L1, true, false},
        {Table::SPNs, "SPNs"_L1, "pgnnumber || '/' || spnnumber"_L1,
         "pgnnumber || '/' || spnnumber || CASE row_number() OVER (PARTITION BY pgnnumber, spnnumber ORDER BY rowid) "
         "WHEN 1 THEN '' ELSE '_' || row_number() OVER (PARTITION BY pgnnumber, spnnumber ORDER BY rowid) END"_L1,
         "pgnnumber,spnnumber"_L1, true, false},
        {Table::J1939Settings, "J1939Settings"_L1, {}, {}, {}, false, false},
        {Table::UDSSettings, "UDSSettings"_L1, "sid"_L1, {}, "sid"_L1, true, false},
    };
    const auto *const form = std::find_if(std::begin(forms), std::end(forms),
                                          [&](const TableForm &candidate) { return table.contains(candidate.word); });
    return form == std::end(forms) ? nullptr : form;
}

QList<ColumnInfo> columnsOf(Statements &statements, const QString &table)
{
    QList<ColumnInfo> columns = statements.list({"columnsOf", u"SELECT name, type FROM PRAGMA_TABLE_INFO(?)"_s},
                                                {table}, [](const ResultRow &row) {
                                                    return ColumnInfo{row.text(0), row.text(1)};
                                                });
    std::sort(columns.begin(), columns.end(),
              [](const ColumnInfo &left, const ColumnInfo &right) { return left.name < right.name; });
    return columns;
}

QStringList columnNamesOf(Statements &statements, const QString &table)
{
    QStringList names;
    for (const ColumnInfo &column : columnsOf(statements, table))
        names.append(column.name);
    return names;
}
