#pragma once

#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QStringList>

class Statements;

/// How a family of tables stands in the text of a project.
struct TableForm
{
    enum class Table
    {
        DescriptionSettings,
        GeneralSettings,
        MiscSettings,
        SubObjects,
        Objects,
        Nodes,
        PGNs,
        SPNs,
        J1939Settings,
        UDSSettings
    };

    Table kind;
    QLatin1StringView word; ///< what the names of the tables hold
    QLatin1StringView path; ///< the groups of a row, as an expression on its columns; empty for a table of settings
    QLatin1StringView same; ///< the same for one of several rows with one key; empty where that cannot be
    QLatin1StringView key;  ///< columns whose values the groups tell, joined by ","
    bool keyIsWritten;      ///< the key columns stand among the row's keys as well
    bool descriptionIsText; ///< like the name, "description" stands as its text instead of its id

    /// The form of a table; null for one that never stands in the text.
    static const TableForm *of(const QString &table);
};

/// A column of a table as the database tells it.
struct ColumnInfo
{
    QString name;
    QString type;
};

/// The columns of a table in the order of their names.
QList<ColumnInfo> columnsOf(Statements &statements, const QString &table);
QStringList columnNamesOf(Statements &statements, const QString &table);
