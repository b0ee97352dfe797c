#include "store/text/textscope.h"

#include "store/tables/projecttables.h"

#include <QDebug>
#include <QRegularExpression>

#include <algorithm>
#include <span>

using namespace Qt::StringLiterals;

namespace {

using Word = QLatin1StringView;

constexpr Word ignoredWords[] = {"CANIDs"_L1,       "Connections"_L1,    "DataElements"_L1, "EnergyBusSettings"_L1,
                                 "Groups"_L1,       "SignalGroups"_L1,   "Signals"_L1,      "Strings"_L1,
                                 "VirtualNodes"_L1, "LockedMappings"_L1, "LockedPDOs"_L1};
constexpr Word canopenWords[] = {"Objects"_L1, "Nodes"_L1, "SubObjects"_L1};
constexpr Word j1939Words[] = {"PGNs"_L1, "SPNs"_L1, "J1939Settings"_L1};

constexpr Word hiddenSubObjectColumns[] = {"cyclicread"_L1,   "changedbyuser"_L1, "dcfcomponent"_L1,
                                           "wizardsource"_L1, "signalid"_L1,      "denotation"_L1};

constexpr uint lastLine = 255;
constexpr int canopen = 1;
constexpr int j1939 = 2;
constexpr int canopenAndJ1939 = 5;

bool holdsOneOf(const QString &table, std::span<const Word> words)
{
    return std::any_of(words.begin(), words.end(), [&](Word word) { return table.contains(word); });
}

/// What the rows of a table lose whose text is written. The other hidden columns are marks of editors without a meaning
/// for the device. Descriptions of messages stand in the text by a number that means nothing there.
QList<std::pair<QString, QString>> lostColumns(const QString &table)
{
    QList<std::pair<QString, QString>> columns;
    const QString hasText = u"%1 in (select id from Strings where string != '')"_s;
    if (table.startsWith("SubObjects"_L1)) {
        columns.append({u"denotation"_s, hasText.arg("denotation"_L1)});
    } else if (table.startsWith("PGNs"_L1) || table.startsWith("SPNs"_L1)) {
        columns.append({u"desc"_s, hasText.arg(u"\"desc\""_s)});
    }
    return columns;
}

/// A line without its row in the text comes back with what a new line has, but for a name that only counts the lines.
bool holdsLinesAsNew(ProjectTables &project)
{
    return std::ranges::all_of(project.getNodeList(), [&project](quint8 line) {
        std::optional<StoreRecords::NodeData> node = project.getNode(line);
        if (node && node->name == u"can%1"_s.arg(line))
            node->name.clear();
        return node == StoreRecords::NodeData();
    });
}

} // namespace

TextScope::TextScope(Statements &statements)
{
    static const QRegularExpression form(u"^line(0|[1-9]\\d{0,2})type$"_s);
    std::ignore =
        statements.visit({"TextScope", u"SELECT item, value FROM GeneralSettings"_s}, {}, [this](const ResultRow &row) {
            const auto match = form.match(row.text(0));
            const uint line = match.captured(1).toUInt();
            if (match.hasMatch() && line <= lastLine)
                types_.insert(line, row.value(1).toInt());
        });
}

bool TextScope::leavesOut(const QString &table) const
{
    if (holdsOneOf(table, ignoredWords))
        return true;
    if (holdsOneOf(table, canopenWords))
        return !hasProtocol(canopen) || typeOfTable(table) == j1939;
    if (holdsOneOf(table, j1939Words))
        return !hasProtocol(j1939) || typeOfTable(table) == canopen;
    return false;
}

bool TextScope::leavesOutOfSubindices(const QString &column)
{
    return std::ranges::find(hiddenSubObjectColumns, column) != std::end(hiddenSubObjectColumns);
}

bool TextScope::hasProtocol(int type) const
{
    return std::any_of(types_.begin(), types_.end(),
                       [type](int lineType) { return lineType == type || lineType == canopenAndJ1939; });
}

/// The type of the line whose number ends the table's name; 0 for none.
int TextScope::typeOfTable(const QString &table) const
{
    static const QRegularExpression form(u"(\\d+)$"_s);
    const auto match = form.match(table);
    if (!match.hasMatch())
        return 0;
    bool ok = false;
    const uint line = match.captured(1).toUInt(&ok);
    if (!ok)
        qWarning() << "Could not convert captured digits:" << match.captured(1);
    return ok ? types_.value(line) : 0;
}

QList<TextScope::Loss> TextScope::lossesOf(ProjectTables &project)
{
    Statements &statements = project.context.statements;
    const TextScope scope(statements);
    QStringList tables;
    std::ignore = statements.visit({"lossesOf", u"SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"_s},
                                   {}, [&tables](const ResultRow &row) { tables.append(row.text(0)); });
    QList<Loss> losses;
    const auto count = [&](const QString &table, const QString &column, const QString &condition) {
        const QString statement = u"select count(*) from %1 where %2"_s.arg(SqlText::identifier(table), condition);
        if (const qint64 rows = statements.value({"lossesOf", statement}).toLongLong(); rows > 0)
            losses.append({table, column, rows});
    };
    for (const QString &table : std::as_const(tables)) {
        if (table == "Strings"_L1 || (table == "Nodes"_L1 && holdsLinesAsNew(project)))
            continue;
        if (scope.leavesOut(table))
            count(table, {}, u"true"_s);
        else
            for (const auto &[column, condition] : lostColumns(table))
                count(table, column, condition);
    }
    return losses;
}
