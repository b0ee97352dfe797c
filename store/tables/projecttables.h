#pragma once

#include "store/tables/j1939tables.h"
#include "store/tables/linetables.h"
#include "store/tables/objecttables.h"
#include "store/tables/rawcantables.h"
#include "store/tables/settingstables.h"
#include "store/tables/udstables.h"

/// The tables of a project.
struct ProjectTables
{
    /// What the families remember of a project is that of another one from now on.
    void forgetCaches()
    {
        context.strings.clear();
        objects.clearSubCache();
        objects.dropKept();
        j1939.clearSPNCache();
        context.writes.anythingWritten();
    }
    [[nodiscard]] bool removeUnusedStrings() { return context.strings.removeUnused(lines.getNodeList()); }
    /// Type code of a line as text; empty for none.
    QString lineType(quint8 line) { return settings.getGeneralSetting(QStringLiteral("line%1type").arg(line)); }

    TableContext context;
    ObjectTables objects{context};
    SettingsTables settings{context};
    UdsTables uds{context};
    LineTables lines{context, settings, uds};
    J1939Tables j1939{context};
    RawCanTables rawCan{context};
};
