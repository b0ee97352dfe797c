#pragma once

#include "store/lineprotocols.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

class ObjectDataBase;

/// How check and generators ask for the settings of a project, so that all of them understand a text in the same way.
///
/// A number is decimal, "0x" hexadecimal or octal with a leading 0; what is none of these counts as 0. Of a setting
/// that is a list per line, a line takes its own part, one beyond the end the last part; the device has what one of the
/// lines that the setting is meant for has; the lines are read once. The form of a setting and what switches it on
/// stand in one table, in settings.cpp.
class Settings
{
public:
    /// The tables that both have settings of the stack; some keys are in both.
    enum class Table
    {
        General,
        J1939
    };

    enum class Form
    {
        OneValue,    ///< one number for the device
        PerLine,     ///< a number for each line, or one for all
        Text,        ///< what is written as it stands
        TextPerLine, ///< such a text for each line, or one for all
    };

    explicit Settings(ObjectDataBase &store, Table table = Table::General)
        : store_(&store)
        , table_(table)
    {
    }
    /// The settings as they are now, as values that need no store any more.
    static Settings valuesOf(ObjectDataBase &store, Table table = Table::General);

    static Form form(const QString &key, Table table = Table::General);

    /// A switch of the device; of a list, whether it is on for any of its lines.
    bool isOn(const QString &key) const;
    bool isOn(const QString &key, quint8 line) const;
    /// The same as `isOn`, for a list: some line of those that it is meant for has it on.
    bool onAnyLine(const QString &key) const { return isOn(key); }
    /// A number of the device; of a list, the highest of its lines.
    quint32 number(const QString &key) const;
    quint32 number(const QString &key, quint8 line) const;
    /// The text as it stands, of a list with all of its parts.
    QString text(const QString &key) const;
    QString text(const QString &key, quint8 line) const;

private:
    struct Line
    {
        quint8 number;
        LineProtocols protocols;
    };

    const QList<Line> &lines() const;

    ObjectDataBase *store_; ///< null for values
    Table table_;
    QHash<QString, QString> values_;
    mutable std::optional<QList<Line>> lines_; ///< those that the stack counts, read when they are first asked for
};
