#pragma once

#include "store/tables/j1939tables.h"
#include "store/tables/linetables.h"
#include "store/tables/objecttables.h"
#include "store/tables/rawcantables.h"
#include "store/tables/settingstables.h"
#include "store/tables/udstables.h"

/// What the families share, which is there before them.
struct ProjectContext
{
    TableContext context;
};

/// The tables of a project: the operations of all families.
class ProjectTables : public ProjectContext,
                      public ObjectTables,
                      public SettingsTables,
                      public UdsTables,
                      public LineTables,
                      public J1939Tables,
                      public RawCanTables
{
public:
    ProjectTables()
        : ObjectTables(context)
        , SettingsTables(context)
        , UdsTables(context)
        , LineTables(context, *this, *this)
        , J1939Tables(context)
        , RawCanTables(context)
    {
    }

    /// Forgets the lists of whole lines.
    void dropKept()
    {
        dropKeptObjects();
        dropKeptGroups();
        dropKeptIds();
    }
    /// What the families remember of a project is that of another one from now on.
    void forgetCaches()
    {
        context.strings.clear();
        clearSubCache();
        dropKept();
        clearSPNCache();
        context.writes.anythingWritten();
    }

    /// Type code of a line as text; empty for none.
    QString lineType(quint8 line) { return getGeneralSetting(QStringLiteral("line%1type").arg(line)); }

    // Texts of the pool (StringPool)

    /// Id of a text, adding it where it is new; -1 on failure.
    int getStringId(const QString &text) { return context.strings.idOf(text); }
    QString getString(int id) { return context.strings.textOf(id); }
    void cacheStrings()
    {
        context.strings.reload();
        context.strings.loadTexts();
    }
    /// Deletes the texts that no row refers to.
    [[nodiscard]] bool removeUnusedStrings() { return context.strings.removeUnused(getNodeList()); }
};
