#pragma once

#include <QHash>
#include <QList>
#include <QString>

class Statements;
class ProjectTables;

/// What of a project its text form holds: which tables and columns it leaves out.
class TextScope
{
public:
    /// Combined and raw CAN types of lines count for neither CANopen nor J1939, but for "CANopen and J1939".
    explicit TextScope(Statements &statements);

    bool leavesOut(const QString &table) const;
    /// True for a column of a subindex that the text never holds.
    static bool leavesOutOfSubindices(const QString &column);

    /// Something that a project has and its text will not have.
    struct Loss
    {
        QString table;
        QString column; ///< empty where whole rows are lost
        qint64 rows = 0;
    };
    /// All that the text of a project loses, by table, but for marks of editors.
    static QList<Loss> lossesOf(ProjectTables &project);

private:
    bool hasProtocol(int type) const;
    int typeOfTable(const QString &table) const;

    QHash<uint, int> types_; ///< of the lines
};
